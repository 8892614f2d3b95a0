#include "app/commandline/PackedRequest.h"

#include <QFile>
#include <algorithm>

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
    const QString photo = QFile::decodeName(fields[3]);
    if (QFile::encodeName(photo) != fields[3]) {
        return std::nullopt;  // bytes that are no text would name another file
    }
    return WindowRequest{
        .photo = photo, .chooses = !fields[2].isEmpty(), .activationToken = fields[1]};
}

}  // namespace kadrona::app
