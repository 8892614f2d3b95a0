#include "tools/TemplateDesign.h"

#include <QRect>
#include <algorithm>
#include <cmath>

namespace kadrona::tools {

using core::Band;
using core::TemplateRow;
using core::TenthsOfMillimetre;
using core::TMask;
using namespace Qt::StringLiterals;

namespace {

// 0x00BBGGRR
constexpr qint32 White = 0xffffff;
constexpr qint32 Grey = 0x303030;
constexpr qint32 Red = 0x0000c8;
constexpr qint32 Blue = 0xd02000;
constexpr qint32 Green = 0x007800;
constexpr qint32 Violet = 0x900090;

constexpr qint32 Solid = 0;
constexpr qint32 Clear = 1;
constexpr qint32 ForwardDiagonal = 4;

constexpr int BindingLine = 3;
constexpr int AdviceLine = 2;
/// How much the ovals, which matter most, are wider than the lines.
constexpr int OvalExtraWidth = 1;

/// Width of a head by its height, ears included.
constexpr double NaturalHeadRatio = 0.74;

int LineWidth(bool isAdvice) {
    return isAdvice ? AdviceLine : BindingLine;
}

TMask Shape(quint8 shape, const QString& name, qint32 colour, const QRect& area) {
    TMask element;
    element.shape = shape;
    element.name = name;
    element.colour = colour;
    element.left = area.left();
    element.top = area.top();
    element.right = area.left() + area.width();
    element.bottom = area.top() + area.height();
    element.penWidth = 1;
    return element;
}

/// Draws one row's elements in photo coordinates.
class Designer {
 public:
    explicit Designer(const TemplateRow& row)
        : row_(row), width_(row.width.value), height_(row.height.value) {}

    std::vector<TMask> Draw() {
        elements_.push_back(Shape(TMask::Rectangle, u"Canvas"_s, White, {0, 0, width_, height_}));
        DrawEyes();
        DrawPairOfLines(row_.top, u"Scheitel"_s, false);
        DrawPairOfLines(row_.chin, u"Kinn"_s, true);
        DrawAxis();
        DrawHeads();
        Outline(TMask::Rectangle, u"Rahmen"_s, Grey, {0, 0, width_, height_}, BindingLine);
        return std::move(elements_);
    }

 private:
    void Fill(const QString& name, qint32 colour, const QRect& area, qint32 brushStyle = Solid) {
        elements_.push_back(Shape(TMask::Rectangle, name, colour, area));
        elements_.back().brushStyle = brushStyle;
    }

    /// An outline that lies inside `area` with its whole width.
    void Outline(quint8 shape, const QString& name, qint32 colour, const QRect& area,
                 int lineWidth) {
        const int before = lineWidth / 2;
        const int after = (lineWidth - 1) / 2;
        elements_.push_back(
            Shape(shape, name, colour, area.adjusted(before, before, -after, -after)));
        elements_.back().brushStyle = Clear;
        elements_.back().penWidth = lineWidth;
    }

    void HorizontalLine(const QString& name, qint32 colour, int y, int lineWidth) {
        Fill(name, colour, {0, y - lineWidth / 2, width_, lineWidth});
    }

    /// The band's two limits, and at both sides a hatched piece that shows what lies between them
    /// without covering the face.
    void DrawEyes() {
        if (!row_.eyes.IsComplete()) {
            return;
        }
        const int upper = height_ - row_.eyes.to->value;
        const int lower = height_ - row_.eyes.from->value;
        const int lineWidth = LineWidth(row_.eyesAreAdvice);
        const int side = width_ / 10;
        Fill(u"Augen links"_s, Green, {0, upper, side, lower - upper}, ForwardDiagonal);
        Fill(u"Augen rechts"_s, Green, {width_ - side, upper, side, lower - upper},
             ForwardDiagonal);
        HorizontalLine(u"Augen oben"_s, Green, upper, lineWidth);
        HorizontalLine(u"Augen unten"_s, Green, lower, lineWidth);
    }

    void DrawPairOfLines(const Band& band, const QString& name, bool fromBelow) {
        for (const auto& [end, suffix] :
             {std::pair(band.from, u" von"_s), std::pair(band.to, u" bis"_s)}) {
            if (end) {
                HorizontalLine(name + suffix, Violet, fromBelow ? height_ - end->value : end->value,
                               BindingLine);
            }
        }
    }

    void DrawAxis() {
        Fill(u"Mittellinie"_s, Grey, {width_ / 2 - AdviceLine / 2, 0, AdviceLine, height_});
        if (row_.axis.IsComplete()) {
            DrawAxisLimit(u"Achse von"_s, row_.axis.from->value);
            DrawAxisLimit(u"Achse bis"_s, row_.axis.to->value);
        }
    }

    /// Marks at the upper and the lower edge only, so that the face stays free.
    void DrawAxisLimit(const QString& name, int x) {
        const int left = x - BindingLine / 2;
        const int length = height_ / 10;
        Fill(name, Violet, {left, 0, BindingLine, length});
        Fill(name, Violet, {left, height_ - length, BindingLine, length});
    }

    void DrawHeads() {
        if (!row_.head.from && !row_.head.to) {
            return;
        }
        DrawHead(u"Kleinster Kopf"_s, Blue, row_.head.from, row_.face.from);
        DrawHead(u"Größter Kopf"_s, Red, row_.head.to, row_.face.to);
        const int tick = width_ / 8;
        Fill(u"Kinnmarke"_s, Grey, {width_ / 2 - tick / 2, ChinLine(), tick, BindingLine});
    }

    void DrawHead(const QString& name, qint32 colour, std::optional<TenthsOfMillimetre> head,
                  std::optional<TenthsOfMillimetre> face) {
        if (!head) {
            return;
        }
        const int natural = static_cast<int>(std::lround(NaturalHeadRatio * head->value));
        const int width = face ? face->value : std::min(natural, width_);
        Outline(TMask::Ellipse, name, colour,
                {(width_ - width) / 2, ChinLine() - head->value, width, head->value},
                LineWidth(row_.headIsAdvice) + OvalExtraWidth);
    }

    int ChinLine() const { return height_ - core::ChinAboveLowerEdge(row_); }

    const TemplateRow& row_;
    const int width_;
    const int height_;
    std::vector<TMask> elements_;
};

}  // namespace

std::vector<TMask> DesignTemplate(const TemplateRow& row) {
    return Designer(row).Draw();
}

}  // namespace kadrona::tools
