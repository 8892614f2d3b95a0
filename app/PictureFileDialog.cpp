#include "app/PictureFileDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

#include "controls/MessageBoxes.h"
#include "core/FileDialogs.h"
#include "imaging/ImageWriter.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Wide enough for the columns of the list.
constexpr QSize DialogSize(880, 560);

/// Where a dialog starts that was given no folder.
QString StartFolder(const QString& wanted) {
    return wanted.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                            : wanted;
}

/// The extension of a filter with one pattern, "PDF (*.pdf)": "pdf".
QString ExtensionOf(const QString& nameFilter) {
    return nameFilter.section(u"*."_s, -1).chopped(1);
}

bool HasKnownExtension(const QString& path, const QStringList& nameFilters) {
    QStringList known = imaging::WritableExtensions();
    for (const QString& filter : nameFilters) {
        known.append(ExtensionOf(filter));
    }
    return known.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

/// The dialog appends its extension only to a name without any dot and asks before it replaces a
/// file; this does both for a name like "max.2024_kdr". Nothing when the user does not agree.
std::optional<QString> WithExtension(QFileDialog& dialog) {
    const QString chosen = dialog.selectedFiles().constFirst();
    if (HasKnownExtension(chosen, dialog.nameFilters())) {
        return chosen;
    }
    const QString path = chosen + u'.' + dialog.defaultSuffix();
    if (QFileInfo::exists(path) &&
        !controls::AskYesNo(&dialog,
                            u"Die Datei „%1“ existiert bereits.\nMöchten Sie sie ersetzen?"_s.arg(
                                QDir::toNativeSeparators(path)),
                            controls::Severity::Warning)) {
        return std::nullopt;
    }
    return path;
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

std::optional<QString> ChoosePicture(QWidget* parent, const core::OpenDialog& dialog) {
    QFileDialog window(parent, u"Bild öffnen"_s, StartFolder(dialog.initialFolder));
    window.resize(DialogSize);
    window.setObjectName(u"OpenDialog"_s);
    window.setFileMode(QFileDialog::ExistingFile);
    window.setNameFilters(NameFilters(dialog.filter));
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return window.selectedFiles().constFirst();
}

std::optional<QString> ChooseSaveFile(QWidget* parent, const core::SaveDialog& dialog) {
    QFileDialog window(parent, dialog.title, StartFolder(dialog.initialFolder));
    window.resize(DialogSize);
    window.setObjectName(u"SaveDialog"_s);
    window.setAcceptMode(QFileDialog::AcceptSave);
    // A desktop's own dialog asks about replacing before the extension is appended, if at all.
    window.setOption(QFileDialog::DontUseNativeDialog);
    window.setFileMode(QFileDialog::AnyFile);
    window.setNameFilters(NameFilters(dialog.filter));
    window.setDefaultSuffix(dialog.defaultExtension);
    QObject::connect(
        &window, &QFileDialog::filterSelected, &window,
        [&window](const QString& filter) { window.setDefaultSuffix(ExtensionOf(filter)); });
    window.selectFile(dialog.fileName);
    while (window.exec() == QDialog::Accepted && !window.selectedFiles().isEmpty()) {
        if (auto path = WithExtension(window)) {
            return path;
        }
    }
    return std::nullopt;
}

}  // namespace kadrona::app
