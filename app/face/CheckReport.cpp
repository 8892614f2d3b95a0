#include "app/face/CheckReport.h"

#include <QBuffer>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>

#include "app/face/ReportLayout.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/NewImage.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

// Millimetres.
constexpr double LeftMargin = 20;
constexpr double TopMargin = 18;

const QString ReportTitle = u"Prüfung des Passbilds"_s;

/// The cut with its marks and the measured heights.
void DrawPicture(const CheckReport& report, const ReportLayout& layout, QPainter& painter) {
    const imaging::Pixels cut = imaging::Cropped(report.photo, report.rectangle);
    if (cut.IsEmpty() || layout.picture.isEmpty()) {
        return;
    }
    const QRectF& area = layout.picture;
    painter.drawImage(area, cut.ToImage());
    painter.setFont(SmallReportFont());
    for (const ReportMark& mark : layout.marks) {
        painter.setPen(QPen(QColor(0x1a, 0x6f, 0xb5), ReportDots(0.3)));
        painter.drawLine(mark.line);
        painter.setPen(Qt::black);
        painter.drawText(mark.place, Qt::AlignVCenter | Qt::TextDontClip, mark.name);
    }
    for (const ReportBracket& bracket : layout.brackets) {
        painter.setPen(QPen(Qt::black, ReportDots(0.1)));
        painter.drawLines(bracket.leaders.data(), static_cast<int>(bracket.leaders.size()));
        painter.setPen(QPen(Qt::black, ReportDots(0.2)));
        painter.drawLine(bracket.line);
        const QLineF across = bracket.line.normalVector().unitVector();
        const QPointF tick = (across.p2() - across.p1()) * ReportDots(1);
        for (const QPointF& end : {bracket.line.p1(), bracket.line.p2()}) {
            painter.drawLine(end - tick, end + tick);
        }
        painter.drawText(bracket.place, Qt::AlignVCenter | Qt::TextDontClip, bracket.text);
    }
}

void DrawPage(const CheckReport& report, QPainter& painter) {
    const ReportLayout layout = LayOutReport(report);
    DrawPicture(report, layout, painter);
    for (const ReportText& text : layout.texts) {
        painter.setFont(text.font);
        painter.drawText(text.place, Qt::TextWordWrap | Qt::TextDontClip, text.text);
    }
}

}  // namespace

void WriteCheckReport(const CheckReport& report, const QString& path) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(ReportResolution);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins({LeftMargin, TopMargin, LeftMargin, TopMargin},
                              QPageLayout::Millimeter);
        writer.setTitle(ReportTitle);
        QPainter painter(&writer);
        DrawPage(report, painter);
    }
    platform::WriteFileAtomically(path, bytes);
}

printing::PrintImage CheckReportPage(const CheckReport& report, QSizeF paper) {
    const QSizeF page(210, 297);
    const QSizeF dots = page * ReportDots(1);
    QImage image = imaging::NewImage(dots.toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDotsPerMeterX(static_cast<int>(std::lround(ReportDots(1000))));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    {
        QPainter painter(&image);
        painter.translate(ReportDots(LeftMargin), ReportDots(TopMargin));
        DrawPage(report, painter);
    }
    double reduction = 1;
    if (!paper.isEmpty()) {
        reduction = std::max({1.0, page.width() / paper.width(), page.height() / paper.height()});
    }
    return {.tile = std::move(image),
            .dotsPerInch = static_cast<int>(std::ceil(ReportResolution * reduction)),
            .title = ReportTitle};
}

}  // namespace kadrona::app
