#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "printing/Calibration.h"
#include "printing/JobWatch.h"
#include "printing/PaperGeometry.h"

class QFormLayout;
class QLabel;
class QLineEdit;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

/// "Drucker kalibrieren": prints a sheet of rulers with a printer profile, asks what the user reads
/// off it, and keeps what makes up for the difference beside the profile. Object names:
/// "CalibrationDialog", "btnPrintSheet", "edAcross", "edAlong", "edLeft", "edTop", "btnApply",
/// "btnClose", "lblSheet", "lblState".
class CalibrationDialog : public QDialog {
    Q_OBJECT

 public:
    /// The profile's printer is the current one. Throws platform::Error where its paper cannot be
    /// asked for or has no room for the rulers.
    CalibrationDialog(core::TData& data, QString profile, QWidget* parent = nullptr);

 private:
    using Readings = printing::RulerReadings;
    struct Field {
        double Readings::*reading;
        QLineEdit* edit;
    };

    void BuildControls();
    QLayout* BuildPrintRow();
    static QLineEdit* AddReading(QFormLayout& form, const QString& name, const QString& caption);
    void PrintSheet();
    printing::Calibration Calibrated() const;
    void Apply();
    void ShowState(const QString& what);

    core::TData& data_;
    QString profile_;
    printing::PaperGeometry paper_;
    /// What the sheet was printed with that the readings are of: the last one, else one printed
    /// before the dialog was shown.
    printing::Calibration printedWith_;
    std::vector<Field> readings_;
    QLabel* state_;
    /// How the printed sheet fares.
    QLabel* sheet_;
    std::unique_ptr<printing::JobWatch> watch_;
};

}  // namespace kadrona::dialogs
