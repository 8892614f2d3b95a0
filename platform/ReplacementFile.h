#pragma once

#include <sys/types.h>

#include <QDateTime>
#include <QIODevice>
#include <QString>
#include <utility>

#include "platform/Links.h"

namespace kadrona::platform {

/// A new file that is to take the place of `target`, which need not exist. While it is written it
/// has no name, so that even a killed program leaves nothing behind; only where the file system
/// knows no such files, and for the moment in which it replaces an older file, it stands beside its
/// target as "kdr1A2B.tmp". What did not take its place is removed by the destructor, and what a
/// killed program left of that kind by a later one, once it is a day old. Permissions are those of
/// the file that is replaced, else those of FileModes.h.
///
/// What fails returns false or -1 and leaves the system's reason, in German and without a full
/// stop, in errorString(). Once a write has failed everything later fails for the same reason.
class ReplacementFile : public QIODevice {
    Q_OBJECT

 public:
    /// A symbolic link stands for the file that it leads to.
    ReplacementFile(QString target, Links links) : links_(links), target_(std::move(target)) {}
    ~ReplacementFile() override;

    /// Fails also where something that must stay stands under the target's name: a folder, a pipe,
    /// a device, a file that is marked read-only.
    bool Create();

    /// The time of the last change, where the file system takes one.
    void SetModified(const QDateTime& time) const;

    /// Brings the content to the disk, then puts the file under the target's name in one step, and
    /// brings that to the disk. Where only the last fails the file stands there, whole.
    bool TakePlace();

    /// Whether the file stands under the target's name, even where TakePlace failed.
    bool HasTakenPlace() const { return hasTakenPlace_; }

    bool isSequential() const override { return false; }
    qint64 size() const override { return size_; }
    bool seek(qint64 position) override;

 protected:
    qint64 readData(char* data, qint64 maximum) override;
    qint64 writeData(const char* data, qint64 size) override;

 private:
    bool FindTarget();
    bool OpenWithoutName();
    bool OpenWithName();
    bool GiveName();
    bool RenameToTarget();
    bool Fail(const QString& reason);
    bool FailWith(int code);

    Links links_;
    QString target_;
    mode_t mode_ = 0;
    int handle_ = -1;
    /// Path under which it can be found while it waits; empty while it has no name.
    QString waitingName_;
    qint64 size_ = 0;
    bool failed_ = false;
    bool hasTakenPlace_ = false;
};

}  // namespace kadrona::platform
