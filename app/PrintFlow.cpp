#include "app/PrintFlow.h"

#include <QFileInfo>
#include <QLocale>
#include <QStatusBar>

#include "app/MainActions.h"
#include "app/PhotoSession.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "dialogs/BeforePrint.h"
#include "dialogs/PrinterProfiles.h"
#include "dialogs/SettingsDialog.h"
#include "printing/PrinterLayer.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

QSize TenthsOf(QSizeF millimetres) {
    return (millimetres * 10.0).toSize();
}

bool Fits(QSize sheet, QSize paper) {
    return sheet.width() <= paper.width() && sheet.height() <= paper.height();
}

QString SizeText(QSize tenths) {
    const QLocale german(QLocale::German);
    return u"%1 × %2 mm"_s.arg(german.toString(tenths.width() / 10.0, 'f', 1),
                               german.toString(tenths.height() / 10.0, 'f', 1));
}

printing::PrintImage PrintImageOf(const imaging::LayeredImage& sheet, const QString& photoFile) {
    if (sheet.Resolution().value <= 0) {
        throw platform::Error(
            u"Das Bild kann nicht in wahrer Größe gedruckt werden: Seine Auflösung ist nicht "
            u"bekannt. Öffnen Sie das Foto neu und erstellen Sie die Passbilder noch einmal."_s);
    }
    const imaging::Pixels& pixels = sheet.Photo();
    return {.tile = pixels.Tile(),
            .columns = pixels.Columns(),
            .rows = pixels.Rows(),
            .dotsPerInch = sheet.Resolution().value,
            .title = QFileInfo(photoFile).fileName()};
}

}  // namespace

QString PaperWarning(QSizeF sheetMillimetres, QSizeF paperMillimetres) {
    const QSize sheet = TenthsOf(sheetMillimetres);
    const QSize paper = TenthsOf(paperMillimetres);
    if (paper.isEmpty() || Fits(sheet, paper)) {
        return {};
    }
    QString text =
        u"Das Blatt passt nicht auf das eingestellte Papier und wird am Rand abgeschnitten.\n\n"
        u"Blatt:\t%1\nPapier:\t%2\n\n"_s.arg(SizeText(sheet), SizeText(paper));
    if (Fits(sheet, paper.transposed())) {
        text += u"Im %1 würde es passen.\n\n"_s.arg(
            paper.width() < paper.height() ? u"Querformat"_s : u"Hochformat"_s);
    }
    return text + u"Trotzdem drucken?"_s;
}

PrintFlow::PrintFlow(PhotoSession& session, QWidget& window, QStatusBar& statusBar,
                     core::TData& data, dialogs::TEinstellungenFm& settings, MainActions& actions)
    : session_(session),
      window_(window),
      statusBar_(statusBar),
      data_(data),
      profileDialog_(new dialogs::TPrintProfilDlg(data, settings, &window)),
      beforePrintDialog_(new dialogs::TBeforPrintDlgFm(data, settings, &window)) {
    actions.Connect(Action::PrintImage, this, [this] { acPrintImageExecute(); });
    actions.Connect(Action::PrinSetup, this, [this] { acPrinSetupExecute(); });
    actions.Connect(Action::PrinterProfilDlg, this, [this] { profileDialog_->ShowEx(); });
}

void PrintFlow::acPrintImageExecute() {
    const printing::PrintImage image = PrintImageOf(session_.Image(), data_.CurrentFile());
    if (!ChoosePrinter() || !ConfirmPaper(image.Millimetres())) {
        return;
    }
    const controls::WaitCursor wait;
    data_.Printer().Print(image);
    constexpr int Milliseconds = 8000;
    statusBar_.showMessage(
        u"Druckauftrag an „%1“ gesendet"_s.arg(data_.Printer().CurrentPrinter().device),
        Milliseconds);
}

/// False when the user cancelled. The choice stays the current printer for the rest of the run.
bool PrintFlow::ChoosePrinter() {
    switch (beforePrintDialog_->ShowEx()) {
        case controls::ModalResult::Cancel:
            return false;
        case controls::ModalResult::Yes: {
            const controls::WaitCursor wait;
            data_.LoadPrintProfile(beforePrintDialog_->SelectedProfile());
            return true;
        }
        case controls::ModalResult::No:
            return data_.Printer().ShowSetupDialog(window_.windowHandle());
        default:
            return true;
    }
}

/// Asks only where the sheet does not fit.
bool PrintFlow::ConfirmPaper(QSizeF sheetMillimetres) {
    QString warning;
    {
        const controls::WaitCursor wait;
        warning = PaperWarning(sheetMillimetres, data_.Printer().PaperMillimetres());
    }
    return warning.isEmpty() || controls::AskYesNo(&window_, warning, controls::Severity::Warning);
}

void PrintFlow::acPrinSetupExecute() {
    data_.Printer().ShowSetupDialog(window_.windowHandle());
}

}  // namespace kadrona::app
