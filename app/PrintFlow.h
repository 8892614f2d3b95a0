#pragma once

#include <QObject>
#include <QString>

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

namespace kadrona::printing {
struct PrintImage;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;

/// The actions that print: the sheet at its true size, the printer's set-up, the printer profiles.
/// Every operation throws what the print service refuses; nothing is tried twice.
class PrintFlow : public QObject {
    Q_OBJECT

 public:
    /// Makes its two dialogs as children of `window`. All that is given outlives the object.
    PrintFlow(PhotoSession& session, QWidget& window, QStatusBar& statusBar, core::TData& data,
              dialogs::TEinstellungenFm& settings, MainActions& actions);

    /// Asks how the printer is to be set, then prints the sheet as one job; the status bar tells
    /// which printer took it.
    void acPrintImageExecute();

 private:
    void acPrinSetupExecute();
    bool ChoosePrinter(printing::PrintImage& image);
    bool ConfirmPaper(printing::PrintImage& image);

    PhotoSession& session_;
    QWidget& window_;
    QStatusBar& statusBar_;
    core::TData& data_;
    dialogs::TPrintProfilDlg* profileDialog_;
    dialogs::TBeforPrintDlgFm* beforePrintDialog_;
};

}  // namespace kadrona::app
