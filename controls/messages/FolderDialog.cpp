#include "controls/messages/FolderDialog.h"

#include <QFileDialog>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

QString AskForFolder(QWidget* parent, const QString& title, const QString& start) {
    QFileDialog window(parent, title, start);
    window.setObjectName(u"FolderDialog"_s);
    window.setFileMode(QFileDialog::Directory);
    window.setOption(QFileDialog::ShowDirsOnly);
    return window.exec() == QDialog::Accepted ? window.selectedFiles().value(0) : QString();
}

}  // namespace kadrona::controls
