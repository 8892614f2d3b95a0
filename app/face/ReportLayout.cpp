#include "app/face/ReportLayout.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QtMath>
#include <algorithm>
#include <cmath>

#include "core/base/Product.h"
#include "core/check/FacePlacement.h"

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
constexpr double MarkBeyondPicture = 3.5;
constexpr double MarkNameHeight = 3;
constexpr double GapBetweenLines = 2.6;

QFont ReportFont(double points, bool bold = false) {
    constexpr double PointsPerInch = 72;
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(static_cast<int>(std::lround(points / PointsPerInch * ReportResolution)));
    font.setBold(bold);
    // Any spacing of letters leaves ligatures out, which readers of the file would find as signs of
    // their own. Less than this counts as none.
    constexpr double SmallestSpacing = 1.0 / 64;
    font.setLetterSpacing(QFont::AbsoluteSpacing, SmallestSpacing);
    // Breaks the lines alike on every device.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QFont SourceFont() {
    return ReportFont(7);
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
        // The smaller type of the sources stands on the others' line.
        const double down =
            (QFontMetricsF(font).ascent() - QFontMetricsF(SourceFont()).ascent()) / ReportDots(1);
        // What has no band may use its room.
        const double height =
            std::max({Add(font, 0, y, 50, texts.label),
                      Add(font, 52, y, band.isEmpty() ? 54 : 20, texts.figure),
                      Add(font, 74, y, 33, band), Add(font, 108, y, 4, core::StateSign(line)),
                      Add(font, 112, y, 26, core::StateText(line.state)),
                      down + Add(SourceFont(), 140, y + down, 30, line.sourceName)});
        return height + GapBetweenLines;
    }

    /// What the columns of the lines are called.
    double AddHead(double y) {
        const QFont font = SmallReportFont();
        Add(font, 0, y, 50, u"Regel"_s);
        Add(font, 52, y, 20, u"gemessen"_s);
        Add(font, 74, y, 33, u"Grenzen"_s);
        Add(font, 112, y, 26, u"Ergebnis"_s);
        return Add(font, 140, y, 30, u"Quelle"_s) + GapBetweenLines;
    }

    std::vector<ReportText>& Texts() { return texts_; }

 private:
    std::vector<ReportText> texts_;
};

/// All lines and what follows them, from the height 0 on; their height in millimetres.
double AddLines(Column& column, const std::vector<core::CheckLine>& lines, double points) {
    double y = column.AddHead(0);
    for (const core::CheckLine& line : lines) {
        y += column.Add(ReportFont(points), y, line);
    }
    y += 1;
    y += column.Add(SourceFont(), 0, y, PageWidth, core::SourcesText(lines)) + 1.5;
    y += column.Add(
        SmallReportFont(), 0, y, PageWidth,
        u"Keine Zusage: Ob ein Bild angenommen wird, entscheidet die Behörde. „nur "
        u"Richtwert“ steht, wo sie keine Zahl oder nur eine Empfehlung veröffentlicht "
        u"oder nicht das Bild selbst meint, „nicht gemessen“, wo ihre Vorgabe nicht zu prüfen war."_s);
    return y + 1.5 +
           column.Add(SmallReportFont(), 0, y + 1.5, PageWidth, core::WindowCaption.toString());
}

/// The end of the head that is measured, the eyes, the chin and the face's axis where they lie in
/// the picture, and the heights between them and its edges.
class MarkedPicture {
 public:
    MarkedPicture(ReportLayout& layout, const CheckReport& report)
        : layout_(layout), report_(report) {}

    void Add() {
        const imaging::Face& face = *report_.face;
        const bool bySkull = report_.crown == core::Crown::Skull;
        const double top = RowOf((bySkull ? face.skull : face.crown).position.y());
        const double eyes = RowOf(face.EyeMiddle().y());
        const double chin = RowOf(face.chin.position.y());
        AddMark(top, bySkull ? u"Schädel"_s : u"Scheitel"_s);
        AddMark(eyes, u"Augen"_s);
        AddMark(chin, u"Kinn"_s);
        AddAxis(PlaceOf({core::FaceAxis(face), 0}).x());
        const QRectF& picture = layout_.picture;
        AddHead(bySkull ? face.skull.position : face.crown.position);
        AddBracket(u"eyeLine"_s, u"Augen"_s, eyes, picture.bottom());
        AddBracket(u"chin"_s, u"Kinn"_s, chin, picture.bottom());
        AddBracket(u"topGap"_s, u"oben"_s, picture.top(), top);
    }

 private:
    double RowOf(double photoRow) const {
        const double part = (photoRow - report_.rectangle.top()) / report_.rectangle.height();
        return layout_.picture.top() + part * layout_.picture.height();
    }

    QPointF PlaceOf(QPointF point) const {
        const double scale = layout_.picture.width() / report_.rectangle.width();
        return layout_.picture.topLeft() + (point - report_.rectangle.topLeft()) * scale;
    }

    bool IsShown(double row) const {
        return row >= layout_.picture.top() && row <= layout_.picture.bottom();
    }

    void AddMark(double row, const QString& name) {
        if (IsShown(row)) {
            const QRectF& picture = layout_.picture;
            const double end = picture.right() + ReportDots(MarkBeyondPicture);
            layout_.marks.push_back({{picture.left(), row, end, row},
                                     {end + ReportDots(1), row - ReportDots(MarkNameHeight) / 2,
                                      ReportDots(15), ReportDots(MarkNameHeight)},
                                     name});
        }
    }

    /// The face's axis; its name with what was measured ends below it, for to the right lines lead
    /// from a tilted head. A narrow picture has no room but there.
    void AddAxis(double x) {
        const QRectF& picture = layout_.picture;
        const auto line = std::ranges::find(report_.lines, u"faceAxis"_s, &core::CheckLine::name);
        if (line == report_.lines.end() || !line->value || x < picture.left() ||
            x > picture.right()) {
            return;
        }
        const double end = picture.bottom() + ReportDots(MarkBeyondPicture);
        const QString name = u"Achse "_s + core::ValueText(*line);
        const double width = QFontMetricsF(SmallReportFont()).horizontalAdvance(name);
        const double left = x - ReportDots(1) - width;
        layout_.marks.push_back(
            {{x, picture.top(), x, end},
             {left < 0 ? x + ReportDots(1) : left, end - ReportDots(MarkNameHeight), width,
              ReportDots(MarkNameHeight)},
             name});
    }

    /// Of a line that the check has; each further one to the right. Null where there is none.
    ReportBracket* AddBracket(const QString& name, const QString& label, double top,
                              double bottom) {
        constexpr double RightOfMarks = 20;
        constexpr double Step = 21;
        constexpr double Gap = 1.5;
        constexpr double TextHeight = 8;
        const auto line = std::ranges::find(report_.lines, name, &core::CheckLine::name);
        if (line == report_.lines.end() || !line->value || !IsShown(top) || !IsShown(bottom)) {
            return nullptr;
        }
        const double x =
            layout_.picture.right() +
            ReportDots(RightOfMarks + Step * static_cast<double>(layout_.brackets.size()));
        const QRectF place(x + ReportDots(Gap), (top + bottom - ReportDots(TextHeight)) / 2,
                           ReportDots(Step - 2 * Gap), ReportDots(TextHeight));
        layout_.brackets.push_back(
            {{x, top, x, bottom}, {}, place, label + u'\n' + core::ValueText(*line)});
        return &layout_.brackets.back();
    }

    /// A head is measured along its axis, square on the eye line, which a tilt makes longer than
    /// the rows between crown and chin.
    void AddHead(QPointF crownInPhoto) {
        constexpr double Unseen = 1.003;  // a tenth of a millimetre of a head
        const imaging::Face& face = *report_.face;
        const QPointF crown = PlaceOf(crownInPhoto);
        const QPointF chin = PlaceOf(face.chin.position);
        ReportBracket* bracket = AddBracket(u"headHeight"_s, u"Kopf"_s, crown.y(), chin.y());
        const double rows = chin.y() - crown.y();
        const double length = rows * core::HeadPixels(face, crownInPhoto) /
                              (face.chin.position.y() - crownInPhoto.y());
        if (!bracket || length < Unseen * rows) {
            return;
        }
        const double tilt = qDegreesToRadians(face.tiltDegrees);
        const QPointF down = QPointF(-std::sin(tilt), std::cos(tilt)) * length;
        QPointF middle = (crown + chin) / 2;
        const double beside = bracket->line.x1() - middle.x();
        middle += QPointF(beside, beside * std::tan(tilt));
        bracket->line = {middle - down / 2, middle + down / 2};
        bracket->leaders = {{crown, bracket->line.p1()}, {chin, bracket->line.p2()}};
        // Its text's corners are nearer to a line that leans.
        bracket->place.moveCenter({bracket->place.center().x() + ReportDots(1), middle.y()});
    }

    ReportLayout& layout_;
    const CheckReport& report_;
};

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
    const QString date = QLocale(QLocale::German).toString(report.checkedOn, u"d. MMMM yyyy"_s);
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
    ReportLayout layout{{}, {}, {}, std::move(head.Texts())};
    const QRect& cut = report.rectangle;
    if (!report.photo.IsEmpty() && !cut.isEmpty() && room > 0) {
        const double shape = static_cast<double>(cut.height()) / cut.width();
        const double height = std::min({PictureWidth * shape, LargestPictureHeight, room});
        layout.picture = {0, ReportDots(y), ReportDots(height / shape), ReportDots(height)};
        y += height + GapAboveLines;
        if (report.face) {
            MarkedPicture(layout, report).Add();
        }
    }
    for (ReportText& text : lines.Texts()) {
        text.place.translate(0, ReportDots(y));
        layout.texts.push_back(std::move(text));
    }
    return layout;
}

}  // namespace kadrona::app
