#pragma once

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>

#include "core/sheet/SheetLayout.h"
#include "dialogs/SettingsDialog.h"
#include "tests/app/StoryFixture.h"

namespace kadrona::testing {

/// Saving through the real window, into the folder "saved".
class SavingStory : public Story {
 protected:
    SavingStory() {
        QDir().mkpath(installation.Path("saved"));
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
    }

    /// Opens the photo and makes one photo of it. Opening activates the profile, so that what a
    /// test sets goes between the two.
    void MakeSinglePhoto(const std::function<void()>& set = [] {}) {
        Open(photoName);
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("saved"));
        set();
        window->findChild<QComboBox*>(QStringLiteral("Anzahl"))
            ->setCurrentIndex(core::SinglePhotoLayout);
        Trigger(QStringLiteral("acCrop"));
    }

    /// Types a name into the save dialog and accepts it.
    static void Type(QWidget& shown, const QString& name) {
        EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the hourglass stays";
        shown.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
        dynamic_cast<QDialog&>(shown).accept();
    }

    QStringList SavedFiles() const {
        return QDir(installation.Path("saved")).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    const char* photoName = "photo.png";
};

}  // namespace kadrona::testing
