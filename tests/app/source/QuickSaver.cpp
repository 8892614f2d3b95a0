// Makes one passport photo through the real window and saves it quickly, for a test that kills it
// meanwhile:
//
//   quick_saver FOLDER PHOTO
//
// FOLDER is an installation with one template. Writes a line when the quick save begins and the
// message that it is done.

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QTimer>
#include <cstdio>

#include "app/MainWindow.h"
#include "core/sheet/SheetLayout.h"
#include "dialogs/SettingsDialog.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;
using namespace kadrona;

namespace {

void Say(const char* word) {
    std::puts(word);
    std::fflush(stdout);
}

/// Takes the first template; a message means that the photo is saved.
void AnswerWindow() {
    QWidget* shown = QApplication::activeModalWidget();
    if (auto* message = qobject_cast<QMessageBox*>(shown)) {
        Say(qPrintable(message->text()));
        message->accept();
    } else if (shown != nullptr) {
        shown->findChild<QListWidget*>(u"lbSchablonen"_s)->setCurrentRow(0);
        qobject_cast<QDialog*>(shown)->accept();
    }
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QDir folder(QApplication::arguments().value(1));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.filePath(u"config"_s)));
    app::TmainFm window({folder.filePath(u"program"_s), folder.filePath(u"common"_s)});
    window.CreateReusedWindows();
    window.show();

    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, AnswerWindow);
    answers.start(1);
    window.OpenDroppedFiles({QApplication::arguments().value(2)});
    auto* settings = window.findChild<dialogs::TEinstellungenFm*>();
    settings->findChild<QLineEdit*>(u"ImageSaveDir"_s)->setText(folder.filePath(u"saved"_s));
    window.findChild<QComboBox*>(u"Anzahl"_s)->setCurrentIndex(core::SinglePhotoLayout);
    window.View().Image().SetLayerRectangle(1, {50, 50, 1400, 1800});
    window.Actions()[u"acCrop"_s]->trigger();
    Say("saving");
    window.Actions()[u"acSaveImageFast"_s]->trigger();
    return 0;
}
