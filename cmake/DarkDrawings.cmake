# The drawings once more in inks for the dark theme: the same shapes with other colours, so that there
# is one drawing to edit.

# Each ink of assets/icons and what stands for it on dark ground.
set(KADRONA_DARK_INKS
    "#232629=#e6e9ec"
    "#4a525c=#c0c7cf"
    "#8a929b=#99a2ac"
    "#a8aeb6=#6f7780"
    "#1a6fb5=#5aabec"
    "#7db7e8=#3f7fb3"
    "#c23934=#f0746e"
    "#2e8b57=#4fc184"
    "#ffffff=#1f2428")

# Writes the dark drawings beside `target`'s objects and adds them to it as the resource file
# "dark", below the prefix /kadrona/icons/dark. Pointers stand on the photo and signs of messages on
# ground of their own: both stay as they are.
function(kadrona_add_dark_drawings target)
  set(drawings "${PROJECT_SOURCE_DIR}/assets/icons")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/dark")
  file(GLOB names CONFIGURE_DEPENDS RELATIVE "${drawings}" "${drawings}/*.svg")
  list(FILTER names EXCLUDE REGEX "^(cursor|message)-")
  set(entries)
  foreach(name IN LISTS names)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${drawings}/${name}")
    file(READ "${drawings}/${name}" drawing)
    foreach(ink IN LISTS KADRONA_DARK_INKS)
      string(REPLACE "=" ";" pair "${ink}")
      list(GET pair 0 light)
      list(GET pair 1 dark)
      string(REPLACE "${light}" "${dark}" drawing "${drawing}")
    endforeach()
    file(CONFIGURE OUTPUT "${folder}/${name}" CONTENT "${drawing}" @ONLY)
    string(APPEND entries "        <file>${name}</file>\n")
  endforeach()
  file(CONFIGURE OUTPUT "${folder}/dark.qrc" CONTENT
"<RCC version=\"1.0\">
    <qresource prefix=\"/kadrona/icons/dark\">
${entries}    </qresource>
</RCC>
" @ONLY)
  target_sources(${target} PRIVATE "${folder}/dark.qrc")
endfunction()
