#include <QTest>

#include "tests/app/StoryFixture.h"
#include "tests/support/DrawnPortrait.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

/// The real window with the drawn portrait.
class FaceStory : public Story {
 protected:
    FaceStory() {
        EXPECT_TRUE(DrawnPortrait().save(installation.Path("face.png")));
        Open("face.png");
    }

    QWidget& Proposal() { return Child<QWidget>(*window, "FaceProposal"); }
    void AwaitProposal() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return Proposal().isVisible(); }, 5000));
    }
};

TEST_F(FaceStory, OffersThePlaceOnTheFaceAndLeavesTheTemplateUntilItIsTaken) {
    const QRect before = Template();
    AwaitProposal();
    EXPECT_EQ(Template(), before);
    Child<QPushButton>(*window, "RefuseProposal").click();
    EXPECT_FALSE(Proposal().isVisible());
    EXPECT_EQ(Template(), before);

    Trigger(u"acAlignToFace"_s);
    EXPECT_NEAR(Template().center().x(), DrawnChin.x(), 5);
    EXPECT_TRUE(Template().contains(DrawnChin.toPoint()));
    EXPECT_TRUE(Template().contains(DrawnCrown.toPoint()));
}

TEST_F(FaceStory, LevelsTheHeadInOneStep) {
    const QSize before = Image().Photo().Size();
    Image().ChangePhoto(imaging::Pixels(
        Image().Photo().ToImage().transformed(QTransform().rotate(10), Qt::SmoothTransformation)));
    const int steps = Image().UndoCount();
    Trigger(u"acLevelHead"_s);
    EXPECT_EQ(Image().UndoCount(), steps + 1);
    EXPECT_GT(Image().Photo().Width(), before.width());
    Trigger(u"acUndo"_s);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Image().Photo().Size(), before);
}

}  // namespace kadrona::testing
