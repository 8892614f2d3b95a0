#pragma once

#include <QFile>
#include <QIODevice>

namespace kadrona::platform {

/// A new file that is to take the place of `target`, which need not exist. While it is written it
/// has no name, so that even a killed program leaves nothing behind; only where the file system
/// knows no such files, and for the moment in which it replaces an older file, it stands beside its
/// target as "kdr1A2B.tmp". What did not take its place is removed by the destructor, and what a
/// killed program left of that kind by a later one, once it is a day old. Permissions are those of
/// the file that is replaced.
///
/// What fails returns false or -1 and leaves the system's reason, in German and without a full
/// stop, in errorString(). Once a write has failed everything later fails for the same reason.
class ReplacementFile : public QIODevice {
    Q_OBJECT

 public:
    /// A symbolic link stands for the file that it leads to.
    explicit ReplacementFile(const QString& target);
    ~ReplacementFile() override;

    bool Create();

    /// Brings the content to the disk, then puts the file under the target's name in one step.
    bool TakePlace();

    bool isSequential() const override { return false; }
    qint64 size() const override { return file_.size(); }
    bool seek(qint64 position) override;

 protected:
    qint64 readData(char* data, qint64 maximum) override;
    qint64 writeData(const char* data, qint64 size) override;

 private:
    bool OpenWithoutName();
    bool GiveName();
    bool RenameToTarget();
    bool Fail(const QString& reason);

    QString target_;
    QFile file_;
    /// Path under which it can be found while it waits; empty while it has no name.
    QString waitingName_;
    bool failed_ = false;
};

}  // namespace kadrona::platform
