#include <gtest/gtest.h>

#include <QPainter>
#include <QTemporaryDir>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <random>

#include "imaging/face/BackgroundMeasures.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"
#include "imaging/face/FaceRegression.h"
#include "imaging/face/PortraitMeasures.h"
#include "imaging/pixels/MatView.h"
#include "platform/AtomicFile.h"
#include "tests/support/DrawnPortrait.h"
#include "tests/support/Errors.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging {
namespace {

using namespace kadrona::testing;

/// A photo of `size` with portraits on a grey wall, each drawn by its transform.
QImage Wall(QSize size, const std::vector<QTransform>& portraits) {
    QImage wall = Filled(size, qRgb(200, 205, 210));
    QPainter painter(&wall);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QImage portrait = DrawnPortrait();
    for (const QTransform& transform : portraits) {
        painter.setTransform(transform);
        painter.drawImage(0, 0, portrait);
    }
    return wall;
}

double Distance(QPointF one, QPointF other) {
    return std::hypot(one.x() - other.x(), one.y() - other.y());
}

void ExpectDrawnFace(const Face& face, const QTransform& drawing, bool mirrored = false) {
    const double eyes = Distance(drawing.map(DrawnLeftEye), drawing.map(DrawnRightEye));
    const double head = Distance(drawing.map(DrawnChin), drawing.map(DrawnCrown));
    const QPointF left = mirrored ? DrawnRightEye : DrawnLeftEye;
    const QPointF right = mirrored ? DrawnLeftEye : DrawnRightEye;
    EXPECT_LT(Distance(face.leftEye.position, drawing.map(left)), 0.06 * eyes);
    EXPECT_LT(Distance(face.rightEye.position, drawing.map(right)), 0.06 * eyes);
    EXPECT_LT(Distance(face.chin.position, drawing.map(DrawnChin)), 0.05 * head);
    EXPECT_LT(Distance(face.crown.position, drawing.map(DrawnCrown)), 0.05 * head);
    EXPECT_GT(face.Confidence(), 0.4);
}

struct Pose {
    const char* name;
    double scale;
    double degrees;
    bool mirrored;
};

class DrawnFace : public ::testing::TestWithParam<Pose> {};

TEST_P(DrawnFace, IsMeasuredWhereItWasDrawn) {
    const Pose& pose = GetParam();
    QTransform drawing = QTransform::fromScale(pose.scale, pose.scale);
    drawing.translate(300, 400).rotate(pose.degrees).scale(pose.mirrored ? -1 : 1, 1);
    drawing.translate(-300, -400);
    const FaceSearch search =
        FindFace(Pixels(Wall(DrawnSize * pose.scale, {drawing})), InstalledCascades());
    ASSERT_TRUE(search.face);
    EXPECT_EQ(search.faceCount, 1);
    ExpectDrawnFace(*search.face, drawing, pose.mirrored);
    EXPECT_NEAR(search.face->tiltDegrees, pose.degrees, 2);
    EXPECT_LE(search.face->crown.position.y(), search.face->skull.position.y() + 1);
}

INSTANTIATE_TEST_SUITE_P(Poses, DrawnFace,
                         ::testing::Values(Pose{"plain", 1, 0, false}, Pose{"mirrored", 1, 0, true},
                                           Pose{"small", 0.35, 0, false},
                                           Pose{"large", 4, 0, false}, Pose{"left", 1, -13, false},
                                           Pose{"right", 1.5, 13, false},
                                           Pose{"farLeft", 1, -22, false},
                                           Pose{"farRight", 1, 22, false}),
                         [](const auto& info) { return info.param.name; });

TEST(FaceSearch, TakesTheLargestFaceNearTheMiddleAndCountsTheOthers) {
    QTransform large = QTransform::fromTranslate(500, 100);
    const QTransform small = QTransform::fromScale(0.5, 0.5);
    const FaceSearch search =
        FindFace(Pixels(Wall({1500, 900}, {large, small})), InstalledCascades());
    ASSERT_TRUE(search.face);
    EXPECT_EQ(search.faceCount, 2);
    ExpectDrawnFace(*search.face, large);
}

TEST(FaceSearch, CountsAGroupAndMeasuresOneOfIt) {
    std::vector<QTransform> group;
    group.reserve(50);
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 10; ++column) {
            group.emplace_back(0.3, 0, 0, 0.3, 190 * column, 240 * row);
        }
    }
    const QImage photo = Wall({1900, 1200}, group).convertToFormat(QImage::Format_Grayscale8);
    const FaceSearch search = FindFace(Pixels(photo), InstalledCascades());
    ASSERT_TRUE(search.face);
    EXPECT_GE(search.faceCount, 45);
    const auto isMeasured = [&](const QTransform& drawing) {
        return Distance(search.face->leftEye.position, drawing.map(DrawnLeftEye)) < 4 &&
               Distance(search.face->chin.position, drawing.map(DrawnChin)) < 10;
    };
    EXPECT_EQ(std::ranges::count_if(group, isMeasured), 1);
}

TEST(FaceSearch, TakesAWeakFaceThatAnotherClassifierSeesToo) {
    for (const auto& [cap, frame, grey] : {std::tuple(124, 28, 60), std::tuple(136, 32, 100)}) {
        QImage portrait = Wall(DrawnSize, {QTransform()});
        QPainter painter(&portrait);
        painter.fillRect(170, 100, 261, cap, Qt::black);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(grey, grey, grey), frame));
        for (const int left : {195, 315}) {
            painter.drawRoundedRect(left, 300, 90, 60, 20, 20);  // glasses
        }
        painter.end();
        const FaceSearch search = FindFace(Pixels(portrait), InstalledCascades());
        ASSERT_TRUE(search.face);
        EXPECT_EQ(search.faceCount, 1);
        EXPECT_LT(Distance(search.face->EyeMiddle(), (DrawnLeftEye + DrawnRightEye) / 2), 40);
    }
}

QImage Noise(QSize size) {
    std::mt19937 random(7);
    return Painted(size, [&](int, int) { return 0xff000000U | (random() & 0xffffffU); });
}

TEST(FaceSearch, SaysThatThereIsNone) {
    QTransform upsideDown = QTransform::fromTranslate(600, 800).rotate(180);
    QTransform outside = QTransform::fromTranslate(-330, 0);
    for (const QImage& image : {QImage(1, 1, QImage::Format_RGB32), Wall({30000, 2}, {}),
                                Wall({2, 30000}, {}), Wall({800, 600}, {}), Noise({900, 700}),
                                Wall(DrawnSize, {upsideDown}), Wall({300, 800}, {outside})}) {
        const FaceSearch search = FindFace(Pixels(image), InstalledCascades());
        EXPECT_FALSE(search.face) << image.width() << " x " << image.height();
        EXPECT_EQ(search.faceCount, 0);
    }
    EXPECT_FALSE(FindFace(Pixels(), InstalledCascades()).face);
}

TEST(FaceSearch, MeasuresAHeadThatTheUpperEdgeCuts) {
    const QTransform cut = QTransform::fromTranslate(0, -180);
    const FaceSearch search = FindFace(Pixels(Wall({600, 620}, {cut})), InstalledCascades());
    ASSERT_TRUE(search.face);
    EXPECT_LT(search.face->crown.position.y(), 25);
    EXPECT_LT(search.face->crown.confidence, 0.5);
}

TEST(FaceSearch, LooksForTheCrownBelowADarkBoard) {
    for (const int top : {40, 80}) {
        QImage photo = Wall(DrawnSize, {{}});
        QPainter(&photo).fillRect(0, top, DrawnSize.width(), 26, QColor(60, 45, 35));
        const FaceSearch search = FindFace(Pixels(photo), InstalledCascades());
        ASSERT_TRUE(search.face);
        ExpectDrawnFace(*search.face, {});
    }
}

/// A step that moves by its offsets, whatever it sees.
QByteArray BlindStep(FaceRegression::Kind kind, const char* scaleAndOffsets) {
    const QByteArray row = "0 " + QByteArray("0 ").repeated(FaceRegression::MoveSize(kind) - 1);
    return FaceRegression::NameOf(kind) + QByteArray(" ") + scaleAndOffsets + "\n" +
           (row + "\n").repeated(FaceRegression::GridSize(kind));
}

TEST(FaceRegression, MovesBothEyesThenEachOutwardAndPlacesChinAndCrown) {
    const QImage wall = Filled({400, 300}, qRgb(150, 150, 150));
    const FacePhoto photo(ConstMatView(wall));
    const FaceFrame rough = FaceFrame::OfEyes({150, 150}, {250, 150});
    const QByteArray pair = BlindStep(FaceRegression::Pair, "0.001 100 50 0 50");
    const QByteArray table = pair + BlindStep(FaceRegression::Chin, "0.01 170") +
                             BlindStep(FaceRegression::NearCrown, "0.01 -20") +
                             BlindStep(FaceRegression::Eye, "0.01 -10 0") +
                             BlindStep(FaceRegression::Crown, "0.01 -180") +
                             BlindStep(FaceRegression::NearChin, "0.01 15");
    const FaceRegression regression = FaceRegression::Read(table);
    const FaceFrame settled = regression.Settled(photo, rough);
    EXPECT_LT(Distance(settled.ToPhoto({-0.5, 0}), {151, 155}), 0.1);
    EXPECT_LT(Distance(settled.ToPhoto({0.5, 0}), {259, 155}), 0.1);
    EXPECT_NEAR(regression.ChinIn(photo, rough), 1.85, 1e-3);
    EXPECT_NEAR(regression.CrownIn(photo, rough), -2, 1e-3);
    for (const QByteArray& damaged :
         {table.chopped(4), "nose" + table.mid(4), "pair nan" + table.mid(10), pair,
          QByteArray(table).replace("0 0 0 0", "0 0 x 0"), table + "eye", QByteArray()}) {
        EXPECT_THROW(FaceRegression::Read(damaged), platform::FileError);
    }
}

TEST(FaceRegression, TheLearnedTableDrawsRoughGuessesToThePupils) {
    const QImage portrait = Wall(DrawnSize, {{}});
    const FacePhoto photo(ConstMatView(portrait));
    for (const QPointF off : {QPointF(8, 6), QPointF(-8, 6), QPointF(6, -8), QPointF(-6, -8)}) {
        const FaceFrame settled = LearnedFaces().Settled(
            photo, FaceFrame::OfEyes(DrawnLeftEye + off, DrawnRightEye + off));
        EXPECT_LT(Distance(settled.ToPhoto({-0.5, 0}), DrawnLeftEye), 3);
        EXPECT_LT(Distance(settled.ToPhoto({0.5, 0}), DrawnRightEye), 3);
    }
}

TEST(PortraitMeasures, SeeEachSideForItself) {
    Face face;
    face.leftEye.position = {250, 300};
    face.rightEye.position = {350, 300};
    face.crown.position = {300, 100};
    const auto measured = [&](const QRect& area, QRgb colour) {
        QImage photo = Filled({600, 800}, qRgb(150, 150, 150));
        QPainter(&photo).fillRect(area, QColor(colour));
        return MeasurePortrait(Pixels(photo), face);
    };
    const PortraitMeasures plain = measured({}, 0);
    EXPECT_LT(*plain.lightDifference + *plain.skinClipped + *plain.redEye, 0.1);
    for (const int eye : {250, 350}) {
        EXPECT_GT(*measured({eye - 8, 292, 16, 16}, qRgb(200, 20, 20)).redEye, 50) << eye;
    }
    EXPECT_GT(*measured({230, 330, 50, 60}, qRgb(90, 90, 90)).lightDifference, 10);
    EXPECT_GT(*measured({320, 330, 50, 60}, qRgb(90, 90, 90)).lightDifference, 10);
    EXPECT_GT(*measured({240, 200, 120, 60}, qRgb(255, 255, 255)).skinClipped, 50) << "forehead";
}

TEST(PortraitMeasures, GrowWithLightAndFineEdges) {
    Face face;
    face.leftEye.position = {250, 300};
    face.rightEye.position = {350, 300};
    face.crown.position = {300, 100};
    const auto measured = [&](int grey, int stripe) {
        QImage photo = Filled({600, 800}, qRgb(grey, grey, grey));
        QPainter painter(&photo);
        for (int x = 0; stripe > 0 && x < 600; x += 2 * stripe) {
            painter.fillRect(x, 280, stripe, 40, Qt::black);
        }
        painter.end();
        return MeasurePortrait(Pixels(photo), face);
    };
    for (const auto& [grey, lightness] : {std::pair(40, 16), {119, 50}, {225, 89}}) {
        EXPECT_NEAR(*measured(grey, 0).skinLightness, lightness, 1.5);
        EXPECT_LT(*measured(grey, 0).sharpness, 0.1);
    }
    EXPECT_GT(*measured(150, 3).sharpness, 2 * *measured(150, 24).sharpness);
}

TEST(BackgroundMeasures, AreOfWhatTheCutHoldsBesideTheHead) {
    Face face;
    face.leftEye.position = {250, 300};
    face.rightEye.position = {350, 300};
    face.crown.position = {300, 100};
    const auto measured = [&](const QRect& area, const QRect& cut) {
        QImage photo = Filled({600, 800}, qRgb(150, 150, 150));
        QPainter(&photo).fillRect(area, QColor(90, 90, 90));
        return MeasureBackground(Pixels(photo), face, cut);
    };
    // 35 x 45 mm around a head of 36 mm, of 34 mm and of 30 mm; no cut.
    for (const QRect& cut :
         {QRect(145, 70, 310, 400), QRect(130, 60, 340, 440), QRect(110, 10, 380, 490), QRect()}) {
        EXPECT_LT(*measured({}, cut).spread, 0.1);
        EXPECT_NEAR(*measured({}, cut).lightness, 62, 1);
        const QRect inside = cut.isEmpty() ? QRect(90, 80, 420, 300) : cut;
        const QRect left(inside.x(), 0, 20, 600);
        EXPECT_GT(*measured(left, cut).spread, 5) << cut.width();
        EXPECT_GT(*measured(left.translated(inside.width() - 20, 0), cut).spread, 5);
        EXPECT_GT(*measured({0, 0, 300, 600}, cut).shadow, 10);
        EXPECT_LT(*measured(left.translated(-20, 0), cut).spread, 0.1) << "cut off";
        EXPECT_LT(*measured({180, 0, 240, 800}, cut).spread, 0.1) << "the head";
        EXPECT_LT(*measured({0, 330, 600, 470}, cut).spread, 0.1) << "the shoulders";
    }
    EXPECT_FALSE(measured({}, {190, 60, 220, 440}).lightness) << "nothing but the head";
}

TEST(Cascades, SayWhatToInstallWhereTheyAreMissingOrDamaged) {
    const QTemporaryDir folder;
    const auto complaint = [&] {
        return TextOf<CascadesMissing>([&] { const Cascades cascades(folder.path()); });
    };
    EXPECT_TRUE(complaint().contains(u"opencv-data"));
    platform::WriteFileAtomically(
        folder.filePath(QStringLiteral("haarcascade_frontalface_alt2.xml")),
        "<?xml version=\"1.0\"?><opencv_storage><cascade>");
    EXPECT_TRUE(complaint().contains(u"frontalface_alt2"));
}

}  // namespace
}  // namespace kadrona::imaging
