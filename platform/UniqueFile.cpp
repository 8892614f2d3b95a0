#include "platform/UniqueFile.h"

#include <QFile>
#include <QRandomGenerator>

#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

constexpr quint32 NameCount = 0x10000;

FileError CreationError(const QString& folder, const QString& reason) {
    return FileError(
        u"Im Ordner „%1“ konnte keine neue Datei angelegt werden: %2."_s.arg(folder, reason));
}

}  // namespace

QString CreateUniqueFile(const QString& folder, const QString& prefix) {
    // A random start keeps a folder with many such files from being walked through each time.
    const quint32 start = QRandomGenerator::global()->bounded(NameCount);
    for (quint32 attempt = 0; attempt < NameCount; ++attempt) {
        const quint32 number = (start + attempt) % NameCount;
        const QString name = prefix.left(3) + QString::number(number, 16).toUpper() + u".tmp"_s;
        QFile file(JoinPath(folder, name));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            return name;
        }
        if (!NameIsTaken(file)) {
            throw CreationError(folder, SystemReason(file));
        }
    }
    throw CreationError(folder, u"Alle Namen sind vergeben"_s);
}

}  // namespace kadrona::platform
