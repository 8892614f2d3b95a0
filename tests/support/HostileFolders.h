#pragma once

#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QString>
#include <optional>

/// What makes a folder hard to write to, each until it goes out of scope.
namespace kadrona::testing {

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
