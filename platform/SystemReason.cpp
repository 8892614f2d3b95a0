#include "platform/SystemReason.h"

#include <array>
#include <cerrno>

namespace kadrona::platform {
namespace {

struct Reason {
    int code;
    const char16_t* text;
};

constexpr auto Reasons = std::to_array<Reason>({
    {ENOSPC, u"Auf dem Datenträger ist kein Platz mehr"},
    {EDQUOT, u"Der zugeteilte Speicherplatz ist aufgebraucht"},
    {EACCES, u"Der Zugriff wurde verweigert"},
    {EPERM, u"Der Zugriff wurde verweigert"},
    {EROFS, u"Der Datenträger ist schreibgeschützt"},
    {ENOENT, u"Die Datei oder der Ordner ist nicht vorhanden"},
    {ENOTDIR, u"Ein Teil des Pfades ist kein Ordner"},
    {EISDIR, u"Unter diesem Namen gibt es einen Ordner"},
    {ENAMETOOLONG, u"Der Name ist zu lang"},
    {EINVAL, u"Der Name enthält Zeichen, die hier nicht erlaubt sind"},
    {EILSEQ, u"Der Name enthält Zeichen, die hier nicht erlaubt sind"},
    {EEXIST, u"Der Name ist schon vergeben"},
    {EFBIG, u"Die Datei würde zu groß"},
    {EIO, u"Der Datenträger meldet einen Ein- oder Ausgabefehler"},
    {ENOMEM, u"Der Arbeitsspeicher reicht nicht aus"},
    {EBUSY, u"Ein anderes Programm benutzt die Datei"},
    {EMFILE, u"Es sind zu viele Dateien geöffnet"},
    {ENFILE, u"Es sind zu viele Dateien geöffnet"},
    {ELOOP, u"Die Verknüpfungen des Pfades führen im Kreis"},
});

}  // namespace

QString SystemReason(int code) {
    for (const Reason& reason : Reasons) {
        if (reason.code == code) {
            return QStringView(reason.text).toString();
        }
    }
    return qt_error_string(code);
}

QString SystemReason(const QFileDevice& file) {
    // Qt keeps of an error only the text that it makes of the code, so codes are told by that text.
    for (const Reason& reason : Reasons) {
        if (file.errorString() == qt_error_string(reason.code)) {
            return QStringView(reason.text).toString();
        }
    }
    return file.errorString();
}

}  // namespace kadrona::platform
