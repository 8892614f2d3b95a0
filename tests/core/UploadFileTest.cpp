#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>
#include <random>

#include "core/check/TemplateTable.h"
#include "core/sheet/UploadFile.h"
#include "platform/AtomicFile.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

/// What no coder makes small.
imaging::Pixels Noise(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    std::mt19937 random(7);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, random() | 0xff000000);
        }
    }
    return imaging::Pixels(image);
}

imaging::Pixels Plain(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(qRgb(180, 190, 200));
    return imaging::Pixels(image);
}

UploadFile Made(const imaging::Pixels& cut, const UploadFigures& figures, int width = 350,
                int height = 450) {
    return MakeUploadFile({cut, {width}, {height}, figures, {"KDR"}});
}

bool Within(int length, const PixelRange& range) {
    return length >= range.least.value_or(1) && length <= range.most.value_or(LongestUploadSide);
}

TEST(UploadFile, MeetsTheFiguresOfEveryTemplateWhateverThePhoto) {
    const QString path = QStringLiteral(KADRONA_TEMPLATE_TABLE);
    int templates = 0;
    for (const TemplateRow& row :
         ParseTemplateTable(QString::fromUtf8(platform::ReadWholeFile(path, 1 << 20)), path)) {
        if (row.upload.SameAs({})) {
            continue;
        }
        ++templates;
        const auto sized = [&](int width) {
            return QSize(width, qRound(width * double(row.height.value) / row.width.value));
        };
        const imaging::Pixels noise = Noise(sized(700));
        const imaging::Pixels small = Noise(sized(150));
        for (const imaging::Pixels& cut : {noise, small, Plain(sized(150))}) {
            const UploadFile file = Made(cut, row.upload, row.width.value, row.height.value);
            const std::string what =
                row.name.toStdString() + " from " + std::to_string(cut.Width());
            // One colour alone never gets large, however fine the tables: that is said.
            EXPECT_EQ(file.shortfall.isEmpty(), row.upload.bytes.Contains(file.bytes.size()))
                << what;
            EXPECT_LE(file.bytes.size(), row.upload.bytes.most) << what;
            if (cut.SharesPixelsWith(noise) || cut.SharesPixelsWith(small)) {
                EXPECT_GE(file.bytes.size(), row.upload.bytes.least) << what;
            }
            const QImage image = QImage::fromData(file.bytes, "jpg");
            EXPECT_EQ(image.size(), file.size) << what;
            EXPECT_TRUE(Within(image.width(), row.upload.width)) << what;
            EXPECT_TRUE(Within(image.height(), row.upload.height)) << what;
            EXPECT_EQ(file.enlarged, file.size.width() > cut.Width());
        }
    }
    EXPECT_GE(templates, 8);
}

struct WindowCase {
    const char* why;
    UploadFigures figures;
    QSize size;             // expected; empty: any
    const char* shortfall;  // a part of it; "" none
};

TEST(UploadFile, UsesItsWindowAndSaysWhatIsImpossible) {
    const imaging::Pixels cut = Noise({700, 900});
    using imaging::ByteRange;
    for (const WindowCase& c :
         {WindowCase{"nothing asked for", {}, {700, 900}, ""},
          {"the cut's own pixels", {{500, {}}, {}, {}}, {700, 900}, ""},
          {"no more than twice the least", {{300, {}}, {}, {}}, {600, 771}, ""},
          {"fewer pixels instead of blocks", {{300, 700}, {}, {0, 90'000}}, {}, ""},
          {"a window at the upper end", {{350, 350}, {}, {60'000, 61'000}}, {350, 450}, ""},
          {"more pixels for the lower end", {{}, {}, {3'000'000, 3'500'000}}, {}, ""},
          {"stretched by a third of a percent", {{480, 480}, {615, 615}, {}}, {480, 615}, ""},
          {"a height that no width gives", {{}, {533, 533}, {}}, {415, 533}, ""},
          {"another shape", {{600, 600}, {600, 600}, {}}, {600, 771}, "andere Form"},
          {"a side from more to less", {{600, 500}, {}, {}}, {}, "Breite ist „von“ größer"},
          {"bytes from more to less", {{}, {}, {90'000, 60'000}}, {}, "Größe ist „von“ größer"},
          {"too few bytes", {{700, 700}, {}, {0, 20'000}}, {700, 900}, "geringsten Qualität"},
          {"too many", {{70, 70}, {}, {90'000, 95'000}}, {70, 90}, "höchsten Qualität"}}) {
        const UploadFile file = Made(cut, c.figures);
        if (!c.size.isEmpty()) {
            EXPECT_EQ(file.size, c.size) << c.why;
        }
        EXPECT_EQ(file.shortfall.isEmpty(), *c.shortfall == 0) << c.why;
        EXPECT_TRUE(file.shortfall.contains(QString::fromUtf8(c.shortfall))) << c.why;
        if (file.shortfall.isEmpty()) {
            EXPECT_TRUE(c.figures.bytes.Contains(file.bytes.size())) << c.why;
        }
        if (c.figures.bytes.most < 1'000'000 && file.shortfall.isEmpty()) {
            EXPECT_GT(file.bytes.size(), c.figures.bytes.most * 0.96) << c.why;
        }
    }
}

TEST(SizedJpeg, IsTheFinestThatFits) {
    const imaging::Pixels noise = Noise({200, 200});
    const auto bytes = [&](const imaging::JpegCoding& coding) {
        return imaging::EncodeJpegAs(noise, {300}, {}, coding).bytes.size();
    };
    for (qint64 most = 20'000; most < 100'000; most += 6'000) {
        const auto made = imaging::EncodeJpegWithin(noise, {300}, {}, {0, most});
        EXPECT_LE(made.bytes.size(), most);
        imaging::JpegCoding finer = made.coding;
        --finer.tablePercent;
        EXPECT_TRUE(made.coding.tablePercent == 0 || bytes(finer) > most) << most;
    }
    // Too few bytes with every fourth colour at its finest, too many with all at quality 90.
    const imaging::ByteRange between{
        bytes({.tablePercent = 0, .chroma = imaging::ChromaSampling::Quarter, .ownTables = true}) +
            1,
        bytes({.tablePercent = imaging::TablePercentOf(90), .ownTables = true}) - 1};
    ASSERT_LT(between.least + 500, between.most);
    const auto made = imaging::EncodeJpegWithin(noise, {300}, {}, between);
    EXPECT_TRUE(between.Contains(made.bytes.size()));
}

TEST(UploadFile, SaysItsDensityInBothPlacesAlike) {
    const UploadFile file = Made(Noise({700, 900}), {{413, 413}, {531, 531}, {}});
    EXPECT_EQ(file.resolution.value, 300);
    if (QStandardPaths::findExecutable(u"exiftool"_s).isEmpty()) {
        GTEST_SKIP() << "exiftool is not installed";
    }
    QProcess exiftool;
    exiftool.start(u"exiftool"_s, {u"-n"_s, u"-s"_s, u"-G1"_s, u"-a"_s, u"-XResolution"_s,
                                   u"-YResolution"_s, u"-"_s});
    exiftool.write(file.bytes);
    exiftool.closeWriteChannel();
    ASSERT_TRUE(exiftool.waitForFinished());
    const QStringList lines =
        QString::fromUtf8(exiftool.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), 4) << "JFIF and EXIF, two directions each";
    for (const QString& line : lines) {
        EXPECT_TRUE(line.endsWith(u": 300"_s)) << line.toStdString();
    }
}

}  // namespace
}  // namespace kadrona::core
