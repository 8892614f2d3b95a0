#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>

#include "core/archive/ArchiveTransfer.h"
#include "core/archive/PhotoArchive.h"
#include "core/archive/Tags.h"
#include "core/base/FileDialogs.h"
#include "core/base/FileNaming.h"
#include "core/base/Folders.h"
#include "core/profiles/PhotoProfiles.h"
#include "core/profiles/PrinterProfiles.h"
#include "core/settings/ArchiveFolder.h"
#include "core/sheet/PhotoSaver.h"
#include "core/sheet/Rotation.h"
#include "core/sheet/SheetTiling.h"
#include "core/templates/LayoutFile.h"
#include "core/templates/Template.h"
#include "core/templates/TemplateCatalogue.h"

namespace kadrona::core {

struct TemplateRow;

/// The data module: holds the parts that know the folders, profiles, templates, saving and the
/// archive, and the state that an opened photo has in common with them. Its operations only hand on
/// to the parts, where they are described.
class TData {
 public:
    /// `ui` and `printer`, the way to the print service or null, outlive the data module.
    explicit TData(UserInterface& ui, Folders folders = Folders::OfThisMachine(),
                   printing::PrinterLayer* printer = nullptr);
    TData(const TData&) = delete;
    TData& operator=(const TData&) = delete;

    /// The source of the settings, and what InitSystem calls to fill it. Set before InitSystem.
    void SetSettings(const Settings* settings) { settings_ = settings; }
    void SetInitHandler(std::function<void(TData&)> handler) { initHandler_ = std::move(handler); }
    /// The rest of the start: catalogue, init handler, database and curves folder, database.
    void InitSystem();

    const QString& ProgramFolder() const { return folders_.program; }
    const QString& DataFolder() const { return folders_.data; }
    const QString& TemplateFolder() const { return folders_.templates; }
    const QString& CurvesFolder() const { return folders_.curves; }

    int FrameSize() const { return frameSize_; }
    void SetFrameSize(int pixels) { frameSize_ = pixels; }

    /// What sheets are made on from now on.
    const PaperChoice& Paper() const { return paper_; }
    void SetPaper(PaperChoice paper) { paper_ = std::move(paper); }

    // The photo that is open
    const QString& CurrentFile() const { return currentFile_; }
    const QString& CurrentFileFolder() const { return currentFileFolder_; }
    void SetCurrentFile(const QString& path);
    /// For a photo of the archive, whose folder is none to open further photos from.
    void SetCurrentFileName(const QString& name) {
        currentFile_ = name;
        SetOpenedFile({});
    }
    /// The file that is kept as the original where an archived photo is made of it.
    void SetOpenedFile(const QString& path);
    core::OpenDialog& OpenDialog() { return openDialog_; }

    // Templates
    QStringList GetSchablonenList() const { return catalogue_.Names(); }
    QString GetMaskFileName(int index) const { return catalogue_.FileAt(index); }
    /// Loads a template. False where the file does not exist; nothing is changed then, nor where
    /// ReadTemplate throws.
    bool MaskLoadFromFile(const QString& path);
    void DrawMask(imaging::LayeredImage& image) { ShowTemplate(template_, image); }
    void LoadLayer(imaging::LayeredImage& image) {
        RestoreTemplatePlace(template_, layout_, image);
    }
    const QString& TemplateName() const { return template_.name; }
    QSize TemplateCanvasSize() const { return template_.canvas; }
    /// The loaded template's figures; those of its shape alone where the table does not know it.
    /// Throws TemplateTableError, platform::FileError.
    TemplateRow LoadedFigures() const;
    QRect ReadLayerPosFromIni(const QString& section) const { return layout_.Read(section); }
    void SaveLayerPosToIni(const QString& section, const QRect& rectangle) const {
        layout_.Save(section, rectangle);
    }

    // Passport photos
    void CropImage(imaging::LayeredImage& image, int layoutIndex) {
        CropPhoto(image, Making(), layoutIndex);
    }
    void TileImage(imaging::LayeredImage& image, int layoutIndex) {
        TilePhoto(image, Making(), layoutIndex);
    }
    void ArchiveImage(imaging::LayeredImage& sheet) { ArchiveSingle(sheet, Making()); }
    /// Whether a sheet was made of the open photo that is not in the archive yet.
    bool CanArchive() const { return !single_.photo.IsEmpty() && !single_.isArchived; }
    /// What the tag editor begins with for the open photo.
    void SetTags(const QString& tags);
    void RotateImage(imaging::LayeredImage& image) { LevelPhoto(image, ui_); }

    // Photo profiles
    QStringList GetProfileList() const { return photoProfiles_.Names(); }
    QString ProfileFile(const QString& name) const { return photoProfiles_.SettingsFile(name); }
    void LoadProfile(const QString& name, ProfileStore& store) const {
        photoProfiles_.Load(name, store);
    }
    bool SaveNewProfile(const QString& name, ProfileStore& store) const {
        photoProfiles_.SaveNew(name, store);
        return true;
    }
    void SaveProfileToIni(const QString& name, const QString& fileName) const {
        photoProfiles_.Record(name, fileName);
    }
    /// False where the settings file stays; a message names it.
    bool DeleteProfile(const QString& name) const { return IsGone(photoProfiles_.Delete(name)); }

    // Printer profiles
    const PrinterProfiles& PrintProfiles() const { return printerProfiles_; }
    printing::PrinterLayer& Printer() const { return printerProfiles_.Printer(); }
    QStringList GetPrinterProfileList() const { return printerProfiles_.Names(); }
    bool SavePrintProfile(const QString& name) const {
        printerProfiles_.Save(name);
        return true;
    }
    void SavePrinterProfileToIni(const QString& name, const QString& fileName) const {
        printerProfiles_.Record(name, fileName);
    }
    void LoadPrintProfile(const QString& name) const { printerProfiles_.Load(name); }
    void DeletePrinterProfile(const QString& name) const { IsGone(printerProfiles_.Delete(name)); }

    // File names
    const core::NameSources& NameSources() const { return nameSources_; }
    void SetNameSources(core::NameSources sources) { nameSources_ = std::move(sources); }
    QString GetFileName(const QString& prefix, int nameVariable, int fileType) const {
        return core::GetFileName(prefix, nameVariable, fileType, nameSources_);
    }

    // Saving
    QString SaveFolder() const { return saver_.Folder(*settings_); }
    const QString& LastSaveFolder() const { return saver_.LastFolder(); }
    PhotoSaver::Saved SaveImage(imaging::LayeredImage& image, const QString& folder,
                                const QString& fileName, bool scale);
    /// Writes nothing: this way of saving never had a file name.
    void AutoSaveImage(imaging::LayeredImage& /*image*/, const QString& /*folder*/) const {}

    // Archive
    static QString GetArchivPath() { return ArchiveFolder(); }
    static void SetArchivPath(const QString& folder) { SetArchiveFolder(folder); }
    /// True; every failure throws.
    bool ConnectDB(const QString& folder) {
        archive_.Connect(folder);
        return true;
    }
    bool CreateDB() { return archive_.Create(); }
    /// Opens the archive's database where the settings say that it is. A server that is not there
    /// is said, and only keeps the archive closed. Throws platform::Error.
    void OpenDatabase();
    PhotoArchive& Archiving() { return archive_; }
    /// TransferArchive from this machine's database to a server. Throws platform::Error.
    TransferResult TransferArchiveTo(const store::ServerAddress& server,
                                     const platform::Progress& progress) const;
    ArchiveTable* Archive() { return archive_.Table(); }
    /// What it lies in, for the upkeep of the archive. Throws platform::Error where there is none.
    store::Database& ArchiveDatabase() { return archive_.Database(); }
    void SaveImageToArchiv(imaging::LayeredImage& image, const QString& archiveFolder,
                           const QString& tags, const QString& objectName) {
        archive_.File(image, {archiveFolder, template_.name, tags, objectName});
    }
    qint64 CurrentRecord() const { return archive_.CurrentRecord(); }
    void SetCurrentRecord(qint64 id) { archive_.SetCurrentRecord(id); }
    /// Full path of the current record's photo; where there is no such file a message names it, and
    /// the path is empty.
    QString GetFileNameFromRecord(const QString& archiveFolder);
    void ImgTagSearch(const QString& text) { archive_.Filter(text); }
    // NOLINTBEGIN(readability-convert-member-functions-to-static): operations of the data module
    void SaveIptcToImage(imaging::LayeredImage& image, const QString& objectName,
                         const QString& keywords) {
        SetIptcTags(image, objectName, keywords);
    }
    void RewriteIptcToImage(const QString& fileName, const QString& objectName,
                            const QString& keywords) {
        RewriteIptcTags(fileName, objectName, keywords);
    }
    // NOLINTEND(readability-convert-member-functions-to-static)

 private:
    SheetMaking Making() {
        return {template_,  *settings_, layout_, archive_,     ui_,
                frameSize_, paper_,     single_, OpenedFile(), [this] { OpenDatabase(); }};
    }

    /// Empty where another file has come under its name, as that of the next customer's card may.
    QString OpenedFile() const;

    /// Tells of a deleted profile's file that is left.
    bool IsGone(const QString& leftFile) const;

    UserInterface& ui_;
    Folders folders_;
    const Settings* settings_ = nullptr;
    std::function<void(TData&)> initHandler_;
    core::NameSources nameSources_;

    PhotoProfiles photoProfiles_;
    PrinterProfiles printerProfiles_;
    TemplateCatalogue catalogue_;
    Template template_;
    LayoutFile layout_;
    PhotoSaver saver_;
    PhotoArchive archive_;

    int frameSize_ = 25;
    PaperChoice paper_;
    SinglePhoto single_;
    QString currentFile_;
    QString currentFileFolder_;
    struct {
        QString path;
        qint64 bytes = 0;
        QDateTime modified;
    } opened_;
    core::OpenDialog openDialog_ = core::OpenDialog::OfPhotos();
};

}  // namespace kadrona::core
