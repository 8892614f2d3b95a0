#include "core/sheet/PaperSheet.h"

#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperSize.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

PaperRequest RequestOf(const PaperChoice& choice, QSize photo, int layoutIndex) {
    const auto layout = SheetLayoutAt(layoutIndex);
    std::optional<int> count;
    if (!choice.fill) {
        count = choice.count.value_or(layout ? layout->columns * layout->rows : 1);
    }
    return {choice.paper.value(), choice.edge, choice.gap, photo, count};
}

PaperLayout RequiredLayout(const PaperChoice& choice, QSize photo, int layoutIndex) {
    const PaperRequest request = RequestOf(choice, photo, layoutIndex);
    PaperLayout layout = LayOutOnPaper(request);
    if (request.count && layout.room < *request.count) {
        throw platform::Error(u"Auf das Papier (%1) passen nur %2 Bilder von %3, nicht %4."_s
                                  .arg(SizeText(request.paper))
                                  .arg(layout.room)
                                  .arg(SizeText(photo))
                                  .arg(*request.count));
    }
    return layout;
}

imaging::Pixels SheetOnPaper(const imaging::Pixels& photo, QSize size,
                             imaging::DotsPerInch resolution, const PaperChoice& choice,
                             int layoutIndex) {
    PaperCanvas canvas(*choice.paper, resolution);
    const PaperLayout layout = RequiredLayout(choice, size, layoutIndex);
    const size_t picture =
        canvas.AddPhoto(photo, layout.turned ? size.transposed() : size, layout.turned);
    for (const QRect& place : layout.photos) {
        canvas.Place(picture, place.topLeft());
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

}  // namespace kadrona::core
