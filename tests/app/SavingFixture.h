#pragma once

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>

#include "core/SheetLayout.h"
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

    template <typename Control>
    Control& Setting(const char* name) {
        auto* settings = window->findChild<dialogs::TEinstellungenFm*>();
        return *settings->findChild<Control*>(QLatin1StringView(name));
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

    /// Expects a message with all of these parts.
    void ExpectMessage(const QStringList& parts) {
        driver.Expect(QStringLiteral("MessageBox"), [parts](QWidget& shown) {
            EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the hourglass stays";
            // A long name is broken where it has to be.
            const QString text = dynamic_cast<QMessageBox&>(shown).text().remove(QChar(0x200b));
            for (const QString& part : parts) {
                EXPECT_TRUE(text.contains(part))
                    << part.toStdString() << " is not in " << text.toStdString();
            }
            shown.findChild<QPushButton*>(QStringLiteral("OkButton"))->click();
        });
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
