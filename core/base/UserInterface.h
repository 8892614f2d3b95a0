#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace kadrona::imaging {
class Pixels;
}

namespace kadrona::core {

struct SaveDialog;

/// What the data module asks of whoever sits above it: windows in the program, answers of their own
/// in tests and on the command line.
class UserInterface {
 public:
    virtual ~UserInterface() = default;

    /// A plain message with an OK button.
    virtual void ShowMessage(const QString& text) = 0;

    /// A question whose answer is "Ja" or "Nein"; "Nein" where nobody is there to ask, who then
    /// reads it as a message.
    virtual bool AskYesNo(const QString& text) {
        ShowMessage(text);
        return false;
    }

    /// The same where giving up loses something, so that "Ja" is at hand.
    virtual bool AskToRetry(const QString& text) { return AskYesNo(text); }

    /// Lets the user enter tags, starting from those lines: the lines entered, or nothing when
    /// cancelled. `photo` is the single photo that gets them.
    virtual std::optional<QStringList> EditTags(const imaging::Pixels& photo,
                                                const QStringList& lines) = 0;

    /// Lets the user choose the file to save to, which may exist only where the user agreed to
    /// replace it. Nothing when cancelled.
    virtual std::optional<QString> AskForSaveFile(const SaveDialog& dialog) = 0;

    /// Lets the user level a small copy of the photo: degrees counter-clockwise, or nothing when
    /// cancelled.
    virtual std::optional<double> AskForRotation(const imaging::Pixels& preview) = 0;
};

}  // namespace kadrona::core
