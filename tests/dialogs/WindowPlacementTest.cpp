#include <gtest/gtest.h>

#include <QDialog>
#include <QTest>

#include "dialogs/base/WindowPlacement.h"

namespace kadrona::testing {

TEST(WindowPlacement, KeepsClearOfThePhotoWhereTheScreenHasRoom) {
    const QRect large(0, 0, 1920, 1080);
    const QRect small(0, 0, 1366, 768);
    const QSize dialog(700, 500);
    const QRect atTheLeft(40, 10, 780, 700);
    const QRect inTheMiddle(570, 190, 780, 700);
    struct Row {
        const char* where;
        QRect room;
        QRect owner;
        QList<QRect> inSight;
        QSize size;
        QPoint expected;
    };
    for (const Row& row : std::initializer_list<Row>{
             {"right of the window", large, atTheLeft, {{240, 150, 380, 500}}, dialog, {820, 110}},
             {"left of it",
              large,
              {1100, 10, 780, 700},
              {{1300, 150, 380, 500}},
              dialog,
              {400, 110}},
             {"below it", {0, 0, 1000, 1400}, atTheLeft, {{240, 150, 380, 500}}, dialog, {80, 710}},
             {"right of the photo",
              large,
              inTheMiddle,
              {{760, 330, 390, 500}},
              dialog,
              {1150, 290}},
             {"in a window that fills the screen",
              large,
              large,
              {{720, 100, 400, 900}},
              dialog,
              {1120, 290}},
             {"over the photo's edge", small, small, {{500, 100, 400, 600}}, {600, 1000}, {0, 0}},
             {"beside the face of a photo that fills the window",
              small,
              small,
              {small, {500, 150, 200, 250}},
              {600, 500},
              {700, 134}},
             {"larger than the screen", small, small, {small}, {1400, 800}, {0, 0}},
         }) {
        const QPoint place = dialogs::ClearPlace(row.room, row.owner, row.inSight, row.size);
        EXPECT_EQ(place, row.expected) << row.where << ": " << place.x() << ", " << place.y();
    }
}

TEST(WindowPlacement, IsTheSameEachTime) {
    QWidget window;
    window.setGeometry(300, 200, 400, 300);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QDialog dialog(&window);
    dialog.resize(200, 100);
    // The second time the toolkit knows what the system draws around the dialog.
    QPoint first;
    for (const bool again : {false, true}) {
        dialog.show();
        dialogs::CentreOnParent(dialog);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
        QTest::qWait(200);
        first = again ? first : dialog.geometry().topLeft();
        EXPECT_EQ(dialog.geometry().topLeft(), first);
        dialog.hide();
    }
}

}  // namespace kadrona::testing
