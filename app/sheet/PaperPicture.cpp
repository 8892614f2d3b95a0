#include "app/sheet/PaperPicture.h"

#include "core/sheet/CuttingMarks.h"
#include "core/sheet/PaperSize.h"

namespace kadrona::app {

namespace {

/// Millimetres around the paper's middle.
QRectF AroundMiddle(const QRect& micrometres, QSize paper) {
    constexpr double Millimetre = core::MicrometresPerMillimetre;
    return {(micrometres.left() - paper.width() / 2.0) / Millimetre,
            (micrometres.top() - paper.height() / 2.0) / Millimetre,
            micrometres.width() / Millimetre, micrometres.height() / Millimetre};
}

}  // namespace

printing::SheetOnPaper PaperPicture(const std::vector<QRect>& photos,
                                    const core::PaperChoice& choice,
                                    const std::optional<QRect>& text) {
    const QSize paper = *choice.paper;
    printing::SheetOnPaper sheet;
    sheet.paper = AroundMiddle(QRect(QPoint(), paper), paper);
    sheet.reached = sheet.paper;
    for (const QRect& photo : photos) {
        const QRectF place = AroundMiddle(photo, paper);
        sheet.copies.push_back({place, place, {}});
    }
    std::vector<QRect> texts;
    if (text) {
        texts.push_back(*text);
        sheet.texts.push_back({AroundMiddle(*text, paper), 1});
    }
    for (const QRect& mark :
         core::MarksAround(photos, texts, paper, choice.marks, core::MarksOnPaper)) {
        sheet.marks.push_back(AroundMiddle(mark, paper));
    }
    return sheet;
}

}  // namespace kadrona::app
