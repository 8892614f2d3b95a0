#include "core/sheet/PaperLayout.h"

#include <algorithm>

#include "core/sheet/PaperSize.h"
#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

struct Grid {
    qint64 columns = 0;
    qint64 rows = 0;
    qint64 Room() const { return columns * rows; }
};

/// How many lengths fit into `room` with gaps between them: n lengths have n - 1 gaps.
qint64 CountIn(qint64 room, int length, int gap) {
    return room < length ? 0 : (room + gap) / (qint64{length} + gap);
}

Grid GridFor(const PaperRequest& request, QSize photo) {
    const qint64 edges = 2 * qint64{request.edge};
    return {CountIn(request.paper.width() - edges, photo.width(), request.gap),
            CountIn(request.paper.height() - edges, photo.height(), request.gap)};
}

void RequireMakesSense(const PaperRequest& request) {
    if (request.paper.isEmpty() || request.photo.isEmpty()) {
        throw platform::Error(u"Papier (%1) und Bild (%2) brauchen eine Größe."_s.arg(
            SizeText(request.paper), SizeText(request.photo)));
    }
    if (request.edge < 0 || request.gap < 0 || request.count.value_or(1) < 1) {
        throw platform::Error(
            u"Rand und Abstand dürfen nicht negativ sein, und ein Blatt hat mindestens ein Bild."_s);
    }
}

[[noreturn]] void ThrowNoneFits(const PaperRequest& request) {
    QString text = u"Auf das Papier (%1) passt kein Bild von %2"_s.arg(SizeText(request.paper),
                                                                       SizeText(request.photo));
    if (request.edge > 0) {
        text += u" mit einem Rand von %1 mm"_s.arg(MillimetresText(request.edge));
    }
    throw platform::Error(text + u'.');
}

/// `count` photos row by row, the block that they make in the middle of the paper.
std::vector<QRect> BlockInTheMiddle(const PaperRequest& request, QSize photo, int mostColumns,
                                    int count) {
    const int columns = std::min(mostColumns, count);
    const int rows = (count + columns - 1) / columns;
    const QSize step = photo + QSize(request.gap, request.gap);
    const QSize block(columns * step.width() - request.gap, rows * step.height() - request.gap);
    const QPoint first((request.paper.width() - block.width()) / 2,
                       (request.paper.height() - block.height()) / 2);
    std::vector<QRect> photos;
    for (int i = 0; i < count; ++i) {
        const QPoint place(i % columns * step.width(), i / columns * step.height());
        photos.emplace_back(first + place, photo);
    }
    return photos;
}

}  // namespace

PaperLayout LayOutOnPaper(const PaperRequest& request) {
    RequireMakesSense(request);
    const QSize lying = request.photo.transposed();
    const Grid uprightGrid = GridFor(request, request.photo);
    const Grid lyingGrid = GridFor(request, lying);
    const qint64 wanted = request.count.value_or(MostCopies + 1);
    const bool turned = std::min(lyingGrid.Room(), wanted) > std::min(uprightGrid.Room(), wanted);
    const Grid& grid = turned ? lyingGrid : uprightGrid;
    if (grid.Room() == 0) {
        ThrowNoneFits(request);
    }
    if (std::min(grid.Room(), wanted) > MostCopies) {
        throw platform::Error(u"Ein Blatt hat höchstens %1 Bilder."_s.arg(MostCopies));
    }
    const auto count = static_cast<int>(std::min(grid.Room(), wanted));
    return {turned,
            BlockInTheMiddle(request, turned ? lying : request.photo,
                             static_cast<int>(std::min<qint64>(grid.columns, MostCopies)), count),
            static_cast<int>(std::min<qint64>(grid.Room(), MostCopies + 1))};
}

}  // namespace kadrona::core
