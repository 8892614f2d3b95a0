#include "tests/faults/Operations.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QTimer>
#include <map>
#include <memory>
#include <utility>

#include "controls/messages/ActionGuard.h"
#include "core/Data.h"
#include "core/archive/ArchiveBackup.h"
#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveTable.h"
#include "core/archive/KeepingSchema.h"
#include "core/sheet/SheetTray.h"
#include "dialogs/archive/ArchiveWindow.h"
#include "dialogs/archive/ImageTags.h"
#include "dialogs/settings/SettingsDialog.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/tone/CurveFile.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyFile.h"
#include "printing/Calibration.h"
#ifdef KADRONA_WITH_CUPS
#include "printing/cups/service/Job.h"
#endif
#include "store/sqlite/SqliteDatabase.h"
#include "tests/support/ArchiveDatabase.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/PixelMatchers.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

const QStringList SheetFormats{u"jpg"_s, u"jp2"_s, u"png"_s, u"bmp"_s, u"tif"_s, u"pdf"_s};
const QString Tags = u"Jürgen Groß\r\nKöln\r\n"_s;

/// The data module of the installation in a folder, and what it works with.
struct Module {
    explicit Module(QString where)
        : folder(std::move(where)),
          data(ui, {folder + u"/program"_s, folder + u"/common"_s}, &printer),
          archive(folder + u"/archive"_s) {
        core::NameSources sources;
        sources.now = [] { return QDateTime(QDate(2026, 3, 7), QTime(14, 30)); };
        data.SetNameSources(sources);
        image.Open(imaging::Pixels(Filled({120, 160}, 0xffa0a0a0)), {300});
    }

    void File() { data.SaveImageToArchiv(image, archive, Tags, u"Jürgen Groß"_s); }

    QString folder;
    FakeInterface ui;
    FakePrinter printer;
    core::TData data;
    QString archive;
    imaging::LayeredImage image;
};

core::CollectedItem TrayItem(const QString& name) {
    return {imaging::Pixels(TestPicture(35, 45)), {35'000, 45'000}, u"Pass"_s, name};
}

QString TrayFolder(const QString& folder) {
    return folder + u"/tray"_s;
}

/// Remembers the file that a profile is bound to.
class BoundFile : public core::ProfileStore {
 public:
    QString StorageFile() const override { return file_; }
    void SetStorageFile(const QString& path) override { file_ = path; }

 private:
    QString file_;
};

void MakeFolders(const QString& folder) {
    for (const char* name : {"program/Schablonen", "archive", "saved", "common", "backup"}) {
        QDir().mkpath(folder + u'/' + QLatin1StringView(name));
    }
}

/// What a program that ran before has left.
void MakeInstallation(const QString& folder) {
    MakeFolders(folder);
    Module module(folder);
    module.data.InitSystem();
    module.File();
    // Made by chance else, so that no two runs would leave the same.
    store::Database& archive = module.data.ArchiveDatabase();
    core::CreateKeeping(archive);
    archive.Execute(uR"(INSERT INTO "ImgKeeping" ("Name", "Value") VALUES ('Identity', 'a'))"_s);
    BoundFile bound;
    module.data.SaveNewProfile(u"Alt"_s, bound);
    module.data.SavePrintProfile(u"Alt"_s);
    module.data.SaveLayerPosToIni(u"alt"_s, {1, 2, 3, 4});
    core::TData::SetArchivPath(folder);
    for (const QString& format : SheetFormats) {
        platform::WriteFileAtomically(folder + u"/saved/Blatt."_s + format, "old"_ba);
    }
    imaging::WriteCurveFile(folder + u"/common/Kadrona/Curves/Alt.acv"_s, {});
    core::SheetTray(TrayFolder(folder)).Add(TrayItem(u"Anna"_s));
    printing::StoreCalibration(folder + u"/common/Kadrona"_s, u"Alt"_s, {1.01, 1, {}});
}

using Step = std::function<void(Module&)>;

/// An operation of the data module of a finished installation.
Operation OfModule(const QByteArray& name, const Step& step) {
    return {QString::fromLatin1(name), MakeInstallation,
            [step](const QString& folder, QStringList& messages) -> std::function<void()> {
                const auto module = std::make_shared<Module>(folder);
                module->data.InitSystem();
                return [module, step, &messages] {
                    step(*module);
                    messages += module->ui.messages;
                };
            }};
}

Operation FirstStart() {
    return {u"first-start"_s, MakeFolders,
            [](const QString& folder, QStringList& messages) -> std::function<void()> {
                return [folder, &messages] {
                    const auto module = std::make_unique<Module>(folder);
                    module->data.InitSystem();
                    messages += module->ui.messages;
                };
            }};
}

void Archive(Module& module) {
    core::PhotoArchive archive(module.data.NameSources());
    archive.Connect(module.folder + u"/common/Kadrona/Database"_s);
    archive.Create();
    if (archive.File(module.image, {module.archive, {}, Tags, u"Jürgen Groß"_s}) !=
        core::Filing::Done) {
        module.ui.messages.append(module.archive + u'.');  // the caller says so
    }
}

void WriteSettings(Module& module) {
    platform::PropertyFile file(module.data.ProfileFile(u"Alt"_s));
    file.WriteText(u"FileNameEd"_s, u"Text"_s, u"Bild"_s);
    file.WriteList(u"Box"_s, u"Properties.Items"_s, {u"a"_s, u"b"_s});
    file.Save();
}

/// Each as the window does it: by its dialog, and at once into the folder of the settings.
void SaveSheet(Module& module, const QString& folder) {
    module.ui.saveFile = module.folder + u"/saved/Blatt.jpg"_s;
    module.ui.answers = {true};
    const FakeSettings settings;
    module.data.SetSettings(&settings);
    module.data.SaveImage(module.image, folder, folder.isEmpty() ? QString() : u"Blatt.jpg"_s,
                          true);
    module.ui.messages.clear();
}

core::SheetTray LoadedTray(Module& module) {
    core::SheetTray tray(TrayFolder(module.folder));
    tray.Load();
    if (!tray.UnreadPicture().isEmpty()) {
        module.ui.ShowMessage(tray.UnreadPicture());
    }
    return tray;
}

/// Uses each modal window once as it comes, and notes what the messages among them say.
class Attendant {
 public:
    using Steps = std::map<QString, std::function<void(QWidget&)>>;

    Attendant(QStringList& messages, const Steps& steps) {
        QObject::connect(&timer_, &QTimer::timeout, [this, &messages, steps] {
            auto* shown = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (shown == nullptr || !shown->isVisible() || shown == used_) {
                return;
            }
            used_ = shown;
            QObject::connect(shown, &QDialog::finished, &timer_, [this] { used_ = nullptr; });
            if (auto* box = qobject_cast<QMessageBox*>(shown)) {
                // A long path is broken where it has to be.
                messages.append(box->text().remove(QChar(0x200b)));
                QTimer::singleShot(0, box, [box] { box->buttons().first()->click(); });
            } else {  // a step may open more windows
                QTimer::singleShot(0, shown, [=] { steps.at(shown->objectName())(*shown); });
            }
        });
        timer_.start(1);
    }

 private:
    QTimer timer_;
    QDialog* used_ = nullptr;
};

void ChangeInSettingsDialog(Module& module) {
    const Attendant attendant(module.ui.messages,
                              {{u"EinstellungenFm"_s, [](QWidget& dialog) {
                                    dialog.findChild<QLineEdit*>(u"FrameSize"_s)->setText(u"31"_s);
                                    dialog.close();
                                }}});
    dialogs::TEinstellungenFm dialog(module.data);
    controls::Guarded(nullptr, [&] { dialog.InitPropertys(); });
    controls::Guarded(nullptr, [&] { dialog.ShowEx(); });
}

void ChangeTagsInArchiveWindow(Module& module) {
    const Attendant attendant(
        module.ui.messages,
        {{u"fmImgSearch"_s,
          [](QWidget& window) {
              window.findChild<QAction*>(u"acEditTags"_s)->trigger();
              window.close();
          }},
         {u"fmImageTagEdit"_s, [](QWidget& editor) {
              editor.findChild<QPlainTextEdit*>(u"TagMemo"_s)->setPlainText(u"Ö"_s);
              dynamic_cast<QDialog&>(editor).accept();
          }}});
    dialogs::TfmImageTagEdit editor;
    dialogs::TfmImgSearch window(module.data, editor);
    controls::Guarded(nullptr, [&] { window.ShowEx(module.archive); });
}

void DeletePhoto(Module& module) {
    const core::Deletion deletion =
        core::DeleteRecords(module.data.ArchiveDatabase(), module.archive, {1},
                            module.data.NameSources().now(), platform::NoProgress);
    module.ui.messages += deletion.failures;
    core::CompactArchive(module.data.ArchiveDatabase(), platform::NoProgress);
}

void BackUp(Module& module) {
    const core::Backup backup =
        core::BackUpArchive(module.data.ArchiveDatabase(), module.archive,
                            module.folder + u"/backup"_s, platform::NoProgress);
    module.ui.messages += backup.failures;
}

void NewProfile(Module& module) {
    BoundFile bound;
    module.data.SaveNewProfile(u"Neu"_s, bound);
}

}  // namespace

std::vector<Operation> AllOperations() {
    std::vector<Operation> operations{FirstStart()};
    for (const QString& format : SheetFormats) {
        operations.push_back(OfModule("sheet-" + format.toLatin1(), [format](Module& module) {
            // Of four photos over an older file.
            const imaging::Pixels sheet(TestPicture(150, 200), 2, 2);
            imaging::WriteImageFile(module.folder + u"/saved/Blatt."_s + format, sheet, {300});
        }));
    }
    const std::initializer_list<std::pair<const char*, Step>> steps{
        {"archiving", Archive},
        {"tags", [](Module& module) { module.data.Archive()->SetTags(1, u"Ö\r\n"_s); }},
        {"delete-photo", DeletePhoto},
        {"backup", BackUp},
        {"tags-in-photo",
         [](Module& module) {
             const QString photo = module.archive + u"/2026/03/2026_03_00001.jpg"_s;
             module.data.RewriteIptcToImage(photo, u"Ö"_s, u"Ö\r\n"_s);
         }},
        {"profile", WriteSettings},
        {"new-profile", NewProfile},
        {"delete-profile", [](Module& module) { module.data.DeleteProfile(u"Alt"_s); }},
        {"printer-profile", [](Module& module) { module.data.SavePrintProfile(u"Neu"_s); }},
        {"layout",
         [](Module& module) {
             module.data.SaveLayerPosToIni(u"neu"_s, {5, 6, 7, 8});
         }},
        {"registry", [](Module& module) { core::TData::SetArchivPath(module.archive); }},
        {"dialog-save", [](Module& module) { SaveSheet(module, {}); }},
        {"quick-save", [](Module& module) { SaveSheet(module, module.folder + u"/saved"_s); }},
        {"calibration",
         [](Module& module) {
             printing::StoreCalibration(module.data.DataFolder(), u"Neu"_s, {1, 1.02, {}});
         }},
        {"settings-dialog", ChangeInSettingsDialog},
        {"archive-window", ChangeTagsInArchiveWindow},
#ifdef KADRONA_WITH_CUPS
        {"print-job",
         [](Module& module) {
             const auto folder = qScopeGuard([] { qunsetenv("TMPDIR"); });
             qputenv("TMPDIR", QFile::encodeName(module.folder + u"/saved"_s));
             try {
                 QTemporaryFile page;
                 printing::PrintImage sheet;
                 sheet.tile = TestPicture(150, 200);
                 sheet.dotsPerInch = 300;
                 printing::cups::WriteJobFile(page, sheet, {});
             } catch (const platform::Error& error) {
                 module.ui.ShowMessage(module.folder + u": "_s + error.Text());  // no path to say
             }
         }},
#endif
        {"tray", [](Module& module) { LoadedTray(module).Add(TrayItem(u"Jürgen"_s)); }},
        {"tray-count",
         [](Module& module) {
             core::SheetTray tray = LoadedTray(module);
             if (!tray.Items().empty()) {
                 tray.SetCount(0, 2);
             }
         }},
        {"tray-emptied", [](Module& module) { LoadedTray(module).Clear(); }},
        {"preset", [](Module& module) {
             imaging::WriteCurveFile(module.data.CurvesFolder() + u"/Neu.acv"_s, {});
         }}};
    for (const auto& [name, step] : steps) {
        operations.push_back(OfModule(name, step));
        operations.back().removes = operations.back().name == u"delete-photo"_s;
    }
    return operations;
}

QString ArchiveFault(const QString& folder) {
    const QString databaseFolder = folder + u"/common/Kadrona/Database"_s;
    if (!QFile::exists(databaseFolder + u"/KDRImageBase.db"_s)) {
        return {};
    }
    store::SqliteDatabase database(databaseFolder);
    QString fault = DatabaseFault(database);
    if (!fault.isEmpty() || !database.TableExists(u"ImgTags_idx"_s)) {
        return fault;
    }
    QStringList recorded = Column(
        database, uR"(SELECT "ImgName" FROM "ImgDB" WHERE "ImgName" IS NOT NULL ORDER BY 1)"_s);
    QStringList photos;
    for (QDirIterator files(folder + u"/archive"_s, QDir::Files, QDirIterator::Subdirectories);
         files.hasNext();) {
        photos.append(QFileInfo(files.next()).fileName());
    }
    photos.sort();
    if (database.TableExists(u"ImgRemoval"_s)) {  // what a deletion could not remove is noted
        for (const QString& path : Column(database, uR"(SELECT "Path" FROM "ImgRemoval")"_s)) {
            photos.removeAll(path.section(u'\\', -1));
        }
    }
    return photos == recorded
               ? QString()
               : u"records: %1; photos: %2"_s.arg(recorded.join(u' '), photos.join(u' '));
}

}  // namespace kadrona::testing
