#include "platform/Links.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <array>
#include <cerrno>
#include <climits>

#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// As many as the system itself follows.
constexpr int MostLinks = 40;

/// Takes the first part off a path.
QByteArray TakePart(QByteArray& rest) {
    const qsizetype slash = rest.indexOf('/');
    QByteArray part = slash < 0 ? rest : rest.left(slash);
    rest = slash < 0 ? QByteArray() : rest.sliced(slash + 1);
    return part;
}

/// Empty where it cannot be read.
QByteArray TargetOf(const QByteArray& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t size = readlink(link.constData(), target.data(), target.size());
    return {target.data(), qMax<ssize_t>(size, 0)};
}

/// Walks down a path part by part.
class Walk {
 public:
    Walk(const QString& path, Links links)
        : links_(links), rest_(QFile::encodeName(QDir::current().absoluteFilePath(path))) {}

    FollowedPath ToTheEnd(const QString& given) {
        while (!rest_.isEmpty()) {
            if (const QString refusal = Step(); !refusal.isEmpty()) {
                return {{}, refusal};
            }
        }
        return {followed_ == 0 ? given : QFile::decodeName(done_), {}};
    }

 private:
    /// Returns why the walk must end; empty where it goes on.
    QString Step() {
        const QByteArray part = TakePart(rest_);
        if (part.isEmpty() || part == ".") {
            return {};
        }
        if (part == "..") {
            done_.truncate(qMax(done_.lastIndexOf('/'), qsizetype(0)));
            return {};
        }
        const QByteArray next = done_ + '/' + part;
        struct stat status {};
        if (lstat(next.constData(), &status) != 0) {
            const int code = errno;
            done_ = rest_.isEmpty() ? next : next + '/' + rest_;
            rest_.clear();
            // Below a file there is nothing either.
            return code == ENOENT || code == ENOTDIR ? QString() : SystemReason(code);
        }
        if (S_ISLNK(status.st_mode)) {
            return Follow(next, status.st_uid);
        }
        done_ = next;
        return {};
    }

    QString Follow(const QByteArray& link, uid_t owner) {
        if (links_ == Links::Own && owner != 0 && owner != geteuid()) {
            return u"„%1“ ist eine Verknüpfung, die einem anderen Benutzer gehört"_s.arg(
                QFile::decodeName(link));
        }
        const QByteArray target = TargetOf(link);
        if (++followed_ > MostLinks || target.isEmpty()) {
            return SystemReason(ELOOP);
        }
        done_ = target.startsWith('/') ? QByteArray() : done_;
        rest_ = target + '/' + rest_;
        return {};
    }

    Links links_;
    QByteArray done_;  // free of links, without a slash at its end
    QByteArray rest_;
    int followed_ = 0;
};

}  // namespace

FollowedPath FollowLinks(const QString& path, Links links) {
    if (path.contains(QChar::Null)) {
        return {{}, SystemReason(EINVAL)};  // the system would end the name there
    }
    return Walk(path, links).ToTheEnd(path);
}

}  // namespace kadrona::platform
