#include "core/Data.h"

#include <QFileInfo>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveSchema.h"
#include "core/base/UserInterface.h"
#include "core/check/TemplateTable.h"
#include "core/settings/Settings.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SilenceWatch.h"
#include "store/sqlite/SqliteDatabase.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

TData::TData(UserInterface& ui, Folders folders, printing::PrinterLayer* printer)
    : ui_(ui),
      folders_(std::move(folders)),
      photoProfiles_(folders_.data),
      printerProfiles_(folders_.data, printer),
      catalogue_(folders_.templates),
      layout_(folders_.data),
      saver_(ui),
      archive_(nameSources_) {}

void TData::InitSystem() {
    try {
        catalogue_.Load();
    } catch (const platform::FileError& error) {
        ui_.ShowMessage(error.Text());
    }
    if (initHandler_) {
        initHandler_(*this);
    }
    if (!platform::CreateFolder(folders_.database)) {
        ui_.ShowMessage(u"Fehler, das Datenbankverzeichnis konnte nicht erstellt werden."_s);
        return;
    }
    if (!platform::CreateFolder(folders_.curves)) {
        ui_.ShowMessage(u"Fehler, das Kurvenverzeichnis konnte nicht erstellt werden."_s);
        return;
    }
    OpenDatabase();
}

void TData::OpenDatabase() {
    const ArchiveServer server = StoredArchiveServer();
    if (!server.used) {
        platform::CreateFolder(folders_.database);  // where it cannot, the database says so
        ConnectDB(folders_.database);
        CreateDB();
        return;
    }
    try {
        archive_.Connect(server.address);
    } catch (const platform::Error& error) {
        ui_.ShowMessage(error.Text());
    }
}

TransferResult TData::TransferArchiveTo(const store::ServerAddress& server,
                                        const platform::Progress& progress) const {
    // Much is written at once, and the user sees it.
    constexpr store::ServerPatience Patience{.working = std::chrono::seconds(20)};
    store::SqliteDatabase source(folders_.database);
    CreateArchive(source);
    const std::unique_ptr<store::Database> target = OpenServer(server, Patience);
    target->WhileWaiting([&] { progress(u"Auf den Server wird gewartet …"_s, 0, 0); });
    return TransferArchive(source, *target, progress);
}

void TData::SetCurrentFile(const QString& path) {
    currentFile_ = path;
    currentFileFolder_ = QFileInfo(path).path();
    SetOpenedFile(path);
}

void TData::SetOpenedFile(const QString& path) {
    const QFileInfo file(path);
    opened_ = {path, file.size(), file.lastModified()};
    single_ = {};
}

void TData::SetTags(const QString& tags) {
    single_.tags = TagLines(tags);
}

QString TData::OpenedFile() const {
    const QFileInfo file(opened_.path);
    const bool same =
        file.isFile() && file.size() == opened_.bytes && file.lastModified() == opened_.modified;
    return same ? opened_.path : QString();
}

bool TData::MaskLoadFromFile(const QString& path) {
    auto read = ReadTemplate(path);
    if (!read) {
        return false;
    }
    template_ = *std::move(read);
    return true;
}

TemplateRow TData::LoadedFigures() const {
    if (auto figures = TemplateFigures(TemplateFolder(), TemplateName())) {
        return *std::move(figures);
    }
    TemplateRow row;
    row.file = TemplateName();
    row.name = QFileInfo(row.file).completeBaseName();
    row.width = {TemplateCanvasSize().width()};
    row.height = {TemplateCanvasSize().height()};
    return row;
}

PhotoSaver::Saved TData::SaveImage(imaging::LayeredImage& image, const QString& folder,
                                   const QString& fileName, bool scale) {
    const bool withTags = settings_ == nullptr || settings_->TagsInSavedFiles();
    return saver_.Save(image, {folder, fileName, scale, currentFile_, withTags});
}

bool TData::IsGone(const QString& leftFile) const {
    if (!leftFile.isEmpty()) {
        ui_.ShowMessage(
            u"Das Profil wurde gelöscht, aber seine Datei „%1“ konnte nicht entfernt "
            u"werden."_s.arg(leftFile));
    }
    return leftFile.isEmpty();
}

QString TData::GetFileNameFromRecord(const QString& archiveFolder) {
    QString path = archive_.PathOfCurrent(archiveFolder);
    if (!IsInsideArchive(path, archiveFolder)) {
        ui_.ShowMessage(
            u"Datei %1 liegt außerhalb des Archivs und wird nicht verwendet!"_s.arg(path));
        return {};
    }
    QString reason;
    bool isFile = false;
    {
        const platform::SilenceWatch watch(AwaitedArchive(archiveFolder));
        const bool there = IsArchiveFolder(archiveFolder);
        reason = ForeignWay(path, archiveFolder);
        isFile = there && QFileInfo(path).isFile();
    }
    if (!reason.isEmpty()) {
        ui_.ShowMessage(u"Datei %1 wird nicht verwendet: %2."_s.arg(path, reason));
    } else if (!isFile) {
        ui_.ShowMessage(u"Datei "_s + path + u" konnte nicht gefunden werden!"_s);
    }
    return isFile && reason.isEmpty() ? path : QString();
}

}  // namespace kadrona::core
