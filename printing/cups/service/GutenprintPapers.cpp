#include "printing/cups/service/GutenprintPapers.h"

#include <QRegularExpression>
#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

/// The size in points that Gutenprint's names speak of: "w288h432", "Postcard 100x148mm", "3.5x5".
std::optional<QSizeF> SizeInName(const Paper& paper) {
    static const QRegularExpression points(u"^w(\\d+)h(\\d+)"_s);
    static const QRegularExpression lengths(
        u"(\\d+(?:\\.\\d+)?) ?x ?(\\d+(?:\\.\\d+)?) ?(mm|cm|$)"_s);
    if (const auto match = points.match(QString::fromUtf8(paper.name)); match.hasMatch()) {
        return QSizeF(match.captured(1).toDouble(), match.captured(2).toDouble());
    }
    const auto match = lengths.match(paper.label);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QString unit = match.captured(3);
    const double millimetres = unit == u"mm" ? 1 : unit == u"cm" ? 10 : MillimetresPerInch;
    return QSizeF(match.captured(1).toDouble(), match.captured(2).toDouble()) * millimetres /
           MillimetresPerPoint;
}

/// Margins (left, top, right, bottom, in points) of single sheets in Epson's models whose margins
/// differ from those of most.
struct ModelMargins {
    std::vector<int> models;
    QMarginsF margins;
};

/// As Gutenprint 5.3.4 answers (stp_get_imageable_area) for each of its 1,483 printers that can
/// print without a border, on each of their papers and trays. Epson's stand in its
/// xml/escp2/model/*.xml too: <margins media="sheet"> left, right, top, bottom.
const ModelMargins EpsonSheets[] = {
    {{65, 70, 71, 72, 73, 74, 75, 76, 86, 95, 98, 115, 130}, {9, 0, 9, 0}},
    {{64, 67, 68, 91}, {9, 0, 9, 11}},
    {{107, 108, 123, 132}, {9, 9, 9, 9}},
    {{48, 49, 112, 113, 114}, {9, 9, 9, 40}},
    {{136}, {}},
};
constexpr QMarginsF OtherEpsonSheets(9, 0, 9, 9);
constexpr QMarginsF EpsonRolls(9, 0, 9, 0);
constexpr QMarginsF EpsonBothSides(9, 27, 9, 27);
constexpr int LastEpsonModel = 136;

/// The same for all models.
constexpr QMarginsF Canon(10, 9, 10, 15);

/// Of any printer of the library that can print without a border.
constexpr QMarginsF Widest(10, 9, 10, 40);

QMarginsF Larger(const QMarginsF& one, const QMarginsF& other) {
    return {std::max(one.left(), other.left()), std::max(one.top(), other.top()),
            std::max(one.right(), other.right()), std::max(one.bottom(), other.bottom())};
}

QMarginsF SheetMargins(const QByteArray& model) {
    const qsizetype split = model.indexOf('_');
    const int number = model.left(split).toInt();
    const QByteArray family = model.mid(split + 1);
    if (family == "canon") {
        return Canon;
    }
    if (family == "dpl") {  // labels
        return {};
    }
    if (family != "escp2" || number > LastEpsonModel) {
        return Widest;
    }
    const auto found =
        std::find_if(std::begin(EpsonSheets), std::end(EpsonSheets), [&](const ModelMargins& some) {
            return std::find(some.models.begin(), some.models.end(), number) != some.models.end();
        });
    return found == std::end(EpsonSheets) ? OtherEpsonSheets : found->margins;
}

}  // namespace

std::optional<QRectF> NamedPaper(const Paper& paper) {
    constexpr double MostOverspray = 40;
    const QRectF reached = QRectF({}, paper.points).marginsRemoved(paper.marginPoints);
    const std::optional<QSizeF> named = SizeInName(paper);
    if (!named) {
        return std::nullopt;
    }
    const QSizeF over = reached.size() - *named;
    if (over.width() < -1 || over.height() < -1 || over.width() > MostOverspray ||
        over.height() > MostOverspray) {
        return std::nullopt;
    }
    QRectF place({}, *named * MillimetresPerPoint);
    place.moveCenter(reached.center() * MillimetresPerPoint);
    return place;
}

QMarginsF BorderOf(const Paper& paper, const QByteArray& model, const QByteArray& tray,
                   bool onBothSides) {
    QMarginsF named = paper.marginPoints;
    QMarginsF border = SheetMargins(model);
    if (model.endsWith("_escp2") && !border.isNull()) {
        if (tray.startsWith("Roll")) {
            // What the description names above and below are those of sheets.
            named = {named.left(), 0, named.right(), 0};
            border = EpsonRolls;
        } else if (onBothSides) {
            border = Larger(border, EpsonBothSides);
        }
    }
    return Larger(named, border);
}

}  // namespace kadrona::printing::cups
