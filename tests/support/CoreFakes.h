#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QVariantMap>

#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/settings/Settings.h"
#include "core/templates/TemplateFile.h"

namespace kadrona::testing {

/// Remembers every message and question; answers with what was set.
class FakeInterface : public core::UserInterface {
 public:
    void ShowMessage(const QString& text) override { messages.append(text); }
    bool AskYesNo(const QString& text) override {
        messages.append(text);
        return !answers.isEmpty() && answers.takeFirst();
    }
    std::optional<QStringList> EditTags(const imaging::Pixels& /*photo*/,
                                        const QStringList& lines) override {
        offeredTags = lines;
        ++tagEditorShown;
        return tags;
    }
    std::optional<QString> AskForSaveFile(const core::SaveDialog& dialog) override {
        saveDialogs.append(dialog);
        return saveFile;
    }
    std::optional<double> AskForRotation(const imaging::Pixels& preview) override {
        rotationPreview = preview.Size();
        return rotation;
    }

    QStringList messages;
    /// One for each question; no where there is none left.
    QList<bool> answers;
    QSize rotationPreview;
    std::optional<double> rotation;
    QList<core::SaveDialog> saveDialogs;
    std::optional<QString> saveFile;
    std::optional<QStringList> tags;
    /// Those that the tag editor began with the last time.
    QStringList offeredTags;
    int tagEditorShown = 0;
};

/// Settings with the values of a profile that stored nothing; those that a test needs can be set by
/// their names.
class FakeSettings : public core::Settings {
 public:
    QVariant& operator[](const QString& control) { return values_[control]; }

    bool Checked(const core::ProfileEntry& entry) const override {
        return values_.value(entry.control, entry.checked).toBool();
    }
    int ItemIndex(const core::ProfileEntry& entry) const override {
        return values_.value(entry.control, entry.itemIndex).toInt();
    }
    int Number(const core::ProfileEntry& entry) const override {
        return values_.value(entry.control, entry.number).toInt();
    }
    /// A list's text is set by the name of its control and "Text".
    QString Text(const core::ProfileEntry& entry) const override {
        const bool list = entry.property == core::ProfileProperty::List;
        return values_.value(entry.control + QLatin1StringView(list ? "Text" : ""), entry.text)
            .toString();
    }

 private:
    QVariantMap values_;
};

/// A template's file: a white canvas with one oval.
inline QByteArray OvalTemplate(int width, int height) {
    return core::SerializeTemplate(
        {{.colour = 0xffffff, .right = width, .bottom = height, .name = QStringLiteral("Canvas")},
         {.colour = 0x0000c0,
          .brushStyle = 1,
          .penWidth = 4,
          .right = width - 50,
          .left = 50,
          .bottom = height - 50,
          .top = 50,
          .shape = core::TMask::Ellipse,
          .name = {}}});
}

/// A program folder with templates and an empty place for data, gone with the object. The user's
/// registry and the user's queue of photos are in it as well.
class Installation {
 public:
    Installation() {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(Path("config")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(Path("user")));
        QDir().mkpath(Path("program/Schablonen"));
        AddTemplate("Pass", "Pass.msk", 350, 450);
        AddTemplate("USA", "USA.msk", 508, 508);
    }

    QString Path(const char* below) const { return root_.filePath(QLatin1StringView(below)); }
    core::Folders Folders() const { return {Path("program"), Path("common")}; }
    /// A file in the data folder.
    QString DataFile(const char* name) const {
        return Path("common/Kadrona/") + QLatin1StringView(name);
    }

    /// A catalogue line and its file.
    void AddTemplate(const char* name, const char* file, int width, int height) {
        Write("program/Schablonen/" + QByteArray(file), OvalTemplate(width, height));
        catalogue_ += QByteArray(name) + "=" + file + "\n";
        Write("program/Schablonen/MaskList.kdr", catalogue_);
    }

    /// The figures of "Pass": a head of 32 to 36 mm, which ends as the document says ("Schädel" or
    /// nothing for the hair).
    void WriteFigures(const QByteArray& crown = {}) const {
        Write("program/Schablonen/Vorgaben.tsv",
              "Name\tDatei\tBreite\tHöhe\tBeleg\tGelesen am\tKopf von\tKopf bis\tAugen von\t"
              "Augen bis\tOben von\tOben bis\tKinn von\tKinn bis\tGesicht von\tGesicht bis\t"
              "Achse von\tAchse bis\tRichtwert\tHinweis\tScheitel\n"
              "Pass\tPass.msk\t35\t45\tO\t2026-11-21\t32\t36" +
                  QByteArray(13, '\t') + crown + "\n");
    }

    void Write(const QByteArray& below, const QByteArray& content) const {
        QFile file(Path(below.constData()));
        QDir().mkpath(QFileInfo(file).path());
        if (file.open(QIODevice::WriteOnly)) {
            file.write(content);
        }
    }

 private:
    QTemporaryDir root_;
    QByteArray catalogue_;
};

}  // namespace kadrona::testing
