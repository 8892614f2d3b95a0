#include "app/face/ReportLayout.h"

#include <QDate>
#include <QFontMetricsF>
#include <QLocale>
#include <algorithm>
#include <cmath>

#include "core/base/Product.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

// Millimetres.
constexpr double PageWidth = 170;
constexpr double PageHeight = 261;
constexpr double PictureWidth = 60;
constexpr double LargestPictureHeight = 100;
constexpr double SmallestPictureHeight = 50;
constexpr double GapAboveLines = 6;
constexpr double GapBetweenLines = 2.6;

QFont ReportFont(double points, bool bold = false) {
    constexpr double PointsPerInch = 72;
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(static_cast<int>(std::lround(points / PointsPerInch * ReportResolution)));
    font.setBold(bold);
    // Any spacing of letters leaves ligatures out, which readers of the file would find as signs of
    // their own.
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.01);
    // Breaks the lines alike on every device.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// What a line says beside its band. What was measured comes before what there is to say of it.
struct LineTexts {
    QString label;
    QString figure;
};

LineTexts TextsOf(const core::CheckLine& line) {
    if (!line.value && core::BandText(line).isEmpty()) {
        return {line.label, line.note};
    }
    const QString figure = line.value ? core::ValueText(line) : u"–"_s;
    return {line.note.isEmpty() ? line.label : line.label + u": "_s + line.note, figure};
}

/// Texts from top to bottom, millimetres from the upper left margin.
class Column {
 public:
    /// One text; its height.
    double Add(const QFont& font, double x, double y, double width, const QString& text) {
        const QRectF room(0, 0, ReportDots(width), ReportDots(PageHeight));
        const double height =
            QFontMetricsF(font).boundingRect(room, Qt::TextWordWrap, text).height();
        if (!text.isEmpty()) {
            texts_.push_back(
                {{ReportDots(x), ReportDots(y), ReportDots(width), height}, text, font});
        }
        return height / ReportDots(1);
    }

    /// One line of the check; its height.
    double Add(const QFont& font, double y, const core::CheckLine& line) {
        const LineTexts texts = TextsOf(line);
        const QString band = core::BandText(line);
        // What has no band may use its room.
        const double height = std::max({Add(font, 0, y, 62, texts.label),
                                        Add(font, 64, y, band.isEmpty() ? 76 : 30, texts.figure),
                                        Add(font, 96, y, 44, band),
                                        Add(font, 142, y, 28, core::StateText(line.state))});
        return height + GapBetweenLines;
    }

    std::vector<ReportText>& Texts() { return texts_; }

 private:
    std::vector<ReportText> texts_;
};

/// All lines and what follows them, from the height 0 on; their height in millimetres.
double AddLines(Column& column, const std::vector<core::CheckLine>& lines, double points) {
    double y = 0;
    for (const core::CheckLine& line : lines) {
        y += column.Add(ReportFont(points), y, line);
    }
    y += 2;
    y += column.Add(SmallReportFont(), 0, y, PageWidth,
                    u"Keine Zusage: Ob ein Bild angenommen wird, entscheidet die Behörde. „nur "
                    u"Richtwert“ steht, wo sie keine Zahl oder nur eine Empfehlung veröffentlicht, "
                    u"und wo nichts gemessen werden konnte."_s);
    return y + 1.5 +
           column.Add(SmallReportFont(), 0, y + 1.5, PageWidth, core::WindowCaption.toString());
}

/// The end of the head that is measured, the eyes and the chin where they lie in the picture.
void AddMarks(ReportLayout& layout, const CheckReport& report) {
    const imaging::Face& face = *report.face;
    const bool bySkull = report.crown == core::Crown::Skull;
    const ReportMark top{(bySkull ? face.skull : face.crown).position.y(),
                         bySkull ? u"Schädel"_s : u"Scheitel"_s};
    for (const auto& [photoRow, name] : {top, ReportMark{face.EyeMiddle().y(), u"Augen"_s},
                                         ReportMark{face.chin.position.y(), u"Kinn"_s}}) {
        const double part = (photoRow - report.rectangle.top()) / report.rectangle.height();
        if (part >= 0 && part <= 1) {
            layout.marks.push_back({layout.picture.top() + part * layout.picture.height(), name});
        }
    }
}

}  // namespace

double ReportDots(double millimetres) {
    return millimetres * ReportResolution / 25.4;
}

QFont SmallReportFont() {
    return ReportFont(8);
}

ReportLayout LayOutReport(const CheckReport& report) {
    Column head;
    double y = head.Add(ReportFont(16, true), 0, 0, PageWidth, u"Prüfung des Passbilds"_s) + 1.5;
    const QString date = QLocale(QLocale::German).toString(QDate::currentDate(), u"d. MMMM yyyy"_s);
    y += head.Add(ReportFont(10), 0, y, PageWidth, u"%1, %2"_s.arg(report.templateName, date)) + 4;
    Column lines;
    double room = 0;
    for (const double points : {9.0, 8.0, 7.0}) {
        lines = {};
        room = PageHeight - y - GapAboveLines - AddLines(lines, report.lines, points);
        if (room >= SmallestPictureHeight) {
            break;
        }
    }
    ReportLayout layout{{}, {}, std::move(head.Texts())};
    const QRect& cut = report.rectangle;
    if (!report.photo.IsEmpty() && !cut.isEmpty() && room > 0) {
        const double shape = static_cast<double>(cut.height()) / cut.width();
        const double height = std::min({PictureWidth * shape, LargestPictureHeight, room});
        layout.picture = {0, ReportDots(y), ReportDots(height / shape), ReportDots(height)};
        y += height + GapAboveLines;
        if (report.face) {
            AddMarks(layout, report);
        }
    }
    for (ReportText& text : lines.Texts()) {
        text.place.translate(0, ReportDots(y));
        layout.texts.push_back(std::move(text));
    }
    return layout;
}

}  // namespace kadrona::app
