#pragma once

#include <QProxyStyle>

namespace kadrona::controls {

/// What the look needs that a style sheet cannot say, and what keeps foreign names from being more
/// than names: a label takes mark-up only where it was told to.
class ThemeStyle : public QProxyStyle {
 public:
    ThemeStyle();

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    /// Texts are shown as platform::HarmlessText has them, whoever they come from.
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette,
                      bool enabled, const QString& text,
                      QPalette::ColorRole role = QPalette::NoRole) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
};

}  // namespace kadrona::controls
