#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QListWidget>
#include <algorithm>
#include <cmath>

#include "controls/commands/ScreenTip.h"
#include "controls/theme/Icons.h"
#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// Relative luminance and contrast of the Web Content Accessibility Guidelines 2.1.
double Luminance(const QColor& color) {
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double Contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(Theme, TextsAreReadable) {
    const ThemeColors& c = Colors();
    EXPECT_GE(Contrast(c.text, c.window), 7);
    EXPECT_GE(Contrast(c.text, c.accentWash), 7);
    EXPECT_GE(Contrast(c.mutedText, c.window), 4.5);
    EXPECT_GE(Contrast(c.accent, c.window), 4.5);
    EXPECT_GE(Contrast(Qt::white, c.accent), 4.5);
}

TEST(Theme, TheStyleSheetIsWholeAndItsPicturesExist) {
    ApplyTheme(*qApp);
    const QString sheet = qApp->styleSheet();
    EXPECT_FALSE(sheet.contains(u'@')) << "a colour that the theme does not have";
    qsizetype pictures = 0;
    for (qsizetype at = sheet.indexOf(u"url("_s); at >= 0; at = sheet.indexOf(u"url("_s, at + 1)) {
        const QString path = sheet.mid(at + 4, sheet.indexOf(u')', at) - at - 4);
        EXPECT_FALSE(QImage(path).isNull()) << path.toStdString();
        ++pictures;
    }
    EXPECT_GT(pictures, 0);
    EXPECT_GE(QApplication::font().pointSizeF(), 10);
}

bool IsDrawn(const QIcon& icon, int side) {
    const QImage image = icon.pixmap(QSize(side, side), 2.0).toImage();
    const QImage alpha = image.convertToFormat(QImage::Format_Alpha8);
    return image.width() == 2 * side && alpha.sizeInBytes() > 0 &&
           *std::max_element(alpha.constBits(), alpha.constBits() + alpha.sizeInBytes()) > 128;
}

TEST(Icons, EveryNameHasAPictureWithAndWithoutAnIconTheme) {
    ApplyTheme(*qApp);
    const QString theme = QIcon::themeName();
    for (const QString& themeName : {theme, u"no-such-theme"_s}) {
        QIcon::setThemeName(themeName);
        for (const QString& name : IconNames()) {
            EXPECT_TRUE(IsDrawn(Icon(name), 16)) << name.toStdString();
            EXPECT_TRUE(IsDrawn(Icon(name), 22)) << name.toStdString();
        }
    }
    QIcon::setThemeName(theme);
    EXPECT_TRUE(Icon(u"no-such-icon"_s).isNull());
}

TEST(ScreenTip, HoldsHeaderTextLinesAndShortcut) {
    QAction action(u"&Speichern..."_s);
    action.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
    const QString keys = action.shortcut().toString(QKeySequence::NativeText);
    EXPECT_TRUE(ScreenTipOf(action).contains(u"Speichern"_s));
    EXPECT_FALSE(ScreenTipOf(action).contains(u'&' + u"Speichern"_s));
    EXPECT_TRUE(ScreenTipOf(action).contains(keys));

    SetScreenTip(&action, u"A < B"_s, u"Zeile eins\nZeile zwei"_s);
    const QString tip = ScreenTipOf(action);
    EXPECT_TRUE(tip.contains(u"<b>A &lt; B</b>"_s));
    EXPECT_TRUE(tip.contains(u"Zeile eins<br>Zeile zwei"_s));
    EXPECT_TRUE(tip.contains(keys));
}

TEST(Theme, AListThatWasScrolledBeforeItIsShownHasItsRowsApart) {
    ApplyTheme(*qApp);
    QWidget window;
    QListWidget list;
    for (int i = 0; i < 30; ++i) {
        list.addItem(QString::number(i));
    }
    list.setCurrentRow(3);
    list.setParent(&window);
    list.resize(200, 400);
    window.show();
    QApplication::processEvents();
    const int distance =
        list.visualItemRect(list.item(1)).top() - list.visualItemRect(list.item(0)).top();
    EXPECT_EQ(distance, list.sizeHintForRow(0));
}

}  // namespace
}  // namespace kadrona::controls
