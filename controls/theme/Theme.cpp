#include "controls/theme/Theme.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QStandardPaths>
#include <utility>

#include "controls/theme/ThemeStyle.h"

using namespace Qt::StringLiterals;

// Resources of a static library are linked in only where they are asked for, and the macro must
// stand outside any namespace.
static void LinkResources() {
    Q_INIT_RESOURCE(controls);
    Q_INIT_RESOURCE(dark);
}

namespace kadrona::controls {
namespace {

constexpr ThemeColors Light{
    .window = QColor(0xf2, 0xf3, 0xf5),
    .content = QColor(0xff, 0xff, 0xff),
    .text = QColor(0x23, 0x26, 0x29),
    .mutedText = QColor(0x5d, 0x65, 0x6f),
    .disabledText = QColor(0xa3, 0xa9, 0xb1),
    .border = QColor(0xd9, 0xdc, 0xe1),
    .strongBorder = QColor(0xb9, 0xbf, 0xc7),
    .accent = QColor(0x1a, 0x6f, 0xb5),
    .onAccent = QColor(0xff, 0xff, 0xff),
    .accentStrong = QColor(0x12, 0x55, 0x8d),
    .accentTint = QColor(0xe6, 0xf0, 0xf8),
    .accentWash = QColor(0xcd, 0xe2, 0xf3),
    .alternate = QColor(0xf7, 0xf8, 0xfa),
    .good = QColor(0x1b, 0x7a, 0x2b),
    .warning = QColor(0x8a, 0x5a, 0x00),
    .bad = QColor(0xb3, 0x1d, 0x1d),
    .view = QColor(0xff, 0xff, 0xff),
    .desk = QColor(0xe2, 0xe4, 0xe7),
};

/// The ground around the photo is a neutral grey, which leaves the eye its judgement of colours.
constexpr ThemeColors Dark{
    .window = QColor(0x22, 0x26, 0x2a),
    .content = QColor(0x2b, 0x30, 0x35),
    .text = QColor(0xe6, 0xe9, 0xec),
    .mutedText = QColor(0xa9, 0xb1, 0xba),
    .disabledText = QColor(0x6f, 0x77, 0x80),
    .border = QColor(0x3c, 0x42, 0x49),
    .strongBorder = QColor(0x59, 0x61, 0x6a),
    .accent = QColor(0x5a, 0xab, 0xec),
    .onAccent = QColor(0x10, 0x1d, 0x29),
    .accentStrong = QColor(0x8c, 0xc6, 0xf5),
    .accentTint = QColor(0x2d, 0x40, 0x51),
    .accentWash = QColor(0x30, 0x50, 0x6c),
    .alternate = QColor(0x31, 0x36, 0x3c),
    .good = QColor(0x6c, 0xcf, 0x83),
    .warning = QColor(0xe5, 0xb3, 0x4d),
    .bad = QColor(0xff, 0x8f, 0x88),
    .view = QColor(0x3a, 0x3a, 0x3a),
    .desk = QColor(0x3a, 0x3d, 0x41),
};

Appearance present = Appearance::Light;

QPalette MakePalette() {
    const ThemeColors& c = Colors();
    QPalette palette(c.content, c.window);
    for (const auto& [role, color] : {
             std::pair{QPalette::WindowText, c.text},
             {QPalette::Base, c.content},
             {QPalette::AlternateBase, c.alternate},
             {QPalette::Text, c.text},
             {QPalette::PlaceholderText, c.mutedText},
             {QPalette::Button, c.content},
             {QPalette::ButtonText, c.text},
             {QPalette::BrightText, Qt::white},
             {QPalette::Light, c.content},
             {QPalette::Midlight, c.alternate},
             {QPalette::Mid, c.border},
             {QPalette::Dark, c.strongBorder},
             {QPalette::Shadow, c.mutedText},
             {QPalette::Highlight, c.accent},
             {QPalette::HighlightedText, c.onAccent},
             {QPalette::Link, c.accent},
             {QPalette::LinkVisited, c.accentStrong},
             {QPalette::ToolTipBase, c.content},
             {QPalette::ToolTipText, c.text},
         }) {
        palette.setColor(role, color);
    }
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, c.disabledText);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, c.window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, c.strongBorder);
    return palette;
}

// The style sheet with the theme's colours in place of its @names.
QString StyleSheet() {
    QFile file(u":/kadrona/style.qss"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("The style sheet is not part of the program");
    }
    QString sheet = QString::fromUtf8(file.readAll());
    const ThemeColors& c = Colors();
    for (const auto& [name, color] : {
             std::pair{u"@window;"_s, c.window},
             {u"@content;"_s, c.content},
             {u"@text;"_s, c.text},
             {u"@mutedText;"_s, c.mutedText},
             {u"@disabledText;"_s, c.disabledText},
             {u"@border;"_s, c.border},
             {u"@strongBorder;"_s, c.strongBorder},
             {u"@accent;"_s, c.accent},
             {u"@onAccent;"_s, c.onAccent},
             {u"@good;"_s, c.good},
             {u"@warning;"_s, c.warning},
             {u"@bad;"_s, c.bad},
             {u"@accentStrong;"_s, c.accentStrong},
             {u"@accentTint;"_s, c.accentTint},
             {u"@accentWash;"_s, c.accentWash},
         }) {
        sheet.replace(name, color.name() + u';');
    }
    sheet.replace(u"@drawings"_s, DrawingsFolder());
    return sheet;
}

void UseReadableFont() {
    constexpr double MinimumPointSize = 10;
    constexpr double PointsPerPixel = 0.75;  // at 96 dots per inch, for fonts given in pixels
    QFont font = QApplication::font();
    const double points =
        font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * PointsPerPixel;
    if (points < MinimumPointSize) {
        font.setPointSizeF(MinimumPointSize);
    }
    QApplication::setFont(font);
}

// For the toolkit's own dialogs: Breeze even where the desktop has another theme or none, because
// its pictures go with ours.
void UseIconTheme() {
    QStringList paths = QIcon::themeSearchPaths();
    paths += QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, u"icons"_s,
                                       QStandardPaths::LocateDirectory);
    paths.removeDuplicates();
    const QString name = present == Appearance::Dark ? u"breeze-dark"_s : u"breeze"_s;
    for (const QString& path : std::as_const(paths)) {
        if (QFile::exists(path + u'/' + name + u"/index.theme"_s)) {
            QIcon::setThemeSearchPaths(paths);
            QIcon::setThemeName(name);
            return;
        }
    }
}

}  // namespace

const ThemeColors& Colors() {
    return present == Appearance::Dark ? Dark : Light;
}

Appearance PresentAppearance() {
    return present;
}

QString DrawingsFolder() {
    return present == Appearance::Dark ? u":/kadrona/icons/dark"_s : u":/kadrona/icons"_s;
}

void ApplyTheme(QApplication& application, Appearance appearance) {
    const bool first = dynamic_cast<ThemeStyle*>(QApplication::style()) == nullptr;
    present = appearance;
    if (first) {
        LinkResources();
        QApplication::setStyle(new ThemeStyle);  // owned by the application
        UseReadableFont();
    }
    UseIconTheme();
    QApplication::setPalette(MakePalette());
    application.setStyleSheet(StyleSheet());
}

}  // namespace kadrona::controls
