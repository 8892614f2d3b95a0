#include "app/face/CheckReport.h"

#include <QBuffer>
#include <QDate>
#include <QLocale>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>

#include "core/base/Product.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/NewImage.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Dots per inch of the page, and of a millimetre.
constexpr int PageResolution = 300;
constexpr double DotsPerMillimetre = PageResolution / 25.4;
constexpr double PictureWidth = 60;
constexpr double LineHeight = 6.5;
constexpr double LeftMargin = 20;
constexpr double TopMargin = 18;

const QString ReportTitle = u"Prüfung des Passbilds"_s;

double Dots(double millimetres) {
    return millimetres * DotsPerMillimetre;
}

/// Draws the page from top to bottom.
class Page {
 public:
    Page(const CheckReport& report, QPainter& painter) : report_(report), painter_(painter) {}

    void Draw() {
        SetSize(16, true);
        Text(0, 0, 170, ReportTitle);
        SetSize(10, false);
        Text(0, 9, 170,
             u"%1, %2"_s.arg(
                 report_.templateName,
                 QLocale(QLocale::German).toString(QDate::currentDate(), u"d. MMMM yyyy"_s)));
        double y = 18 + DrawPicture(18) + 6;
        SetSize(9, false);
        for (const core::CheckLine& line : report_.lines) {
            Text(0, y, 62, line.label);
            Text(64, y, 30, core::ValueText(line).isEmpty() ? line.note : core::ValueText(line));
            Text(96, y, 44, core::BandText(line));
            Text(142, y, 28, core::StateText(line.state));
            y += LineHeight;
        }
        SetSize(8, false);
        Text(0, y + 4, 170,
             u"Keine Zusage: Ob ein Bild angenommen wird, entscheidet die Behörde. „nur "
             u"Richtwert“ heißt, dass keine Behörde dazu eine Zahl veröffentlicht."_s);
        Text(0, y + 12, 170, core::WindowCaption.toString());
    }

 private:
    void SetSize(double points, bool bold) {
        QFont font(u"DejaVu Sans"_s);
        font.setPointSizeF(points);
        font.setBold(bold);
        painter_.setFont(font);
    }

    void Text(double x, double y, double width, const QString& text) {
        painter_.drawText(QRectF(Dots(x), Dots(y), Dots(width), Dots(14)), Qt::TextWordWrap, text);
    }

    /// The cut with the lines of crown, eyes and chin; its height in millimetres.
    double DrawPicture(double top) {
        const imaging::Pixels cut = imaging::Cropped(report_.photo, report_.rectangle);
        if (cut.IsEmpty()) {
            return 0;
        }
        const double height = std::min(PictureWidth * cut.Height() / cut.Width(), 100.0);
        const double width = height * cut.Width() / cut.Height();
        const QRectF area(0, Dots(top), Dots(width), Dots(height));
        painter_.drawImage(area, cut.ToImage());
        if (report_.face) {
            SetSize(8, false);
            Measure(area, report_.face->crown.position.y(), u"Scheitel"_s);
            Measure(area, report_.face->EyeMiddle().y(), u"Augen"_s);
            Measure(area, report_.face->chin.position.y(), u"Kinn"_s);
        }
        return height;
    }

    void Measure(const QRectF& area, double photoRow, const QString& name) {
        const double part = (photoRow - report_.rectangle.top()) / report_.rectangle.height();
        if (part < 0 || part > 1) {
            return;
        }
        const double y = area.top() + part * area.height();
        painter_.setPen(QPen(QColor(0x1a, 0x6f, 0xb5), Dots(0.3)));
        painter_.drawLine(QPointF(area.left(), y), QPointF(area.right() + Dots(3), y));
        painter_.setPen(Qt::black);
        painter_.drawText(QPointF(area.right() + Dots(4), y + Dots(1)), name);
    }

    const CheckReport& report_;
    QPainter& painter_;
};

}  // namespace

void WriteCheckReport(const CheckReport& report, const QString& path) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(PageResolution);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins({LeftMargin, TopMargin, LeftMargin, TopMargin},
                              QPageLayout::Millimeter);
        writer.setTitle(ReportTitle);
        QPainter painter(&writer);
        Page(report, painter).Draw();
    }
    platform::WriteFileAtomically(path, bytes);
}

printing::PrintImage CheckReportPage(const CheckReport& report, QSizeF paper) {
    const QSizeF page(210, 297);
    const QSizeF dots = page * DotsPerMillimetre;
    QImage image = imaging::NewImage(dots.toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDotsPerMeterX(static_cast<int>(std::lround(DotsPerMillimetre * 1000)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    {
        QPainter painter(&image);
        painter.translate(Dots(LeftMargin), Dots(TopMargin));
        Page(report, painter).Draw();
    }
    double reduction = 1;
    if (!paper.isEmpty()) {
        reduction = std::max({1.0, page.width() / paper.width(), page.height() / paper.height()});
    }
    return {.tile = std::move(image),
            .dotsPerInch = static_cast<int>(std::ceil(PageResolution * reduction)),
            .title = ReportTitle};
}

}  // namespace kadrona::app
