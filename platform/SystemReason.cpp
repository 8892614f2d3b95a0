#include "platform/SystemReason.h"

#include <array>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#endif

namespace kadrona::platform {
namespace {

struct Reason {
    int code;
    const char16_t* text;
};

#ifdef Q_OS_WIN
constexpr int NameTakenCode = ERROR_FILE_EXISTS;
constexpr auto Reasons = std::to_array<Reason>({
    {ERROR_DISK_FULL, u"Auf dem Datenträger ist kein Platz mehr"},
    {ERROR_ACCESS_DENIED, u"Der Zugriff wurde verweigert"},
    {ERROR_SHARING_VIOLATION, u"Ein anderes Programm benutzt die Datei"},
    {ERROR_WRITE_PROTECT, u"Der Datenträger ist schreibgeschützt"},
    {ERROR_FILE_NOT_FOUND, u"Die Datei ist nicht vorhanden"},
    {ERROR_PATH_NOT_FOUND, u"Die Datei oder der Ordner ist nicht vorhanden"},
    {ERROR_FILENAME_EXCED_RANGE, u"Der Name ist zu lang"},
    {ERROR_INVALID_NAME, u"Der Name enthält Zeichen, die hier nicht erlaubt sind"},
    {ERROR_FILE_EXISTS, u"Der Name ist schon vergeben"},
    {ERROR_TOO_MANY_OPEN_FILES, u"Es sind zu viele Dateien geöffnet"},
});
#else
constexpr int NameTakenCode = EEXIST;
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
    {EMFILE, u"Es sind zu viele Dateien geöffnet"},
    {ENFILE, u"Es sind zu viele Dateien geöffnet"},
    {ELOOP, u"Die Verknüpfungen des Pfades führen im Kreis"},
});
#endif

/// Qt keeps of an error only the text that it makes of the code, so codes are told by that text.
bool HasError(const QFileDevice& file, int code) {
    return file.errorString() == qt_error_string(code);
}

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
    for (const Reason& reason : Reasons) {
        if (HasError(file, reason.code)) {
            return QStringView(reason.text).toString();
        }
    }
    return file.errorString();
}

bool NameIsTaken(const QFileDevice& file) {
    return HasError(file, NameTakenCode);
}

}  // namespace kadrona::platform
