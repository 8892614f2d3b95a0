#pragma once

#include <QFont>
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

/// A line across the picture.
struct ReportMark {
    double y = 0;  ///< dots
    QString name;
};

/// A measured height beside the picture: a line from end to end, its text to the right.
struct ReportBracket {
    double x = 0;  ///< dots
    double top = 0;
    double bottom = 0;
    QRectF place;  ///< of the text, dots
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
