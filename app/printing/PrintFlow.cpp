#include "app/printing/PrintFlow.h"

#include <QFileInfo>
#include <algorithm>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/printing/JobStatus.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "dialogs/printing/BeforePrint.h"
#include "dialogs/printing/PrinterProfileDialog.h"
#include "dialogs/settings/SettingsDialog.h"
#include "printing/PrinterLayer.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

bool IsWhite(const QImage& image, const QRect& part) {
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if ((image.pixel(x, y) | 0xff000000) != 0xffffffff) {
                return false;
            }
        }
    }
    return true;
}

/// The white around the photo of a tile: `gap`, where the tile really has it. The setting may have
/// been changed since the sheet was made.
int RealGap(const QImage& tile, int gap) {
    const int side = gap / 2;
    const QRect whole = tile.rect();
    if (side <= 0 || gap >= std::min(tile.width(), tile.height())) {
        return 0;
    }
    const QRect row(0, 0, whole.width(), side);
    const QRect column(0, 0, side, whole.height());
    const bool isFramed = IsWhite(tile, row) && IsWhite(tile, column) &&
                          IsWhite(tile, row.translated(0, whole.height() - side)) &&
                          IsWhite(tile, column.translated(whole.width() - side, 0));
    return isFramed ? gap : 0;
}

printing::PrintImage PrintImageOf(const imaging::LayeredImage& sheet, const QString& photoFile,
                                  int gap) {
    if (sheet.Resolution().value <= 0) {
        throw platform::Error(
            u"Das Bild kann nicht in wahrer Größe gedruckt werden: Seine Auflösung ist nicht "
            u"bekannt. Öffnen Sie das Foto neu und erstellen Sie die Passbilder noch einmal."_s);
    }
    const imaging::Pixels& pixels = sheet.Photo();
    if (const imaging::Arrangement* arrangement = pixels.Arranged()) {
        return {.tile = {},
                .dotsPerInch = sheet.Resolution().value,
                .title = QFileInfo(photoFile).fileName(),
                .arrangement = *arrangement};
    }
    return {.tile = pixels.Tile(),
            .columns = pixels.Columns(),
            .rows = pixels.Rows(),
            .dotsPerInch = sheet.Resolution().value,
            .title = QFileInfo(photoFile).fileName(),
            .gap = RealGap(pixels.Tile(), gap)};
}

}  // namespace

PrintFlow::PrintFlow(PhotoSession& session, QWidget& window, QStatusBar& statusBar,
                     core::TData& data, dialogs::TEinstellungenFm& settings, MainActions& actions)
    : session_(session),
      window_(window),
      data_(data),
      profileDialog_(new dialogs::TPrintProfilDlg(data, settings, &window)),
      beforePrintDialog_(new dialogs::TBeforPrintDlgFm(data, settings, &window)),
      jobStatus_(new JobStatus(statusBar, this)) {
    actions.Connect(Action::PrintImage, this, [this] { acPrintImageExecute(); });
    actions.Connect(Action::PrintAgain, this, [this] { acPrintAgainExecute(); });
    actions.Connect(Action::PrinSetup, this, [this] { acPrinSetupExecute(); });
    actions.Connect(Action::PrinterProfilDlg, this, [this] { profileDialog_->ShowEx(); });
}

void PrintFlow::acPrintImageExecute() {
    printing::PrintImage image =
        PrintImageOf(session_.Image(), data_.CurrentFile(), data_.FrameSize());
    if (ChoosePrinter(image) && ConfirmPaper(image)) {
        Print(image);
    }
}

void PrintFlow::Print(const printing::PrintImage& image) {
    const controls::WaitCursor wait;
    printing::PrinterLayer& printer = data_.Printer();
    last_ = {printer.CurrentPrinter(), image};
    jobStatus_->Follow(last_->printer.device, printer.Print(image));
    Q_EMIT Printed();
}

/// On the printer that the last sheet was printed with, whatever was chosen since.
void PrintFlow::acPrintAgainExecute() {
    printing::PrintImage image = last_.value().image;
    {
        const controls::WaitCursor wait;
        data_.Printer().SetCurrentPrinter(last_->printer);
    }
    if (ConfirmPaper(image)) {
        Print(image);
    }
}

/// False when the user cancelled. Gives the image the profile's calibration and the copies that the
/// user asked for. The choice stays the current printer for the rest of the run.
bool PrintFlow::ChoosePrinter(printing::PrintImage& image) {
    beforePrintDialog_->SetSheet(image);
    switch (beforePrintDialog_->ShowEx()) {
        case controls::ModalResult::Cancel:
            return false;
        case controls::ModalResult::Yes: {
            const controls::WaitCursor wait;
            data_.LoadPrintProfile(beforePrintDialog_->SelectedProfile());
            image.calibration = beforePrintDialog_->ProfileCalibration();
            image.copies = beforePrintDialog_->Copies();
            return true;
        }
        case controls::ModalResult::No:
            return data_.Printer().ShowSetupDialog(window_.windowHandle());
        default:
            return true;
    }
}

/// Asks only where something of the photos is lost. May turn the image.
bool PrintFlow::ConfirmPaper(printing::PrintImage& image) {
    printing::PrinterPaper paper;
    {
        const controls::WaitCursor wait;
        const printing::PrinterChoice printer = data_.Printer().CurrentPrinter();
        paper = data_.Printer().PaperOf(printer);
        beforePrintDialog_->RememberPaper(printer, paper);
    }
    const QString warning = printing::PaperWarning(image, paper);
    if (warning.isEmpty()) {
        return true;
    }
    if (printing::TurningHelps(image, paper)) {
        const bool turned = printing::IsTurned(image, paper);
        const QSizeF page = paper.geometry.page;
        const QString way =
            turned == (page.width() < page.height()) ? u"Hochformat"_s : u"Querformat"_s;
        if (controls::AskYesNo(&window_,
                               u"%1\n\nIm %2 passen sie. Im %2 drucken?"_s.arg(warning, way),
                               controls::Severity::Warning)) {
            image.orientation =
                turned ? printing::Orientation::Upright : printing::Orientation::Turned;
            return true;
        }
    }
    return controls::AskYesNo(&window_, warning + u"\n\nTrotzdem drucken?"_s,
                              controls::Severity::Warning);
}

void PrintFlow::acPrinSetupExecute() {
    data_.Printer().ShowSetupDialog(window_.windowHandle());
}

}  // namespace kadrona::app
