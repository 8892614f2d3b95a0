#pragma once

#include <QMarginsF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <QTransform>

#include "printing/PrintImage.h"

namespace kadrona::printing {

/// A paper as a driver treats it. All lengths in millimetres, upright as the driver has it, the
/// origin at the top left of the driver's page.
struct PaperGeometry {
    /// For reading; may be empty.
    QString name;
    /// The page of a job. Empty where it is not known.
    QSizeF page;
    /// The real paper. Smaller than the page where the driver adds what is sprayed over the edges.
    QRectF paper;
    /// What the printer reaches, more than the paper where it prints over the edges.
    QRectF reach;
    /// Where the driver spreads the page to: the page itself for most, more for those that enlarge
    /// a borderless page. What is to come out at its size is made smaller by the same measure.
    QRectF spread;

    /// A page that is printed as it is, reached everywhere but in the margins.
    static PaperGeometry Plain(QSizeF page, QMarginsF margins = {});

    bool IsKnown() const { return !page.isEmpty(); }
};

/// What the current printer is set to, as far as it decides where a sheet lies.
struct PrinterPaper {
    PaperGeometry geometry;
    Orientation orientation = Orientation::Automatic;
    int copies = 1;
    /// German sentences that the user reads before printing: what the driver does to a page that
    /// nobody can switch off, what it no longer has, why the printer stands still.
    QStringList remarks = {};
    /// The same, but settled by a calibration: where nobody knows how the printer takes what its
    /// driver sends.
    QStringList uncalibratedRemarks = {};
};

/// The paper, or where it is not known one as large as the image.
PaperGeometry KnownPaper(const PrintImage& image, const PaperGeometry& paper);

/// Whether the image is turned by a quarter on its paper: as it says itself, else as the printer is
/// set. Automatically it stays as the paper where its photos fit or turning loses as much.
bool IsTurned(const PrintImage& image, const PrinterPaper& paper);

/// From the sheet (millimetres, origin at its middle, y down) to the paper, in the coordinates of
/// the geometry, with the image's calibration. A turned sheet lies turned to the left.
QTransform SheetToPaper(const PrintImage& image, const PaperGeometry& paper, bool turned);

/// From the coordinates of the geometry to the page that the driver is given, millimetres, so that
/// the driver's spreading is undone.
QTransform PaperToPage(const PaperGeometry& paper);

/// The same without the calibration: where the sheet really comes to lie, for the printer's own
/// error undoes the calibration.
QTransform Uncalibrated(const PrintImage& image, const PaperGeometry& paper, bool turned);

/// What the printer keeps of a sheet, in the coordinates of the sheet: what lies on the paper and
/// is told, calibrated, to a place within the driver's reach.
QRectF KeptOf(const PrintImage& image, const PaperGeometry& paper, bool turned);

/// By how much `photos` stand over `kept` at each side; less than anybody sees is nothing.
QMarginsF LostAt(const QRectF& photos, const QRectF& kept);

/// What is cut off the photos at each side of the sheet, millimetres of the paper, as the sheet is
/// looked at; all 0 where the photos fit or the paper is not known. White gaps around them may be
/// cut off.
QMarginsF LostOf(const PrintImage& image, const PaperGeometry& paper, bool turned);

/// "links 3,2 mm und rechts 3,2 mm"; empty where nothing is lost.
QString LossText(const PrintImage& image, const PrinterPaper& paper);

/// The paper's name and size as the sheet lies on it: "10 × 15 cm, 152,4 × 101,6 mm"; empty where
/// it is not known.
QString PaperText(const PrintImage& image, const PrinterPaper& paper);

/// What is to be said of the printer before this sheet is printed.
QStringList RemarksOf(const PrintImage& image, const PrinterPaper& paper);

/// What the user reads before a sheet is printed of which something is lost or enlarged; empty
/// where all is well.
QString PaperWarning(const PrintImage& image, const PrinterPaper& paper);

/// Whether turning the sheet keeps all of its photos where they are not kept now.
bool TurningHelps(const PrintImage& image, const PrinterPaper& paper);

}  // namespace kadrona::printing
