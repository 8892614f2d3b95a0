#pragma once

#include <QWidget>

#include "printing/cups/OptionBox.h"
#include "printing/cups/service/DeviceMode.h"
#include "printing/cups/service/Driver.h"

class QCheckBox;
class QFormLayout;
class QSpinBox;

namespace kadrona::printing::cups {

class CustomPaper;

/// The fields of the options that matter for photos. A field that the driver has no option for is
/// hidden. Object names: "PaperBox", "CustomPaper" (CustomPaper), "BorderlessBox",
/// "OrientationBox", "TrayBox", "MediaTypeBox", "QualityBox", "ColorBox", "DuplexBox", "CopiesBox".
class OptionPanel : public QWidget {
    Q_OBJECT

 public:
    explicit OptionPanel(QWidget* parent = nullptr);

    /// Shows what `mode` sets of the driver. Both outlive the panel or the next call.
    void ShowMode(const Driver& driver, DeviceMode& mode);

    /// Whether one of the fields stands for that option.
    bool Covers(const QByteArray& keyword) const;

 Q_SIGNALS:
    /// The user changed the mode.
    void ModeChanged();

 private:
    struct Field {
        OptionBox* box;
        std::vector<const char*> keywords;
    };

    QComboBox* AddPaperRows(QFormLayout& form);
    void AddOptionRow(QFormLayout& form, const QString& caption, const QString& name,
                      const std::vector<const char*>& keywords);
    void AddOrientationRow(QFormLayout& form);
    void AddCopiesRow(QFormLayout& form);
    void ShowPapers();
    void ShowPaper();
    QByteArray ChosenPaper() const;
    void ShowBorderless();
    void ShowOrientations();
    void StorePaper();

    const Driver* driver_ = nullptr;
    DeviceMode* mode_ = nullptr;
    QFormLayout* form_;
    QComboBox* paperBox_;
    CustomPaper* customPaper_;
    QCheckBox* borderlessBox_;
    QComboBox* orientationBox_;
    QSpinBox* copiesBox_;
    std::vector<Field> fields_;
    std::vector<QByteArray> covered_;
};

}  // namespace kadrona::printing::cups
