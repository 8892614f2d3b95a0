#include "core/sheet/PaperSheet.h"

#include <QDate>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <cstdlib>

#include "core/settings/Settings.h"
#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperSize.h"
#include "imaging/pixels/Cropping.h"
#include "platform/CountedText.h"
#include "platform/Error.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr int FromTenths(int tenths) {
    return tenths * (MicrometresPerMillimetre / 10);
}

/// How many pictures a paper has room for.
QString RoomText(int room) {
    return (room == 1 ? u"passt nur "_s : u"passen nur "_s) +
           platform::CountedText(room, u"Bild"_s, u"Bilder"_s);
}

}  // namespace

PaperChoice PaperChoiceOf(const Settings& settings) {
    PaperChoice choice;
    const int paper = settings.SheetPaper();
    for (size_t place = 0; place < NamedPapers.size(); ++place) {
        if (paper == StoredPaper(place)) {
            choice.paper = NamedPapers.at(place).size;
        }
    }
    if (paper == OwnPaper) {
        choice.paper =
            QSize(FromTenths(settings.SheetPaperWidth()), FromTenths(settings.SheetPaperHeight()));
    }
    choice.edge = FromTenths(settings.SheetEdge());
    choice.gap = FromTenths(settings.SheetGap());
    choice.fill = settings.SheetFill();
    const int marks = settings.SheetMarks();
    choice.marks = marks >= 0 && marks <= static_cast<int>(CuttingMarks::Outline)
                       ? static_cast<CuttingMarks>(marks)
                       : CuttingMarks::None;
    if (settings.GridGapInMillimetres()) {
        choice.gridGap = FromTenths(settings.GridGap());
    }
    return choice;
}

QString SheetText(const QString& photoFile, const QString& document) {
    const QString name = QFileInfo(photoFile).completeBaseName();
    const QString day = QDate::currentDate().toString(u"dd.MM.yyyy"_s);
    QStringList parts{name, day, QFileInfo(document).completeBaseName()};
    parts.removeAll(QString());
    return platform::HarmlessLine(parts.join(u"  ·  "_s));
}

PaperRequest RequestOf(const PaperChoice& choice, QSize photo, int layoutIndex) {
    const auto layout = SheetLayoutAt(layoutIndex);
    std::optional<int> count;
    if (!choice.fill) {
        count = choice.count.value_or(layout ? layout->columns * layout->rows : 1);
    }
    return {choice.paper.value(), choice.edge, choice.gap, photo, count};
}

QString RoomQuestion(const PaperRequest& request, int room) {
    return u"Auf das Papier (%1) %2 statt %3.\n\n%4"_s.arg(SizeText(request.paper), RoomText(room))
        .arg(request.count.value_or(room))
        .arg(room == 1 ? u"Soll es 1 Bild werden?"_s : u"Sollen es %1 Bilder werden?"_s.arg(room));
}

PaperLayout RequiredLayout(const PaperChoice& choice, QSize photo, int layoutIndex) {
    const PaperRequest request = RequestOf(choice, photo, layoutIndex);
    PaperLayout layout = LayOutOnPaper(request);
    if (request.count && layout.room < *request.count) {
        throw platform::Error(
            u"Auf das Papier (%1) %2 von %3, nicht %4."_s
                .arg(SizeText(request.paper), RoomText(layout.room), SizeText(photo))
                .arg(*request.count));
    }
    return layout;
}

imaging::Pixels CopiesOnPaper(const imaging::Pixels& photo, QSize size,
                              imaging::DotsPerInch resolution, const PaperChoice& choice,
                              int layoutIndex) {
    PaperCanvas canvas(*choice.paper, resolution);
    const PaperLayout layout = RequiredLayout(choice, size, layoutIndex);
    const size_t picture =
        canvas.AddPhoto(photo, layout.turned ? size.transposed() : size, layout.turned);
    if (PixelsOf(choice.gap, resolution.value) == 0) {
        canvas.PlaceTouching(picture, layout.photos);
    } else {
        for (const QRect& place : layout.photos) {
            canvas.Place(picture, place.topLeft());
        }
    }
    if (const auto room = RoomForText(layout.photos, *choice.paper)) {
        canvas.PlaceText(choice.text, *room);
    }
    return canvas.Finished(choice.marks);
}

QSize PrintedSize(QSize canvas) {
    constexpr int MicrometresPerTenth = MicrometresPerMillimetre / 10;
    return canvas * MicrometresPerTenth;
}

SizedPhoto WithoutBorder(const imaging::Pixels& bordered, imaging::DotsPerInch resolution,
                         QSize printed) {
    if (resolution.value < 1) {
        return {bordered, {}};
    }
    const QSize inner(PixelsOf(printed.width(), resolution.value),
                      PixelsOf(printed.height(), resolution.value));
    const QSize border = bordered.Size() - inner;
    // Resolution and height were rounded when the photo was cut.
    constexpr int Rounding = 2;
    const bool isBorder = !printed.isEmpty() && std::min(border.width(), border.height()) >= 0 &&
                          std::abs(border.width() - border.height()) <= Rounding;
    if (!isBorder) {
        return {bordered, bordered.Size() * MicrometresPerInch / resolution.value};
    }
    const QRect middle(QPoint(border.width() / 2, border.height() / 2), inner);
    return {imaging::Cropped(bordered, middle), printed};
}

}  // namespace kadrona::core
