#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "printing/PrinterLayer.h"

class QStatusBar;
class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {
class TBeforPrintDlgFm;
class TEinstellungenFm;
class TPrintProfilDlg;
}  // namespace kadrona::dialogs

namespace kadrona::app {

class JobStatus;
class MainActions;
class PhotoSession;

/// The actions that print: the sheet at its true size, the last one again, the printer's set-up,
/// the printer profiles. Every operation throws what the print service refuses; nothing is tried
/// twice.
class PrintFlow : public QObject {
    Q_OBJECT

 public:
    /// Makes its two dialogs as children of `window`. All that is given outlives the object.
    PrintFlow(PhotoSession& session, QWidget& window, QStatusBar& statusBar, core::TData& data,
              dialogs::TEinstellungenFm& settings, MainActions& actions);

    /// Asks how the printer is to be set, then prints the sheet as one job, which the status
    /// bar follows.
    void acPrintImageExecute();

    /// Whether there is a sheet to print again.
    bool HasPrinted() const { return last_.has_value(); }

 Q_SIGNALS:
    /// The print service took a sheet.
    void Printed();

 private:
    /// What was printed last, and where.
    struct PrintedSheet {
        printing::PrinterChoice printer;
        printing::PrintImage image;
    };

    void acPrintAgainExecute();
    void acPrinSetupExecute();
    bool ChoosePrinter(printing::PrintImage& image);
    bool ConfirmPaper(printing::PrintImage& image);
    void Print(const printing::PrintImage& image);

    PhotoSession& session_;
    QWidget& window_;
    core::TData& data_;
    dialogs::TPrintProfilDlg* profileDialog_;
    dialogs::TBeforPrintDlgFm* beforePrintDialog_;
    JobStatus* jobStatus_;
    std::optional<PrintedSheet> last_;
};

}  // namespace kadrona::app
