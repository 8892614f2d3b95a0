#include "tests/faults/Operations.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QTimer>
#include <map>
#include <memory>
#include <string_view>

#include "app/commandline/OrderCommand.h"
#include "app/commandline/PhotoCommand.h"
#include "app/face/CheckReport.h"
#include "controls/messages/ActionGuard.h"
#include "core/base/RecentPhotos.h"
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
#include "tests/faults/Module.h"
#ifdef KADRONA_WITH_CUPS
#include "printing/cups/service/Job.h"
#endif

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace kadrona::testing {

namespace {

const QStringList SheetFormats{u"jpg"_s, u"jp2"_s, u"png"_s, u"bmp"_s, u"tif"_s, u"pdf"_s};

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
    for (const char* name :
         {"program/Schablonen", "archive", "saved", "common", "backup", "exported", "server"}) {
        QDir().mkpath(folder + u'/' + QLatin1StringView(name));
    }
    platform::WriteFileAtomically(folder + u"/program/Schablonen/Pass.msk"_s,
                                  OvalTemplate(350, 450));
    platform::WriteFileAtomically(folder + u"/program/Schablonen/MaskList.kdr"_s,
                                  "Pass=Pass.msk\n"_ba);
}

/// What a program that ran before has left.
void MakeInstallation(const QString& folder) {
    MakeFolders(folder);
    Module module(folder);
    module.data.InitSystem();
    imaging::WriteImageFile(folder + u"/saved/Foto.png"_s, module.image.Photo(), {300});
    FillArchive(module);
    BoundFile bound;
    module.data.SaveNewProfile(u"Alt"_s, bound);
    module.data.SavePrintProfile(u"Alt"_s);
    module.data.SaveLayerPosToIni(u"alt"_s, {1, 2, 3, 4});
    core::TData::SetArchivPath(folder);
    platform::WriteFileAtomically(folder + u"/saved/Auftrag.txt"_s,
                                  "Foto.png; Pass; 10,10,80; 2\n"_ba);
    for (const QString& format : SheetFormats) {
        platform::WriteFileAtomically(folder + u"/saved/Blatt."_s + format, "old"_ba);
    }
    imaging::WriteCurveFile(folder + u"/common/Kadrona/Curves/Alt.acv"_s, {});
    core::SheetTray(TrayFolder(folder)).Add(TrayItem(u"Anna"_s));
    printing::StoreCalibration(folder + u"/common/Kadrona"_s, u"Alt"_s, {1.01, 1, {}});
}

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

const core::TemplatePlace Place{10, 10, 80};

void MakeUpload(Module& module) {
    module.RunCommand([&](QTextStream& progress, QTextStream& errors) {
        app::PhotoRequest request;
        request.photos = QStringList{module.folder + u"/saved/Foto.png"_s};
        request.templateName = u"Pass"_s;
        request.output = module.folder + u"/saved/Blatt.jpg"_s;
        request.place = Place;
        app::MakeUploadFiles(request, module.data, progress, errors);
    });
}

void MakeOrder(Module& module) {
    module.RunCommand([&](QTextStream& progress, QTextStream& errors) {
        app::SheetRequest request;
        request.order = module.folder + u"/saved/Auftrag.txt"_s;
        request.output = module.folder + u"/saved/Blatt.jpg"_s;
        app::MakeOrder(request, module.data, progress, errors);
    });
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
    NamedSteps steps{
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
        {"preset",
         [](Module& module) {
             imaging::WriteCurveFile(module.data.CurvesFolder() + u"/Neu.acv"_s, {});
         }},
        {"recent",
         [](Module& module) {
             core::RecentPhotos().Add({module.folder + u"/saved/Foto.png"_s, "picture"_ba});
         }},
        {"report",
         [](Module& module) {
             app::CheckReport report;
             report.photo = module.image.Photo();
             report.rectangle = {10, 10, 80, 103};
             report.templateName = u"Pass"_s;
             app::WriteCheckReport(report, module.folder + u"/saved/Blatt.pdf"_s);
         }},
        {"upload", MakeUpload},
        {"order", MakeOrder}};
    const NamedSteps ofArchive = ArchiveSteps();
    steps.insert(steps.end(), ofArchive.begin(), ofArchive.end());
    for (const auto& [name, step] : steps) {
        operations.push_back(OfModule(name, step));
        operations.back().removes = name == "delete-photo"sv || name == "delete-due"sv;
    }
    return operations;
}

}  // namespace kadrona::testing
