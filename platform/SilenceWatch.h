#pragma once

#include <QString>
#include <chrono>

namespace kadrona::platform {

/// As long as it lives, the user is told when the program waits for a disk, a share or a server:
/// whoever waits for these cannot say so, and a process of its own does. The program waits when it
/// neither calculates nor tells of an answer for as long as the patience. Not for what waits for
/// the user. One at a time: a second one within the first does nothing. Cheap; the process begins
/// with the first watch and ends with the program.
class SilenceWatch {
 public:
    /// Longer than FolderPatience; with a look of a quarter and the time that a box takes to appear
    /// less than two seconds.
    static constexpr std::chrono::milliseconds Patience{1050};

    /// `awaited` is what is waited for, in German, as after "auf".
    explicit SilenceWatch(const QString& awaited, std::chrono::milliseconds patience = Patience);
    ~SilenceWatch();
    SilenceWatch(const SilenceWatch&) = delete;
    SilenceWatch& operator=(const SilenceWatch&) = delete;

    /// Something has answered: the patience begins anew. Cheap.
    static void NoteAnswer();

    /// The program that tells the user, run with `--waiting`, this process's number and the text.
    /// Each byte on its standard input takes the word back for a while; at its end it ends. Without
    /// a program the text goes to the standard error.
    static void SetTeller(const QString& program);

 private:
    bool isFirst_ = false;
};

/// A file as something that is waited for.
QString AwaitedFile(const QString& path);

}  // namespace kadrona::platform
