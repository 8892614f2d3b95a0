#include "app/commandline/WindowRequest.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "app/commandline/SheetRequest.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QByteArray PackedForm = "kadrona 1";
const QByteArray Chooses = "open";
constexpr int PackedFields = 4;
constexpr qsizetype LongestToken = 256;
constexpr qsizetype LongestPath = 4096;  // of the system

/// It goes into the environment.
bool IsToken(const QByteArray& token) {
    return token.size() <= LongestToken &&
           std::ranges::all_of(token, [](char byte) { return byte > ' ' && byte <= '~'; });
}

}  // namespace

WindowRequest ParseWindowRequest(const QStringList& arguments) {
    WindowRequest request;
    bool named = false;  // behind "--" a name may begin with "-"
    for (const QString& argument : arguments) {
        const bool isOption = !named && argument.startsWith(u'-');
        if (isOption && argument == u"--"_s) {
            named = true;
        } else if (isOption && argument == u"--open"_s && request.photo.isEmpty()) {
            request.chooses = true;
        } else if (isOption && argument == u"--new-window"_s) {
            request.newWindow = true;
        } else if (isOption || request.chooses || !request.photo.isEmpty()) {
            throw UsageError(u"Mit „%1“ kann Kadrona nicht gestartet werden."_s.arg(argument));
        } else if (!argument.isEmpty()) {
            request.photo = QFileInfo(LocalPath(argument)).absoluteFilePath();
        }
    }
    return request;
}

QByteArray Packed(const WindowRequest& request) {
    const QByteArray token =
        IsToken(request.activationToken) ? request.activationToken : QByteArray();
    return QByteArrayList{PackedForm, token, request.chooses ? Chooses : QByteArray(),
                          QFile::encodeName(request.photo)}
        .join('\0');
}

std::optional<WindowRequest> Unpacked(const QByteArray& bytes) {
    const QByteArrayList fields = bytes.split('\0');
    if (fields.size() != PackedFields || fields[0] != PackedForm || !IsToken(fields[1]) ||
        (!fields[2].isEmpty() && fields[2] != Chooses) || fields[3].size() > LongestPath ||
        (!fields[3].isEmpty() && !fields[3].startsWith('/'))) {
        return std::nullopt;
    }
    return WindowRequest{.photo = QFile::decodeName(fields[3]),
                         .chooses = !fields[2].isEmpty(),
                         .activationToken = fields[1]};
}

}  // namespace kadrona::app
