// Start of the data module: the folders, the template catalogue and the database.

#include <QDir>
#include <QFileInfo>

#include "core/Data.h"
#include "core/UserInterface.h"
#include "core/sheet/FileNaming.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/TextDecoding.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Far more than any catalogue of templates needs.
constexpr qint64 LargestCatalogue = 4 << 20;

/// Pairs of a name and patterns, as the dialog that opens photos shows them.
constexpr QStringView OpenFilter =
    u"Alle (*.gif;*.png;*.jpg;*.jpeg;*.bmp;*.ico;*.emf;*.wmf;*.tif;*.tiff)|"
    u"*.gif;*.png;*.jpg;*.jpeg;*.bmp;*.ico;*.emf;*.wmf;*.tif;*.tiff|"
    u"GIF-Bild (*.gif)|*.gif|Portable Network Graphics (*.png)|*.png|"
    u"JPEG-Grafikdatei (*.jpg)|*.jpg|JPEG-Grafikdatei (*.jpeg)|*.jpeg|Bitmaps (*.bmp)|*.bmp|"
    u"Symbole (*.ico)|*.ico|Erweiterte Metadateien (*.emf)|*.emf|Metadateien (*.wmf)|*.wmf|"
    u"TIFF-Grafiken (*.tif)|*.tif|TIFF-Grafiken (*.tiff)|*.tiff";

constexpr QStringView SaveFilter =
    u"JPEG-Grafikdatei (*.jpg)|*.jpg|JPEG-Grafikdatei (*.jpeg)|*.jpeg|Bitmaps (*.bmp)|*.bmp|"
    u"PDF|*.pdf|TIFF|*.tif";

}  // namespace

TData::Folders TData::Folders::OfThisMachine() {
    return {platform::ProgramFolder(), platform::CommonAppDataFolder()};
}

TData::TData(UserInterface& ui, const Folders& folders) : ui_(ui) {
    openDialog_.filter = OpenFilter.toString();
    saveDialog_ = {.title = u"Passbild speichern"_s,
                   .filter = SaveFilter.toString(),
                   .defaultExtension = u"jpg"_s,
                   .initialFolder = {},
                   .fileName = {}};
    programFolder_ = DelLastBackslash(folders.program);
    dataFolder_ = platform::JoinPath(DelLastBackslash(folders.commonAppData), u"Kadrona");
    if (!platform::CreateFolder(dataFolder_)) {
        dataFolder_.clear();
    }
    templateFolder_ = platform::JoinPath(programFolder_, u"Schablonen");
}

TData::~TData() = default;

void TData::InitSystem() {
    curvesFolder_ = platform::JoinPath(dataFolder_, u"Curves");
    const QString catalogue = platform::JoinPath(templateFolder_, u"MaskList.kdr");
    if (QFileInfo::exists(catalogue)) {
        try {
            maskList_ = ParseCatalogue(
                platform::DecodeText(platform::ReadWholeFile(catalogue, LargestCatalogue)));
        } catch (const platform::FileError& error) {
            ui_.ShowMessage(error.Text());
        }
    }
    if (initHandler_) {
        initHandler_(*this);
    }
    const QString databaseFolder = platform::JoinPath(dataFolder_, u"Database");
    if (!platform::CreateFolder(databaseFolder)) {
        ui_.ShowMessage(u"Fehler, das Datenbankverzeichnis konnte nicht erstellt werden."_s);
        return;
    }
    if (!platform::CreateFolder(curvesFolder_)) {
        ui_.ShowMessage(u"Fehler, das Kurvenverzeichnis konnte nicht erstellt werden."_s);
        return;
    }
    if (ConnectDB(databaseFolder)) {
        CreateDB();
    }
}

void TData::SetCurrentFile(const QString& path) {
    currentFile_ = path;
    currentFileFolder_ = QFileInfo(path).path();
}

}  // namespace kadrona::core
