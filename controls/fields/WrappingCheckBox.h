#pragma once

#include <QCheckBox>

namespace kadrona::controls {

/// A check box whose text goes on in further lines where there is too little room for it in one.
class WrappingCheckBox : public QCheckBox {
    Q_OBJECT

 public:
    explicit WrappingCheckBox(const QString& text = {}, QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& place) const override;

 private:
    QRect TextRectangle(int width) const;
};

}  // namespace kadrona::controls
