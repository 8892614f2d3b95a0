#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/archive/ArchiveCheck.h"
#include "core/archive/ArchiveDeletion.h"

class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

/// Photos that something is done to.
struct ChosenPhotos {
    std::vector<qint64> ids;
    /// Of those that wait for the archive's server on this computer, by name.
    QStringList waiting = {};

    bool IsEmpty() const { return ids.empty() && waiting.isEmpty(); }
    qsizetype Count() const { return static_cast<qsizetype>(ids.size()) + waiting.size(); }
};

/// What the archive's window does to the archive as a whole or to several of its photos: asks,
/// shows the progress, says what came of it. What fails throws platform::Error.
class ArchiveUpkeep {
 public:
    /// Both outlive the object; the window is the one that is asked over.
    ArchiveUpkeep(core::TData& data, QWidget& window) : data_(data), window_(window) {}

    /// The archive's folder from now on.
    void SetFolder(const QString& archiveFolder) { folder_ = archiveFolder; }

    /// Deletes photos with all that belongs to them after a question that names them. False where
    /// some or all of them may still be there.
    bool Delete(const ChosenPhotos& chosen);
    /// The same with records that never got a photo.
    bool DeleteBlank(const std::vector<qint64>& ids);

    /// Copies the archive to a folder that the user chooses.
    void BackUp();
    /// Exports photos to a folder that the user chooses.
    void Export(const ChosenPhotos& chosen, const QString& title);

    /// Nothing where the user gave it up.
    std::optional<core::ArchiveReport> Check();
    /// What can be done about a fault, as a button's caption; empty where nothing can.
    static QString RemedyOf(core::ArchiveFault fault);
    /// Does it to all findings of that fault. False where some may still be there.
    bool Remedy(core::ArchiveFault fault, const core::ArchiveReport& report);

 private:
    QWidget* Over() const;
    QString Question(const ChosenPhotos& chosen) const;
    QStringList NamesOf(const ChosenPhotos& chosen) const;
    QString MissingFiles(const std::vector<qint64>& ids) const;
    bool DeleteWaiting(const QStringList& names);
    bool DeleteNow(const std::vector<qint64>& ids, const QString& title, core::Deletable which);
    void Compact(const QString& title);
    bool RemedyNow(core::ArchiveFault fault, const core::ArchiveReport& report);
    bool Rebuild(const QStringList& paths);
    bool RemoveFiles(const QStringList& paths);
    void ShowFailures(const QString& lead, const QStringList& failures);

    core::TData& data_;
    QWidget& window_;
    QString folder_;
};

}  // namespace kadrona::dialogs
