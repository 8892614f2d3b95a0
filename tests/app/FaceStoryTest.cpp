#include <QCheckBox>
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

TEST_F(FaceStory, AsksBeforeACutThatMissesARuleUnlessTheProfileDoesNot) {
    installation.Write(
        "program/Schablonen/Vorgaben.tsv",
        "Name\tDatei\tBreite\tHöhe\tBeleg\tGelesen am\tKopf von\tKopf bis\tAugen von\t"
        "Augen bis\tOben von\tOben bis\tKinn von\tKinn bis\tGesicht von\tGesicht bis\t"
        "Achse von\tAchse bis\tRichtwert\tHinweis\n"
        "Pass\tPass.msk\t35\t45\tO\t2026-11-21\t32\t36" +
            QByteArray(12, '\t') + "\n");
    Trigger(u"acAlignToFace"_s);
    Image().SetLayerRectangle(
        1, Template().adjusted(0, 0, Template().width() / 2, Template().height() / 2));
    driver.Answer({u"Kopf"_s, u"Trotzdem erstellen?"_s}, u"NoButton"_s);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "nothing was cut";
    Child<QCheckBox>(*window, "AskBeforeCut").setChecked(false);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 1);
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
