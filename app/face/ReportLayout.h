#pragma once

#include <QFont>
#include <QLineF>
#include <QRectF>
#include <QString>
#include <vector>

#include "app/face/CheckReport.h"

namespace kadrona::app {

/// Dots per inch of a report's page.
constexpr int ReportResolution = 300;

/// One text of a report.
struct ReportText {
    QRectF place;  ///< dots; as high as the text
    QString text;
    QFont font;  ///< sized in dots
};

/// A line across the picture and a little beyond, its name at the end. Dots.
struct ReportMark {
    QLineF line;
    QRectF place;  ///< of the name
    QString name;
};

/// A measured length beside the picture: a line from end to end, its text to the right. Dots.
struct ReportBracket {
    QLineF line;  ///< from top to bottom; along the axis of a tilted head
    /// From what is measured in the picture to the line's ends where no mark does that.
    std::vector<QLineF> leaders;
    QRectF place;  ///< of the text
    QString text;
};

/// Where everything stands on a report's page, dots from its upper left margin.
struct ReportLayout {
    QRectF picture;  ///< empty where there is nothing to show
    std::vector<ReportMark> marks;
    std::vector<ReportBracket> brackets;
    std::vector<ReportText> texts;
};

/// Dots of a report's page.
double ReportDots(double millimetres);

/// The small type beside the picture and below the lines.
QFont SmallReportFont();

/// Lays a report out in 170 x 261 mm: rows as high as their texts, the picture in what they leave.
/// Where many texts are long, the lines have smaller type. Needs a QGuiApplication for its fonts.
ReportLayout LayOutReport(const CheckReport& report);

}  // namespace kadrona::app
