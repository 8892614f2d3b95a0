#include "app/PictureFileDialog.h"

#include <QFileDialog>
#include <QStandardPaths>

#include "core/Data.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Wide enough for the columns of the list.
constexpr QSize DialogSize(880, 560);

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
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    QFileDialog window(parent, u"Bild öffnen"_s,
                       dialog.initialFolder.isEmpty() ? pictures : dialog.initialFolder);
    window.resize(DialogSize);
    window.setObjectName(u"OpenDialog"_s);
    window.setFileMode(QFileDialog::ExistingFile);
    window.setNameFilters(NameFilters(dialog.filter));
    if (window.exec() != QDialog::Accepted || window.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return window.selectedFiles().constFirst();
}

}  // namespace kadrona::app
