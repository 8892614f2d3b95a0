#pragma once

#include <QDate>
#include <QRect>
#include <QString>
#include <optional>
#include <vector>

#include "core/check/PhotoCheck.h"
#include "core/check/TemplateTable.h"
#include "imaging/face/Face.h"
#include "imaging/pixels/Pixels.h"
#include "printing/PrintImage.h"

namespace kadrona::app {

/// What a report shows.
struct CheckReport {
    imaging::Pixels photo;
    QRect rectangle;  ///< the cut, photo pixels
    QString templateName;
    std::optional<imaging::Face> face;
    std::vector<core::CheckLine> lines;
    core::Crown crown = core::Crown::Hair;  ///< the end of the head that the lines measure
    QDate checkedOn = QDate::currentDate();
};

/// Writes the check as one page for the customer, a PDF in A4: the picture with its measures, the
/// lines, the date, and that it promises nothing. Throws platform::FileError.
void WriteCheckReport(const CheckReport& report, const QString& path);

/// The same page for a printer whose paper has that size in millimetres (empty: not known). A4,
/// made smaller where the paper is.
printing::PrintImage CheckReportPage(const CheckReport& report, QSizeF paper);

}  // namespace kadrona::app
