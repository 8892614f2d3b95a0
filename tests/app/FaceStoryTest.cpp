// What the window offers where it finds a face.

#include <QRegularExpression>
#include <QSignalSpy>
#include <cmath>

#include "app/base/PhotoSession.h"
#include "app/face/PhotoFace.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"
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
    /// Of the check.
    QStringList Texts() {
        QStringList all;
        for (const QLabel* label :
             Child<QWidget>(*window, "CheckSection").findChildren<QLabel*>()) {
            all << (label->accessibleName().isEmpty() ? label->text() : label->accessibleName());
        }
        return all;
    }
    /// True when the check shows something else than now before long.
    bool TextsFollow() {
        return QTest::qWaitFor([this, now = Texts()] { return Texts() != now; }, 1500);
    }
};

TEST_F(FaceStory, OffersThePlaceOnTheFaceAndLeavesTheTemplateUntilItIsTaken) {
    const QRect before = Template();
    const QSize room = window->View().size();
    AwaitProposal();
    EXPECT_EQ(Template(), before);
    EXPECT_EQ(window->View().size(), room) << "the photo does not jump";
    EXPECT_GE(Proposal().mapTo(window.get(), QPoint()).y(),
              window->View().mapTo(window.get(), QPoint(0, room.height())).y());
    QTest::keyClick(&window->View(), Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_EQ(window->View().size(), room);
    EXPECT_FALSE(Proposal().isVisible());
    EXPECT_EQ(Template(), before);
    Trigger(u"acRotateLeft"_s);
    Trigger(u"acUndo"_s);
    EXPECT_FALSE(QTest::qWaitFor([this] { return Proposal().isVisible(); }, 1500))
        << "once a photo";

    Trigger(u"acAlignToFace"_s);
    EXPECT_NEAR(Template().center().x(), DrawnChin.x(), 5);
    EXPECT_TRUE(Template().contains(DrawnChin.toPoint()));
    EXPECT_TRUE(Template().contains(DrawnCrown.toPoint()));

    Trigger(u"acCrop"_s);
    Open("face.png");
    EXPECT_FALSE(QTest::qWaitFor([this] { return Proposal().isVisible(); }, 1000))
        << "it stands there";
}

TEST_F(FaceStory, TellsOfATightPhotoWhereNothingIsOffered) {
    DrawnPortrait().copy(80, 110, 440, 450).save(installation.Path("tight.png"));
    Open("tight.png");
    Setting<QComboBox>("AlignToFace").setCurrentIndex(2);
    AwaitProposal();
    EXPECT_TRUE(Child<QLabel>(Proposal(), "ProposalText").text().contains(u"zu nah am Kopf"_s));
    EXPECT_FALSE(Child<QPushButton>(*window, "AcceptProposal").isVisible());
    Image().SetLayerRectangle(1, Template().translated(0, 1));
    EXPECT_FALSE(Proposal().isVisible()) << "it stood there no longer";
}

TEST_F(FaceStory, TellsAfterTheCutThatThereWasNoFace) {
    const auto notice = [this] { return Child<QLabel>(*window, "StatusNotice").text(); };
    for (const bool saved : {false, true}) {
        Open("photo.png");
        Setting<QLineEdit>("ImageSaveDir").setText(installation.Path("."));
        Setting<QAbstractButton>("ImageAutoSave2").setChecked(saved);
        SetLayout(core::SinglePhotoLayout);
        if (saved) {
            driver.Answer({u"gespeichert"_s}, u"OkButton"_s);
        }
        Trigger(u"acCrop"_s);
        EXPECT_TRUE(notice().contains(u"kein Gesicht"_s));
        EXPECT_EQ(notice().contains(u"Gespeichert"_s), saved);
    }
}

TEST_F(FaceStory, OffersThePlaceAlsoWhereTheFaceIsFoundBeforeTheTemplateIsChosen) {
    Trigger(u"acShowCheck"_s);
    driver.Expect(u"SchabloneFm"_s, [](QWidget& shown) {
        QTest::qWait(1200);  // for the search that the check begins
        Child<QListWidget>(shown, "lbSchablonen").setCurrentRow(0);
        ClickButton(shown, "btnOk");
    });
    window->OpenDroppedFiles({installation.Path("face.png")});
    AwaitProposal();
}

TEST_F(FaceStory, AsksBeforeACutThatMissesARuleUnlessTheProfileDoesNot) {
    installation.WriteFigures();
    Trigger(u"acAlignToFace"_s);
    Image().SetLayerRectangle(
        1, Template().adjusted(0, 0, Template().width() / 2, Template().height() / 2));
    driver.Answer({u"Kopf "_s, u" mm statt "_s, u"Trotzdem erstellen?"_s}, u"NoButton"_s);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 2) << "nothing was cut";
    for (const auto& other : {u"acAddToSheet"_s, u"acUploadFile"_s}) {
        driver.Answer(u"Trotzdem erstellen?"_s, u"NoButton"_s);
        Trigger(other);
    }
    Child<QCheckBox>(*window, "AskBeforeCut").setChecked(false);
    Trigger(u"acCrop"_s);
    EXPECT_EQ(Image().LayerCount(), 1);
}

TEST(PhotoFace, SaysWhatIsMissingToWhoeverAsksUntilItIsInstalled) {
    app::PhotoSession session;
    session.Image().Open(imaging::Pixels(DrawnPortrait()), {});
    session.SetStage(app::PhotoSession::Stage::PhotoOpen);
    QWidget window;
    bool installed = false;
    app::PhotoFace face(session, window, [&installed](const imaging::Pixels& photo) {
        return installed ? imaging::FindFace(photo)
                         : throw imaging::CascadesMissing(u"Installieren Sie es."_s);
    });
    QSignalSpy looked(&face, &app::PhotoFace::Looked);
    face.FindSoon();
    ASSERT_TRUE(looked.wait());
    EXPECT_FALSE(face.WasLookedFor());
    EXPECT_EQ(face.Missing(), u"Installieren Sie es."_s);
    EXPECT_THROW(face.Find(), imaging::CascadesMissing);
    installed = true;
    EXPECT_TRUE(face.Find());
    EXPECT_TRUE(face.WasLookedFor() && face.Missing().isEmpty());
}

TEST_F(FaceStory, TheOffersButtonsAreWholeInANarrowViewWithLargeLetters) {
    AwaitProposal();
    QFont large = window->font();
    large.setPixelSize(34);
    Proposal().setFont(large);
    Trigger(u"acShowCheck"_s);
    QApplication::processEvents();
    for (const char* name : {"AcceptProposal", "RefuseProposal"}) {
        const auto& button = Child<QPushButton>(*window, name);
        EXPECT_GE(button.width(), button.sizeHint().width()) << name;
        EXPECT_TRUE(Proposal().rect().contains(button.geometry())) << name;
    }
}

TEST_F(FaceStory, LevelsTheHeadInOneStep) {
    const QSize before = Image().Photo().Size();
    Image().ChangePhoto(imaging::Pixels(
        Image().Photo().ToImage().transformed(QTransform().rotate(10), Qt::SmoothTransformation)));
    Trigger(u"acAlignToFace"_s);
    const int steps = Image().UndoCount();
    Trigger(u"acLevelHead"_s);
    EXPECT_EQ(Image().UndoCount(), steps + 1);
    const QRect levelled = Template();
    Trigger(u"acAlignToFace"_s);
    EXPECT_EQ(levelled, Template()) << "it stood on the face";
    EXPECT_GT(Image().Photo().Width(), before.width());
    Trigger(u"acUndo"_s);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Image().Photo().Size(), before);
}

TEST_F(FaceStory, LevelsTheHeadByALineThatTheUserDraws) {
    const QRect before = Template();
    ClickButton(*window, "acLevelByLineButton");
    Drag(window->View(), {OnScreen({400, 440}), OnScreen({300, 410}), OnScreen({200, 380})});
    EXPECT_FALSE(IsChecked(u"acLevelByLine"_s)) << "one line is enough";
    EXPECT_EQ(Image().UndoCount(), 1);
    const double sine = 60 / std::hypot(200, 60);
    EXPECT_NEAR(Image().Photo().Width(), 600 * std::sqrt(1 - sine * sine) + 800 * sine, 6)
        << "to a pixel of the screen";
    const auto middle = [](QSize photo) { return QRectF(QPointF(), photo).center(); };
    const QPointF arm = QRectF(before).center() - middle(DrawnSize);
    const QPointF turned = QTransform().rotate(-std::asin(sine) * 180 / M_PI).map(arm);
    const QPointF now = QRectF(Template()).center() - middle(Image().Photo().Size());
    EXPECT_LT(QLineF(turned, now).length(), 3) << "the template's middle turns with the photo";
    Trigger(u"acUndo"_s);
    EXPECT_EQ(Image().Photo().Size(), DrawnSize);
    EXPECT_EQ(Template(), before);
}

TEST_F(FaceStory, APhotoThatLiesOnItsSideIsOfferedAPlaceOnceItIsTurned) {
    Image().ChangePhoto(imaging::Pixels(DrawnPortrait().transformed(QTransform().rotate(90))));
    AwaitProposal();
    EXPECT_TRUE(Child<QLabel>(Proposal(), "ProposalText").text().contains(u"kein Gesicht"_s));
    const auto& accept = Child<QPushButton>(*window, "AcceptProposal");
    EXPECT_FALSE(accept.isVisible());
    Trigger(u"acRotateLeft"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return accept.isVisible(); }, 5000));
}

TEST_F(FaceStory, CorrectedPointsTurnWithThePhotoAndKeepTheirSides) {
    AwaitProposal();
    Trigger(u"acShowCheck"_s);
    const auto drag = [this](QPointF from, QPointF to) {
        Child<QAbstractButton>(*window, "MovePoints").setChecked(true);
        Drag(window->View(), {OnScreen(from.toPoint()), OnScreen(to.toPoint())});
    };
    const auto height = [this] {
        Trigger(u"acAlignToFace"_s);
        return Template().height();
    };
    const int found = height();
    drag(DrawnChin, DrawnChin + QPointF(0, 40));
    const int corrected = height();
    EXPECT_GT(corrected, found + 20);
    drag(DrawnChin + QPointF(0, 40), DrawnCrown);
    EXPECT_EQ(height(), corrected) << "no chin stands above the eyes";
    drag(DrawnLeftEye, 2 * DrawnRightEye - DrawnLeftEye);
    Trigger(u"acRotateLeft"_s);
    Trigger(u"acRotateRight"_s);
    EXPECT_NEAR(height(), corrected, 1) << "turned and back";
    Trigger(u"acUndo"_s);
    Trigger(u"acUndo"_s);
    EXPECT_EQ(height(), corrected) << "both undone";
    Trigger(u"acLevelHead"_s);
    const QImage level = Image().Photo().ToImage();
    EXPECT_NE(level.pixelColor(level.width() / 2, level.height() - 9), QColor(Qt::white))
        << "the shoulders are below";
    const int steps = Image().UndoCount();
    drag(2 * DrawnRightEye - DrawnLeftEye, DrawnLeftEye);
    ClickButton(*window, "acLevelByLineButton");
    Drag(window->View(), {OnScreen({200, 380}), OnScreen({400, 400})});
    EXPECT_EQ(Image().UndoCount(), steps + 1);
    EXPECT_NEAR(height(), corrected, 8) << "of the chin that was corrected";
}

TEST_F(FaceStory, DraggingPointsEndsOtherToolsOfTheMouse) {
    Trigger(u"acShowCheck"_s);
    Trigger(u"acBeauty"_s);
    Trigger(u"acAlignToFace"_s);
    EXPECT_TRUE(Child<QLabel>(*window, "StatusNotice").text().contains(u"Stempel"_s));
    Trigger(u"acBeauty"_s);
    for (const auto& mode : {u"acBeauty"_s, u"acSetWhitePoint"_s}) {
        Trigger(mode);
        ClickButton(*window, "MovePoints");
        EXPECT_FALSE(IsChecked(mode));
        ClickButton(*window, "MovePoints");
        EXPECT_TRUE(window->View().Tool() == nullptr && Image().LayerAt(1).visible);
    }
}

TEST_F(FaceStory, ADraggedPointMovesTheLinesAndTheReportIsPrinted) {
    AwaitProposal();
    Trigger(u"acAlignToFace"_s);
    Trigger(u"acShowCheck"_s);
    auto& section = Child<QWidget>(*window, "CheckSection");
    EXPECT_EQ(Child<QPushButton>(section, "CheckReport").nextInFocusChain()->objectName(),
              u"acAlignToFaceButton"_s);
    const QStringList before = Texts();
    ClickButton(section, "MovePoints");
    const QPoint chin = DrawnChin.toPoint();
    Drag(window->View(), {OnScreen(chin), OnScreen(chin + QPoint(0, 40))});
    EXPECT_NE(Texts(), before) << "the head is longer now";
    const uchar* pixels = Image().Photo().Tile().constBits();
    Image().EditPhoto({0, 0, 1, 1}, [](QImage& photo) { photo.setPixel(0, 0, 0); });
    EXPECT_EQ(Image().Photo().Tile().constBits(), pixels) << "a stroke copies no photo";

    printer.setupChoice = printer.current;
    section.findChild<QAction*>(u"PrintReport"_s)->trigger();
    ASSERT_EQ(printer.jobs.size(), 1);
    EXPECT_NEAR(printer.jobs[0].image.Millimetres().height(), 297, 0.1);

    const QString head = Texts().filter(u" mm"_s).value(0);
    Trigger(u"acCrop"_s);
    EXPECT_TRUE(Texts().contains(head)) << "the sheet keeps what was checked";
    section.findChild<QAction*>(u"PrintReport"_s)->trigger();
    ASSERT_EQ(printer.jobs.size(), 2);
    EXPECT_EQ(printer.jobs[1].image.tile, printer.jobs[0].image.tile);
    driver.Answer({u"gone.png"_s}, u"OkButton"_s);
    window->OpenDroppedFiles({installation.Path("gone.png")});
    EXPECT_FALSE(Child<QPushButton>(section, "CheckReport").isEnabled());
}

TEST_F(FaceStory, MovesTheEndOfTheHeadThatTheDocumentMeasures) {
    installation.WriteFigures("Schädel");
    Trigger(u"acAlignToFace"_s);
    Trigger(u"acShowCheck"_s);
    QTest::qWait(500);  // for the search that the check begins
    ClickButton(*window, "MovePoints");
    const QPoint skull = imaging::FindFace(Image().Photo()).face->skull.position.toPoint();
    const QPoint chin = DrawnChin.toPoint();
    const double millimetres = 35.0 / Template().width();
    Drag(window->View(), {OnScreen(skull), OnScreen(chin - QPoint(0, 420))});
    Drag(window->View(), {OnScreen(chin), OnScreen(chin + QPoint(0, 60))});
    const QString head = Texts().filter(u" mm"_s).value(0);
    EXPECT_NEAR(head.chopped(3).replace(u',', u'.').toDouble(), 480 * millimetres, 1)
        << "the skull stays where it was put";
}

TEST_F(FaceStory, ChecksAFaceThatTheUserPointsOut) {
    installation.WriteFigures();
    Open("photo.png");
    Trigger(u"acShowCheck"_s);
    ClickButton(*window, "MovePoints");
    const imaging::Face guess = imaging::TypicalFace(Image().Photo().Size());
    const QRegularExpression figure(u"^[0-9,]+ mm$"_s);
    const auto hasFigure = [&] { return !Texts().filter(figure).isEmpty(); };
    for (const auto point : {guess.leftEye, guess.rightEye, guess.chin, guess.crown}) {
        EXPECT_FALSE(hasFigure());
        const QPoint at = OnScreen(point.position.toPoint());
        Drag(window->View(), {at, at + QPoint(0, 4), at});
    }
    EXPECT_TRUE(hasFigure()) << Texts().join(u'\n').toStdString();
}

TEST_F(FaceStory, TheMeasuresFollowAMovedPointAndTheStamp) {
    AwaitProposal();
    Trigger(u"acAlignToFace"_s);
    Trigger(u"acShowCheck"_s);
    QTest::qWait(500);  // for the search that the check begins
    ClickButton(*window, "MovePoints");
    const QPoint eye = DrawnLeftEye.toPoint();
    Drag(window->View(), {OnScreen(eye), OnScreen(eye + QPoint(0, 30))});
    const auto print = [&] {
        Child<QAction>(*window, "PrintReport").trigger();
        return printer.jobs.back().image.tile;
    };
    printer.setupChoice = printer.current;
    const auto atOnce = print();
    EXPECT_TRUE(TextsFollow()) << "the point";
    EXPECT_EQ(print(), atOnce);
    Image().RecordUndoStep();
    Image().EditPhoto(QRect({0, 0}, DrawnSize), [](QImage& photo) { photo.fill(Qt::black); });
    EXPECT_TRUE(TextsFollow()) << "the stamp";
    const auto lengths = [this] { return Texts().filter(u" mm"_s); };
    const QStringList moved = lengths();
    Trigger(u"acUndo"_s);
    Trigger(u"acSchwarzweiss"_s);
    EXPECT_FALSE(QTest::qWaitFor([&] { return lengths() != moved; }, 1000)) << "points are kept";
}

}  // namespace kadrona::testing
