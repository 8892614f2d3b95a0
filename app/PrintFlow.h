#pragma once

#include <QSizeF>
#include <QString>

class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {
class TBeforPrintDlgFm;
class TEinstellungenFm;
class TPrintProfilDlg;
}  // namespace kadrona::dialogs

namespace kadrona::imaging {
class LayeredImage;
}

namespace kadrona::app {

/// The actions that print: the sheet at its true size, the printer's set-up, the printer profiles.
/// Every operation throws what the print service refuses; nothing is tried twice.
class PrintFlow {
 public:
    /// Makes its two dialogs as children of `window`, which with `data` and `settings` outlives the
    /// object.
    PrintFlow(QWidget& window, core::TData& data, dialogs::TEinstellungenFm& settings);

    /// Asks how the printer is to be set, then prints the image's photo as one job. The name of the
    /// printer that took it; empty when the user cancelled.
    QString PrintSheet(const imaging::LayeredImage& sheet);
    void SetUpPrinter();
    void ShowProfiles();

 private:
    bool ChoosePrinter();
    bool ConfirmPaper(QSizeF sheetMillimetres);

    QWidget& window_;
    core::TData& data_;
    dialogs::TPrintProfilDlg* profileDialog_;
    dialogs::TBeforPrintDlgFm* beforePrintDialog_;
};

/// What the user reads before a sheet is printed that does not fit the paper, with both sizes in
/// millimetres; empty where it fits or the paper is not known. Sizes that read the same fit.
QString PaperWarning(QSizeF sheetMillimetres, QSizeF paperMillimetres);

}  // namespace kadrona::app
