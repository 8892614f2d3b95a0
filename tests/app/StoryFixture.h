#pragma once

#include <QApplication>
#include <memory>

#include "app/MainWindow.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/settings/SettingsDialog.h"
#include "imaging/view/ImageView.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/FakePrinter.h"
#include "tests/support/Windows.h"

namespace kadrona::testing {

/// The real main window on a fresh installation with one photo, driven by object names.
class Story : public ::testing::Test {
 protected:
    Story() {
        SavePhoto("photo.png", QSize(1200, 1600));
        Start();
    }

    void Start() {
        window.reset();
        window = std::make_unique<app::TmainFm>(installation.Folders(), service);
        window->show();
    }

    void SavePhoto(const char* name, QSize size, int value = 120) {
        QImage photo(size, QImage::Format_RGB32);
        photo.fill(qRgb(value, value, value));
        QDir().mkpath(QFileInfo(installation.Path(name)).path());
        ASSERT_TRUE(photo.save(installation.Path(name)));
    }

    /// Chooses a template by its row when asked.
    void ExpectTemplate(int templateRow = 0) {
        driver.Expect(QStringLiteral("SchabloneFm"), [templateRow](QWidget& shown) {
            Child<QListWidget>(shown, "lbSchablonen").setCurrentRow(templateRow);
            ClickButton(shown, "btnOk");
        });
    }

    /// Drops a photo and chooses a template.
    void Open(const char* name, int templateRow = 0) {
        ExpectTemplate(templateRow);
        window->OpenDroppedFiles({installation.Path(name)});
    }
    /// Chooses a number of photos by its row.
    void SetLayout(int layout) { Child<QComboBox>(*window, "Anzahl").setCurrentIndex(layout); }

    QAction& Named(const QString& action) { return Child<QAction>(window->Actions(), action); }
    void Trigger(const QString& action) { Named(action).trigger(); }
    bool IsEnabled(const QString& action) { return Named(action).isEnabled(); }
    bool IsChecked(const QString& action) { return Named(action).isChecked(); }
    template <typename Control>
    Control& Setting(const char* name) {
        return Child<Control>(Child<dialogs::TEinstellungenFm>(*window), name);
    }
    imaging::LayeredImage& Image() { return window->View().Image(); }
    QRect Template() { return Image().LayerAt(1).rectangle; }
    QPoint OnScreen(QPoint photo) { return window->View().ToWidget(photo).toPoint(); }

    Installation installation;
    ModalDriver driver;
    FakePrinter printer;
    /// What the next start gets.
    printing::PrinterLayer* service = &printer;
    std::unique_ptr<app::TmainFm> window;
};

/// Saving through the real window, into the folder "saved".
class SavingStory : public Story {
 protected:
    SavingStory() {
        QDir().mkpath(installation.Path("saved"));
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
    }

    /// Opens the photo and makes one photo of it. Opening activates the profile, so that what a
    /// test sets goes between the two.
    void MakeSinglePhoto(
        const std::function<void()>& set = [] {}, int templateRow = 0) {
        Open(photoName, templateRow);
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
        set();
        SetLayout(core::SinglePhotoLayout);
        Trigger(QStringLiteral("acCrop"));
    }

    /// Types a name into the save dialog and accepts it.
    static void Type(QWidget& shown, const QString& name) {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the hourglass stays";
        Child<QLineEdit>(shown, "fileNameEdit").setText(name);
        dynamic_cast<QDialog&>(shown).accept();
    }

    void Tick(const char* setting) { Setting<QAbstractButton>(setting).setChecked(true); }

    /// Names, joined by bars.
    QString SavedFiles() const {
        return QDir(installation.Path("saved"))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name)
            .join(u'|');
    }

    const char* photoName = "photo.png";
};

}  // namespace kadrona::testing
