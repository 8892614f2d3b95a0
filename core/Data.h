#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "core/archive/ArchiveTable.h"
#include "core/profiles/ProfileStore.h"
#include "core/sheet/FileDialogs.h"
#include "core/sheet/FileNaming.h"
#include "core/sheet/SheetLayout.h"
#include "core/templates/TemplateCatalogue.h"
#include "core/templates/TemplateFile.h"
#include "imaging/document/LayeredImage.h"
#include "store/Database.h"

namespace kadrona::printing {
class PrinterLayer;
}

namespace kadrona::core {

class ProfileIndex;
class Settings;
class UserInterface;

/// The data module: owner of the folders, the template catalogue, the loaded template, the current
/// photo's name and the archive table, and the front of the operations on them. Each operation's
/// source stands in a file of its subject; what can be computed without state is a plain function
/// beside it.
class TData {
 public:
    /// Where the base folders lie; the default is the real ones.
    struct Folders {
        QString program;
        QString commonAppData;
        static Folders OfThisMachine();
    };

    /// Sets the program, data and template folder and creates the data folder (Start.cpp).
    /// `ui` outlives the data module.
    explicit TData(UserInterface& ui, const Folders& folders = Folders::OfThisMachine());
    ~TData();
    TData(const TData&) = delete;
    TData& operator=(const TData&) = delete;

    /// The source of the settings, and what InitSystem calls to fill it. Set before InitSystem.
    void SetSettings(const Settings* settings) { settings_ = settings; }
    void SetInitHandler(std::function<void(TData&)> handler) { initHandler_ = std::move(handler); }

    /// The rest of the start: catalogue, init handler, database and curves folder, database.
    void InitSystem();

    const QString& ProgramFolder() const { return programFolder_; }
    /// Empty when it could not be created.
    const QString& DataFolder() const { return dataFolder_; }
    const QString& TemplateFolder() const { return templateFolder_; }
    const QString& CurvesFolder() const { return curvesFolder_; }

    int FrameSize() const { return frameSize_; }
    void SetFrameSize(int pixels) { frameSize_ = pixels; }

    const QString& CurrentFile() const { return currentFile_; }
    const QString& CurrentFileFolder() const { return currentFileFolder_; }
    void SetCurrentFile(const QString& path);
    /// For a photo of the archive, whose folder is none to open further photos from.
    void SetCurrentFileName(const QString& name) { currentFile_ = name; }
    /// The "adjusted" flag of the colour tools.
    bool Adjusted() const { return adjusted_; }
    void SetAdjusted(bool adjusted) { adjusted_ = adjusted; }
    core::OpenDialog& OpenDialog() { return openDialog_; }

    // Templates
    QStringList GetSchablonenList() const;
    /// Full path of a catalogue line's template file; empty when there is no such line or file.
    QString GetMaskFileName(int index) const;
    /// Loads a template. False, with nothing changed, when the file does not exist. Throws
    /// TemplateFileError for a damaged one, with nothing changed either.
    bool MaskLoadFromFile(const QString& path);
    void DrawMask(imaging::LayeredImage& image);
    void LoadLayer(imaging::LayeredImage& image);
    const QString& TemplateName() const { return templateName_; }
    QSize TemplateCanvasSize() const { return templateCanvas_; }
    /// One section of "kdr.ini": "PosX", "PosY", "Width", "Height".
    QRect ReadLayerPosFromIni(const QString& section) const;
    void SaveLayerPosToIni(const QString& section, const QRect& rectangle) const;

    // Passport photos
    void CropImage(imaging::LayeredImage& image, int layoutIndex);
    void TileImage(imaging::LayeredImage& image, int layoutIndex);

    /// Lets the user level the photo and turns it once, from its own pixels, by that angle; what
    /// it uncovers is white. Cancelled, the photo stays as it is.
    void RotateImage(imaging::LayeredImage& image);

    // Photo profiles
    QStringList GetProfileList() const;
    void LoadProfile(const QString& name, ProfileStore& store) const;
    bool SaveNewProfile(const QString& name, ProfileStore& store) const;
    void SaveProfileToIni(const QString& name, const QString& fileName) const;
    bool DeleteProfile(const QString& name) const;
    /// Full path of a profile's settings file; empty when the profile or its file is missing.
    QString ProfileFile(const QString& name) const;

    // Printer profiles
    /// The way to the print service; null for none. Outlives the data module.
    void SetPrinterLayer(printing::PrinterLayer* printer) { printer_ = printer; }
    /// Throws printing::PrinterError where there is none.
    printing::PrinterLayer& Printer() const;
    QStringList GetPrinterProfileList() const;
    /// Keeps the current printer under a name. True; every failure throws and leaves no file.
    bool SavePrintProfile(const QString& name) const;
    void SavePrinterProfileToIni(const QString& name, const QString& fileName) const;
    /// Makes a profile's printer the current one; does nothing where the profile or its file is
    /// missing. Throws platform::Error for a damaged file or a printer that is gone; the current
    /// printer then stays.
    void LoadPrintProfile(const QString& name) const;
    void DeletePrinterProfile(const QString& name) const;

    // File names
    const core::NameSources& NameSources() const { return nameSources_; }
    void SetNameSources(core::NameSources sources) { nameSources_ = std::move(sources); }
    /// Name of a quickly saved photo: the prefix, what FileVarCombo's index `nameVariable` adds and
    /// the extension of FileTypCombo's index `fileType`, nothing between them. An index beyond the
    /// choices adds nothing.
    QString GetFileName(const QString& prefix, int nameVariable, int fileType) const;

    // Saving
    /// Where photos are saved: ImageSaveDir, or while there is no such folder the last save folder.
    QString SaveFolder() const;
    /// Folder of the file last chosen in the save dialog, with a trailing separator; empty at
    /// first.
    const QString& LastSaveFolder() const { return lastSaveFolder_; }
    /// Writes the image into `folder`: under `fileName`, over an older file of that name, or
    /// under a name that the user is asked for where it is empty.
    ///
    /// `scale` writes it in 413 x 531 pixels. After a save under a given name the newest undo step
    /// is taken back, whether or not the image was scaled, and the others are dropped. Throws
    /// imaging::WriteError where the file cannot be written; the image and its undo steps are then
    /// as they were.
    void SaveImage(imaging::LayeredImage& image, const QString& folder, const QString& fileName,
                   bool scale);
    /// Writes nothing: this way of saving never had a file name.
    void AutoSaveImage(imaging::LayeredImage& image, const QString& folder) const;

    // Archive
    static QString GetArchivPath();
    static void SetArchivPath(const QString& folder);
    bool ConnectDB(const QString& folder);
    /// False where no database is connected.
    bool CreateDB();
    /// Opened on first use; null while there is none.
    ArchiveTable* Archive();
    /// Files the image's photo: as a JPEG in the month's folder below `archiveFolder`, which is
    /// made where the archive folder exists, and as a record, the current one from then on. A file
    /// that is there already is never replaced: its number is left out. `tags` and `objectName` go
    /// into the image's IPTC items as SaveIptcToImage does, and into the file.
    ///
    /// Does nothing without the table, or where the month's folder cannot be made. Throws
    /// imaging::WriteError where the photo cannot be written, which leaves an empty record, and
    /// store::StoreError.
    void SaveImageToArchiv(imaging::LayeredImage& image, const QString& archiveFolder,
                           const QString& tags, const QString& objectName);
    /// The record that GetFileNameFromRecord tells of; 0 is none.
    qint64 CurrentRecord() const { return currentRecord_; }
    void SetCurrentRecord(qint64 id) { currentRecord_ = id; }
    /// Full path of the current record's photo; where there is no such file a message names it, and
    /// the path is empty.
    QString GetFileNameFromRecord(const QString& archiveFolder);
    /// Lists only the records whose tags hold every word of `text`; all again where it is empty.
    void ImgTagSearch(const QString& text);
    /// Sets object name (2:5) and keywords (2:25, each line break a comma) among the image's IPTC
    /// items; writes no file.
    void SaveIptcToImage(imaging::LayeredImage& image, const QString& objectName,
                         const QString& keywords);
    /// Replaces the IPTC items of a JPEG file by these two. Does nothing where there is no such
    /// file. Throws platform::FileError.
    void RewriteIptcToImage(const QString& fileName, const QString& objectName,
                            const QString& keywords);

 private:
    QString LayoutFile() const;
    ProfileIndex PhotoProfileIndex() const;
    ProfileIndex PrinterProfileIndex() const;
    void ArchiveSinglePhoto(imaging::LayeredImage& image);
    void SaveByDialog(const imaging::LayeredImage& image);
    void SaveQuickly(imaging::LayeredImage& image, const QString& path, bool scaled);

    UserInterface& ui_;
    const Settings* settings_ = nullptr;
    printing::PrinterLayer* printer_ = nullptr;
    std::function<void(TData&)> initHandler_;

    QString programFolder_;
    QString dataFolder_;
    QString templateFolder_;
    QString curvesFolder_;
    int frameSize_ = 25;

    QString currentFile_;
    QString currentFileFolder_;
    bool adjusted_ = false;
    core::OpenDialog openDialog_;
    core::SaveDialog saveDialog_;
    QString lastSaveFolder_;
    core::NameSources nameSources_;

    std::vector<CatalogueEntry> maskList_;
    std::vector<TMask> objectList_;
    QString templateName_;
    QSize templateCanvas_;

    std::unique_ptr<store::Database> database_;
    std::unique_ptr<ArchiveTable> archive_;
    qint64 currentRecord_ = 0;
};

}  // namespace kadrona::core
