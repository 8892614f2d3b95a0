# Completion of bash for kadrona(1).

_kadrona_template_names() {
    local program folder
    program=$(type -P kadrona) || return
    folder=$(dirname "$(readlink -f "$program")")
    for folder in "$folder/Schablonen" "$folder/../share/kadrona/Schablonen"; do
        [[ -r $folder/MaskList.kdr ]] || continue
        sed 's/=.*//' "$folder/MaskList.kdr"
        return
    done
}

# Completes a text that may hold spaces and slashes from the lines of standard input. What is typed
# without quotes is compared in its escaped form, for that is what the shell puts into the line.
_kadrona_from_lines() {
    local line candidate typed=$cur
    [[ $typed != [\"\']* ]] || typed=${typed:1}
    while IFS= read -r line; do
        candidate=$line
        [[ $cur == [\"\']* ]] || printf -v candidate %q "$line"
        [[ $candidate != "$typed"* ]] || COMPREPLY+=("$candidate")
    done
}

_kadrona() {
    local cur prev words cword options
    _init_completion || return
    local common="--template --at --auto"
    case ${words[1]} in
        sheet) options="$common --out --layout --profile --paper --count --gap --edge --marks --dpi --order" ;;
        photo) options="$common --out --pixels --kilobytes" ;;
        check) options="$common --json --strict" ;;
        archive) options="--folder --out --search" ;;
        *) options="--new-window --open --help --version" ;;
    esac
    case $prev in
        --template) _kadrona_from_lines < <(_kadrona_template_names) ;;
        --layout) _kadrona_from_lines < <(printf '%s\n' "2 x 4" "2 x 3" "2 x 2" "1 x 4" "1 x 3" "1 x 2" \
            "1 x 1" "3 x 3") ;;
        --paper) mapfile -t COMPREPLY < <(compgen -W "10x15 13x18 100x148 A6 A5 A4" -- "$cur") ;;
        --count) mapfile -t COMPREPLY < <(compgen -W "fill" -- "$cur") ;;
        --marks) mapfile -t COMPREPLY < <(compgen -W "none corners lines outline" -- "$cur") ;;
        --folder) _filedir -d ;;
        --search | --at | --gap | --edge | --dpi | --pixels | --kilobytes | --profile) ;;
        --out | --order) _filedir ;;
        *)
            if [[ $cur == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
                return
            fi
            ((cword > 1)) || mapfile -t COMPREPLY < <(compgen -W "sheet photo check archive" -- "$cur")
            if [[ ${words[1]} == archive ]]; then
                mapfile -t COMPREPLY < <(compgen -W "backup check rebuild export transfer" -- "$cur")
                return
            fi
            _filedir
            ;;
    esac
} &&
    complete -F _kadrona kadrona
