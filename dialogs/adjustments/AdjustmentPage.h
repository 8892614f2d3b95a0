#pragma once

#include <QWidget>
#include <vector>

class QGridLayout;
class QSpinBox;

namespace kadrona::dialogs {

/// What one slider of a page sets.
struct AdjustmentSlider {
    QString label;
    /// Of the spin box; the slider's is the same with "Slider" behind it.
    QString objectName;
    int minimum = -100;
    int maximum = 100;
    QString suffix = {};
};

/// A page of sliders, each with a spin box, all 0 at first, and a button that brings them back.
class AdjustmentPage : public QWidget {
    Q_OBJECT

 public:
    explicit AdjustmentPage(const std::vector<AdjustmentSlider>& sliders,
                            QWidget* parent = nullptr);

    int Value(size_t slider) const;
    void Reset();

 Q_SIGNALS:
    void Changed();

 private:
    void AddSlider(QGridLayout& grid, int row, const AdjustmentSlider& slider);

    std::vector<QSpinBox*> boxes_;
};

}  // namespace kadrona::dialogs
