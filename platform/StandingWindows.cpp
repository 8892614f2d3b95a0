#include "platform/StandingWindows.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cerrno>
#include <csignal>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;

namespace {

const QString WindowPrefix = u"kadrona-window-"_s;

/// A program that was killed leaves its file.
bool IsRunning(const QString& name) {
    bool isNumber = false;
    const int process = QStringView(name).mid(WindowPrefix.size()).toInt(&isNumber);
    return isNumber && process > 0 && (kill(process, 0) == 0 || errno == EPERM);
}

}  // namespace

StandingWindows::StandingWindows() {
    const QString folder = RuntimeFolder();
    if (!folder.isEmpty()) {
        own_ = JoinPath(folder, WindowPrefix + QString::number(getpid()));
    }
}

StandingWindows::~StandingWindows() {
    if (!own_.isEmpty()) {
        QFile::remove(own_);
    }
}

std::vector<QPoint> StandingWindows::Others() const {
    constexpr qint64 LongestPlace = 64;
    std::vector<QPoint> places;
    const QString folder = own_.isEmpty() ? QString() : RuntimeFolder();
    const QStringList names = folder.isEmpty()
                                  ? QStringList()
                                  : QDir(folder).entryList({WindowPrefix + u'*'}, QDir::Files);
    for (const QString& name : names) {
        const QString path = JoinPath(folder, name);
        if (path == own_) {
            continue;
        }
        if (!IsRunning(name)) {
            QFile::remove(path);
            continue;
        }
        try {
            const auto content = ReadFileIfThere(path, LongestPlace, Links::Own);
            const QList<QByteArray> numbers = content.value_or(QByteArray()).split(' ');
            places.emplace_back(numbers.value(0).toInt(), numbers.value(1).toInt());
        } catch (const Error&) {  // one place less is known
        }
    }
    return places;
}

void StandingWindows::Tell(const QPoint& place) {
    if (own_.isEmpty()) {
        return;
    }
    try {
        WriteFileAtomically(
            own_, QByteArray::number(place.x()) + ' ' + QByteArray::number(place.y()), Links::Own);
    } catch (const Error&) {  // a later window may come to stand over this one
    }
}

}  // namespace kadrona::platform
