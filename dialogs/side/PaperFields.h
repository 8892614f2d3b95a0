#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;

namespace kadrona::dialogs {

/// The choice of what sheets are made on: paper, count, gap, edge, marks, and the gap of the bare
/// grid. The controls bear the names of the settings that they show. What the chosen paper has no
/// use for is hidden or greyed.
class PaperFields : public QWidget {
    Q_OBJECT

 public:
    explicit PaperFields(QWidget* parent = nullptr);

    /// Shows what other fields show; Changed() comes once, where that differs.
    void CopyFrom(const PaperFields& other);

 Q_SIGNALS:
    /// By the user, or by a profile that was restored.
    void Changed();

 private:
    QDoubleSpinBox* Millimetres(const char* name, const QString& label, double least, double most);
    QCheckBox* Switch(const char* name, const QString& text);
    QComboBox* Choice(const char* name, const QString& label, const QStringList& items);
    void ShowWhatCounts();
    void Follow();

    QFormLayout* form_;
    QComboBox* paper_;
    QDoubleSpinBox* width_;
    QDoubleSpinBox* height_;
    QCheckBox* fill_;
    QDoubleSpinBox* gap_;
    QDoubleSpinBox* edge_;
    QComboBox* marks_;
    QCheckBox* text_;
    QCheckBox* gridGapInMillimetres_;
    QDoubleSpinBox* gridGap_;
    bool copying_ = false;
};

}  // namespace kadrona::dialogs
