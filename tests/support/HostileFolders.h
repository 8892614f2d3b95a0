#pragma once

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QString>
#include <optional>

/// What makes a folder or a file hard to write to, each until it goes out of scope. What this
/// machine or this user cannot do says so in Succeeded().
namespace kadrona::testing {

/// A file system mounted on a folder, which is made.
class Mounted {
 public:
    ~Mounted() {
        if (succeeded_) {
            umount2(folder_.constData(), MNT_DETACH);
        }
    }
    Mounted(const Mounted&) = delete;
    Mounted& operator=(const Mounted&) = delete;

    bool Succeeded() const { return succeeded_; }

    /// From now on nothing can be written.
    void MakeReadOnly() {
        if (mount(nullptr, folder_.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
            qFatal("%s stays writable", folder_.constData());
        }
    }

 protected:
    explicit Mounted(const QString& folder) : folder_(QFile::encodeName(folder)) {
        QDir().mkpath(folder);
    }

    QByteArray folder_;
    bool succeeded_ = false;
};

/// In memory, and no larger than `size` ("200k").
class SmallDisk : public Mounted {
 public:
    SmallDisk(const QString& folder, const QByteArray& size) : Mounted(folder) {
        succeeded_ =
            mount("tmpfs", folder_.constData(), "tmpfs", 0, ("size=" + size).constData()) == 0;
    }
};

/// The file system of many a memory stick: it refuses characters that have a meaning in another
/// system, and knows no files without a name. `image` is the file to keep it in.
class MemoryStick : public Mounted {
 public:
    MemoryStick(const QString& folder, const QString& image) : Mounted(folder) {
        QFile file(image);
        succeeded_ =
            file.open(QIODevice::WriteOnly) && file.resize(4'000'000) &&
            Run({QStringLiteral("mkntfs"), QStringLiteral("-FQq"), image}) &&
            Run({QStringLiteral("mount"), QStringLiteral("-t"), QStringLiteral("ntfs-3g"),
                 QStringLiteral("-o"), QStringLiteral("loop,windows_names"), image, folder});
    }

 private:
    static bool Run(QStringList command) {
        QProcess process;
        process.setStandardErrorFile(QProcess::nullDevice());
        const QString program = command.takeFirst();
        process.start(program, command);
        return process.waitForFinished(20000) && process.exitCode() == 0;
    }
};

/// A file that not even an administrator can replace.
class Immutable {
 public:
    explicit Immutable(const QString& path)
        : file_(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)) {
        succeeded_ = Mark(FS_IMMUTABLE_FL);
    }
    ~Immutable() {
        Mark(0);
        close(file_);
    }
    Immutable(const Immutable&) = delete;
    Immutable& operator=(const Immutable&) = delete;

    bool Succeeded() const { return succeeded_; }

 private:
    bool Mark(int flags) const { return ioctl(file_, FS_IOC_SETFLAGS, &flags) == 0; }

    int file_;
    bool succeeded_;
};

/// The rights of another account, where an administrator runs this: nothing is closed to one.
/// Without a name that of a user who owns nothing. Everyone else keeps the rights that they have.
class WithoutPrivileges {
 public:
    explicit WithoutPrivileges(uid_t user = Nobody, gid_t group = Nobody) {
        if (before_ == 0) {
            Require(setegid(group));
            Require(seteuid(user));
        }
    }
    ~WithoutPrivileges() {
        Require(seteuid(before_));
        Require(setegid(groupBefore_));
        // Else the process stays closed to the leak checker.
        prctl(PR_SET_DUMPABLE, 1);
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

 private:
    static constexpr uid_t Nobody = 65534;

    static void Require(int result) {
        if (result != 0) {
            qFatal("another account cannot be taken");
        }
    }

    uid_t before_ = geteuid();
    gid_t groupBefore_ = getegid();
};

/// A folder that is closed to whoever owns nothing, and such a user.
class ClosedFolder {
 public:
    ClosedFolder(const QString& folder, mode_t mode) : folder_(QFile::encodeName(folder)) {
        chmod(folder_.constData(), mode);
        rights_.emplace();
    }
    ~ClosedFolder() {
        rights_.reset();
        chmod(folder_.constData(), 0755);
    }
    ClosedFolder(const ClosedFolder&) = delete;
    ClosedFolder& operator=(const ClosedFolder&) = delete;

 private:
    QByteArray folder_;
    std::optional<WithoutPrivileges> rights_;
};

}  // namespace kadrona::testing
