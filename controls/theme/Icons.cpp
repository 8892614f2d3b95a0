#include "controls/theme/Icons.h"

#include <QIconEngine>
#include <QLatin1StringView>
#include <QPainter>
#include <algorithm>
#include <array>

#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// Each is a drawing in assets/icons: lines of one pixel on a grid of 22. The desktop's theme has
// some of them too, but another drawing for each size, so that they would change their look with
// the scale of the screen.
constexpr std::array Names{
    "about",
    "add",
    "align-face",
    "archive",
    "black-white",
    "clear",
    "colors",
    "create-photos",
    "delete",
    "edit",
    "folder",
    "gradation",
    "menu",
    "menu-on-accent",
    "open",
    "open-with-profile",
    "paste",
    "print",
    "printer-profiles",
    "printer-setup",
    "quit",
    "retouch",
    "rotate-free",
    "rotate-left",
    "rotate-right",
    "save",
    "save-fast",
    "search",
    "settings",
    "tags",
    "template-hidden",
    "template-shown",
    "undo",
    "white-point",
    "zoom-fit",
    "zoom-full",
};

/// Shows the drawing of the appearance that is present when it is painted, so that what holds an
/// icon need not learn of another one.
class ThemeIconEngine : public QIconEngine {
 public:
    explicit ThemeIconEngine(const QString& name)
        : light_(u":/kadrona/icons/%1.svg"_s.arg(name)),
          dark_(u":/kadrona/icons/dark/%1.svg"_s.arg(name)) {}

    QIconEngine* clone() const override { return new ThemeIconEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const double scale = painter->device()->devicePixelRatioF();
        painter->drawPixmap(
            rect, scaledPixmap((QSizeF(rect.size()) * scale).toSize(), mode, state, scale));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }

    /// `size` is in pixels of the screen, `scale` how many of them one of the window has.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        const QSize points = (QSizeF(size) / scale).toSize();
        if (mode != QIcon::Disabled) {
            return Present().pixmap(points, scale, mode, state);
        }
        // The style's grey copy would be as bright as the drawing on dark ground.
        QPixmap faded(size);
        faded.setDevicePixelRatio(scale);
        faded.fill(Qt::transparent);
        QPainter painter(&faded);
        painter.setOpacity(DisabledOpacity);
        Present().paint(&painter, QRect(QPoint(), points));
        return faded;
    }

    bool isNull() override { return false; }

 private:
    const QIcon& Present() const {
        return PresentAppearance() == Appearance::Dark ? dark_ : light_;
    }

    static constexpr double DisabledOpacity = 0.4;

    QIcon light_;
    QIcon dark_;
};

}  // namespace

QIcon Icon(const QString& name) {
    const bool known =
        std::ranges::any_of(Names, [&](const char* own) { return name == QLatin1StringView(own); });
    return known ? QIcon(new ThemeIconEngine(name)) : QIcon();  // owned by the icon
}

QStringList IconNames() {
    QStringList names;
    for (const char* name : Names) {
        names.append(QString::fromLatin1(name));
    }
    return names;
}

}  // namespace kadrona::controls
