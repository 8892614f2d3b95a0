#include "printing/cups/service/GutenprintPapers.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>
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
const std::array EpsonSheets{
    ModelMargins{{65, 70, 71, 72, 73, 74, 75, 76, 86, 95, 98, 115, 130}, {9, 0, 9, 0}},
    ModelMargins{{64, 67, 68, 91}, {9, 0, 9, 11}},
    ModelMargins{{107, 108, 123, 132}, {9, 9, 9, 9}},
    ModelMargins{{48, 49, 112, 113, 114}, {9, 9, 9, 40}},
    ModelMargins{{136}, {}},
};
constexpr QMarginsF OtherEpsonSheets(9, 0, 9, 9);
constexpr QMarginsF EpsonBothSides(9, 27, 9, 27);
/// Of a roll they print the whole length, but for these, which leave a border.
constexpr std::array EpsonRollsWithBorder{28, 29, 30, 31, 41};
constexpr double EpsonRollBorder = 9;
constexpr int LastEpsonModel = 136;

/// The same for all models.
constexpr QMarginsF Canon(10, 9, 10, 15);
/// By how much the area that is announced to a printer without a border begins left of the paper
/// and above it, the same for all 161 models that print so (main/print-canon.c, and the stream:
/// 66 and 50 dots of 600 in an inch). The page is sent as it is, from the area's corner on, so that
/// as much stays white on the other sides.
constexpr double CanonLeft = 8;
constexpr double CanonAbove = 6;
/// Rows of 600 in an inch that are sent at once. A last block that is full is not sent (counted in
/// the streams of a PIXMA iP4500: 3,584 rows of 3,600, 6,800 of 6,816, but 3,408 for 3,400; the
/// same with 300 dpi, where a block has half as many rows, and of an i560, MP780 and MG5200).
constexpr int CanonBlock = 16;
constexpr double CanonRowsPerPoint = 600.0 / 72;

/// Margins of single papers of dye-sublimation printers without a switch, where the description
/// names none; of all that the library has (the same source).
struct PaperMargins {
    int model;
    const char* paper;
    QMarginsF margins;
};
const std::array DyePapers{
    PaperMargins{0, "A6", {28, 48, 28, 48}},
    PaperMargins{1, "A4", {22, 54, 22, 54}},
    PaperMargins{1, "c8x10", {58, 84, 59, 85}},
    PaperMargins{1, "C6", {9, 9, 9, 9}},
    PaperMargins{3, "A4", {10, 54, 9, 54}},
    PaperMargins{3, "c8x10", {58, 72, 59, 72}},
    PaperMargins{3, "C6", {9, 9, 9, 9}},
    PaperMargins{3, "w255h581", {25, 25, 25, 24}},
    PaperMargins{4, "ISOB7", {16, 33, 17, 33}},
    PaperMargins{3002, "Postcard", {21, 29, 21, 29}},
    PaperMargins{4200, "w432h576-div2", {0, 57, 0, 0}},
};

/// Of any printer of the library that can print without a border.
constexpr QMarginsF Widest(10, 9, 10, 40);

QMarginsF Larger(const QMarginsF& one, const QMarginsF& other) {
    return {std::max(one.left(), other.left()), std::max(one.top(), other.top()),
            std::max(one.right(), other.right()), std::max(one.bottom(), other.bottom())};
}

int NumberOf(const QByteArray& model) {
    return model.left(model.indexOf('_')).toInt();
}

QMarginsF SheetMargins(const QByteArray& model) {
    const int number = NumberOf(model);
    const QByteArray family = model.mid(model.indexOf('_') + 1);
    if (family == "canon") {
        return Canon;
    }
    if (family == "dpl") {  // labels
        return {};
    }
    if (family != "escp2" || number > LastEpsonModel) {
        return Widest;
    }
    const auto* const found =
        std::find_if(std::begin(EpsonSheets), std::end(EpsonSheets), [&](const ModelMargins& some) {
            return std::find(some.models.begin(), some.models.end(), number) != some.models.end();
        });
    return found == std::end(EpsonSheets) ? OtherEpsonSheets : found->margins;
}

/// What a Canon printer does not get of a page of which so many points are printed.
double CanonMissing(double printed) {
    const int rows = static_cast<int>(printed * CanonRowsPerPoint);
    return rows % CanonBlock == 0 ? CanonBlock / CanonRowsPerPoint : 0;
}

QMarginsF DyeMargins(const QByteArray& model, const QByteArray& paper) {
    const auto* const found =
        std::find_if(std::begin(DyePapers), std::end(DyePapers), [&](const PaperMargins& some) {
            return some.model == NumberOf(model) && some.paper == paper;
        });
    return found == std::end(DyePapers) ? QMarginsF() : found->margins;
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

QMarginsF BorderOf(const Paper& paper, const GutenprintSetting& setting) {
    const QMarginsF& named = paper.marginPoints;
    const bool isEpson = setting.model.endsWith("_escp2");
    const bool isBordered = setting.borderless == GutenprintSetting::Borderless::Off;
    QMarginsF border = isBordered ? Larger(named, SheetMargins(setting.model)) : named;
    if (IsMovedOffCorner(paper, setting)) {
        border = {0, 0, CanonLeft, CanonAbove + CanonMissing(paper.points.height())};
    } else if (setting.model.endsWith("_canon")) {
        const double printed = paper.points.height() - border.top() - border.bottom();
        border.setBottom(border.bottom() + CanonMissing(printed));
    }
    if (setting.model.endsWith("_dyesub")) {
        border = Larger(border, DyeMargins(setting.model, paper.name));
    }
    if (isEpson && setting.tray.startsWith("Roll")) {
        const bool isShort = std::find(EpsonRollsWithBorder.begin(), EpsonRollsWithBorder.end(),
                                       NumberOf(setting.model)) != EpsonRollsWithBorder.end();
        border.setTop(isShort ? EpsonRollBorder : 0);
        border.setBottom(border.top());
    } else if (isEpson && isBordered && setting.isOnBothSides) {
        border = Larger(border, EpsonBothSides);
    }
    return border;
}

bool IsMovedOffCorner(const Paper& paper, const GutenprintSetting& setting) {
    // A paper that has margins of its own is printed as if the switch were off.
    return setting.model.endsWith("_canon") && paper.IsBorderless() &&
           setting.borderless == GutenprintSetting::Borderless::On && setting.tray != "CD";
}

QRectF SpreadOf(const Paper& paper, const GutenprintSetting& setting) {
    if (IsMovedOffCorner(paper, setting)) {
        return {{-CanonLeft, -CanonAbove}, paper.points};
    }
    const QMarginsF border = BorderOf(paper, setting);
    const QMarginsF& named = paper.marginPoints;
    const double let = paper.points.height() - named.top() - named.bottom();
    const double printed = paper.points.height() - border.top() - border.bottom();
    // At most twice: a description that names more than half of its page as margins is wrong.
    if (printed > let && printed < 2 * let) {
        const double scale = printed / let;
        return {0, border.top() - named.top() * scale, paper.points.width(),
                paper.points.height() * scale};
    }
    return {QPointF(0, std::max(border.top() - named.top(), 0.0)), paper.points};
}

}  // namespace kadrona::printing::cups
