#include "app/base/PictureFileDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QStandardPaths>
#include <QTreeView>
#include <array>

#include "app/base/FilePreview.h"
#include "controls/messages/FolderDialog.h"
#include "controls/messages/MessageBoxes.h"
#include "core/base/FileDialogs.h"
#include "core/base/RecentPhotos.h"
#include "dialogs/base/WindowPlacement.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Wide enough for the columns of the list.
constexpr QSize DialogSize(880, 560);

/// The user's values that hold the folder of each dialog's last choice.
const QString OpenFolderValue = u"OpenFolder"_s;
const QString SaveFolderValue = u"SaveFolder"_s;
const QString ChosenFolderValue = u"ChosenFolder"_s;

/// Whether the dialog that opens begins with the filter of everything that can be read.
const QString OpenAllValue = u"OpenAllFormats"_s;

constexpr std::array FolderValues{&OpenFolderValue, &SaveFolderValue, &ChosenFolderValue};

/// Empty where it cannot be read: the dialog opens all the same.
QString RememberedFolder(const QString& name) {
    try {
        return platform::ReadRegistryText(name);
    } catch (const platform::Error&) {
        return {};
    }
}

/// Folders may be named after customers, as photos are: who has none kept has no folders kept.
void RememberFolder(const QString& name, const QString& folder) {
    try {
        if (core::RecentPhotos().Keeps() && folder != platform::ReadRegistryText(name)) {
            platform::WriteRegistryText(name, folder);
        }
    } catch (const platform::Error&) {
        // The choice itself holds.
    }
}

/// Where a dialog starts: the folder wanted, the last one, or one that exists.
QString StartFolder(const QString& wanted, const QString& name) {
    for (const QString& folder :
         {wanted, RememberedFolder(name),
          QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)}) {
        if (QFileInfo(folder).isDir()) {
            return folder;
        }
    }
    return QDir::homePath();
}

/// The last filter shows everything that can be read; the first, with which the dialog begins
/// otherwise, leaves out what telephones and cameras write.
void ChooseRememberedFilter(QFileDialog& window) {
    try {
        if (platform::ReadRegistryInteger(OpenAllValue) != 0) {
            window.selectNameFilter(window.nameFilters().constLast());
        }
    } catch (const platform::Error&) {
        // The dialog opens all the same.
    }
}

/// A single format is chosen for once: the next folder may hold none of it.
void RememberFilter(const QFileDialog& window) {
    const QString chosen = window.selectedNameFilter();
    const bool all = chosen == window.nameFilters().constLast();
    try {
        if ((all || chosen == window.nameFilters().constFirst()) &&
            platform::ReadRegistryInteger(OpenAllValue) != int{all}) {
            platform::WriteRegistryInteger(OpenAllValue, int{all});
        }
    } catch (const platform::Error&) {
        // The choice itself holds.
    }
}

/// The extension of a filter with one pattern, "PDF (*.pdf)": "pdf".
QString ExtensionOf(const QString& nameFilter) {
    return nameFilter.section(u"*."_s, -1).chopped(1);
}

bool CanBeWritten(const QString& path) {
    return imaging::WritableExtensions().contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

/// Settles the whole path, and whether it may be replaced, before it closes. The toolkit's own
/// dialog asks about the name as it was typed and appends an extension only to one without any dot.
class SaveFileDialog : public QFileDialog {
 public:
    using QFileDialog::QFileDialog;

    /// What was accepted, with its extension.
    const QString& Path() const { return path_; }

    void ChooseFilter(const QString& nameFilter) {
        selectNameFilter(nameFilter);
        setDefaultSuffix(ExtensionOf(nameFilter));
    }

 protected:
    void accept() override {
        const QString typed = selectedFiles().value(0);
        if (typed.isEmpty() || QFileInfo(typed).isDir()) {
            QFileDialog::accept();  // opens the folder
            return;
        }
        path_ = CanBeWritten(typed) ? typed : typed + u'.' + defaultSuffix();
        if (MayReplace()) {
            done(Accepted);  // accept() would look at the typed name once more
        }
    }

 private:
    bool MayReplace() {
        return !QFileInfo(path_).isFile() ||
               controls::AskYesNo(
                   this,
                   u"Die Datei „%1“ existiert bereits.\nMöchten Sie sie ersetzen?"_s.arg(
                       QDir::toNativeSeparators(path_)),
                   controls::Severity::Warning);
    }

    QString path_;
};

/// What both dialogs have in common.
void Prepare(QFileDialog& window, const QString& objectName, const QString& filter) {
    window.resize(dialogs::WithinScreen(window, DialogSize));
    window.setObjectName(objectName);
    window.setNameFilters(NameFilters(filter));
    if (const auto* list = window.findChild<QTreeView*>(u"treeView"_s)) {
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
}

}  // namespace

QStringList NameFilters(const QString& pipeSeparated) {
    const QStringList parts = pipeSeparated.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString name = parts.at(i).section(u" ("_s, 0, 0);
        filters.append(u"%1 (%2)"_s.arg(name, QString(parts.at(i + 1)).replace(u';', u' ')));
    }
    return filters;
}

void ForgetFolders() {
    for (const QString* value : FolderValues) {
        if (!platform::ReadRegistryText(*value).isEmpty()) {
            platform::WriteRegistryText(*value, {});
        }
    }
}

std::optional<QString> ChoosePicture(QWidget* parent, const core::OpenDialog& dialog) {
    QFileDialog window(parent, u"Bild öffnen"_s,
                       StartFolder(dialog.initialFolder, OpenFolderValue));
    window.setFileMode(QFileDialog::ExistingFile);
    Prepare(window, u"OpenDialog"_s,
            dialog.filter + u"|Alle lesbaren Fotos|"_s + dialog.Patterns().join(u';'));
    ChooseRememberedFilter(window);
    FilePreview::AddTo(window);
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    RememberFilter(window);
    const QString file = window.selectedFiles().constFirst();
    RememberFolder(OpenFolderValue, QFileInfo(file).path());
    return file;
}

std::optional<QString> ChooseSaveFile(QWidget* parent, const core::SaveDialog& dialog,
                                      QString& nameFilter) {
    SaveFileDialog window(parent, dialog.title, StartFolder(dialog.initialFolder, SaveFolderValue));
    window.setAcceptMode(QFileDialog::AcceptSave);
    // A desktop's own dialog asks about replacing before the extension is appended, if at all.
    window.setOption(QFileDialog::DontUseNativeDialog);
    window.setFileMode(QFileDialog::AnyFile);
    Prepare(window, u"SaveDialog"_s, dialog.filter);
    window.setDefaultSuffix(dialog.defaultExtension);
    if (!nameFilter.isEmpty()) {
        window.ChooseFilter(nameFilter);
    }
    QObject::connect(&window, &QFileDialog::filterSelected, &window, &SaveFileDialog::ChooseFilter);
    window.selectFile(dialog.fileName);
    if (window.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    nameFilter = window.selectedNameFilter();
    RememberFolder(SaveFolderValue, QFileInfo(window.Path()).path());
    return window.Path();
}

QString ChooseFolder(QWidget* parent, const QString& title) {
    QString folder = controls::AskForFolder(parent, title, StartFolder({}, ChosenFolderValue));
    if (!folder.isEmpty()) {
        RememberFolder(ChosenFolderValue, folder);
    }
    return folder;
}

}  // namespace kadrona::app
