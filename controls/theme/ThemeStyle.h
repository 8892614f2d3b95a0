#pragma once

#include <QProxyStyle>

namespace kadrona::controls {

/// What the look needs that a style sheet cannot say.
class ThemeStyle : public QProxyStyle {
 public:
    ThemeStyle();

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
};

}  // namespace kadrona::controls
