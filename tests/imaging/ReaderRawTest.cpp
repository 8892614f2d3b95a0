#include <gtest/gtest.h>

#include "RawFixture.h"
#include "imaging/reading/ReadProgress.h"

namespace kadrona::imaging::test {

using namespace Qt::StringLiterals;

/// The file with a JPEG behind it, as the directory that follows its own.
QByteArray WithPreview(QByteArray file, const QByteArray& jpeg, QSize size) {
    const auto first = qFromLittleEndian<quint32>(file.constData() + 4);
    const auto entries = qFromLittleEndian<quint16>(file.constData() + first);
    const quint32 at = quint32(file.size()) + file.size() % 2;
    const quint32 directory = at + quint32(jpeg.size()) + jpeg.size() % 2;
    file.replace(first + 2 + 12 * entries, 4, LittleEndian(directory));
    const auto padded = [](const QByteArray& bytes) {
        return bytes + QByteArray(bytes.size() % 2, '\0');
    };
    const std::vector<std::pair<quint16, quint32>> values{{0x00fe, 1},
                                                          {0x0100, size.width()},
                                                          {0x0101, size.height()},
                                                          {0x0102, 8},
                                                          {0x0103, 7},
                                                          {0x0106, 6},
                                                          {0x0111, at},
                                                          {0x0115, 3},
                                                          {0x0117, jpeg.size()}};
    QByteArray made = padded(file) + padded(jpeg) + LittleEndian(quint16(values.size()));
    for (const auto& [tag, value] : values) {
        made += Packed<quint16>(tag, 4) + Packed<quint32>(1, value);
    }
    return made + QByteArray(4, '\0');
}

struct Watcher : ReadProgress {
    void Begin(const Pixels& shown) override { preview = shown; }
    bool GoOn(double part) override {
        EXPECT_GE(part, done);
        done = part;
        return part < end;
    }
    Pixels preview;
    double done = 0;
    double end = 2;
};

TEST(ReaderRaw, ShowsThePreviewWhileItIsDevelopedAndCanBeGivenUp) {
    JpegContent content;
    content.size = {520, 400};
    const QByteArray jpeg = Jpeg(content);
    const QByteArray file =
        WithPreview(RawFile({.size = {1600, 1300}, .orientation = 6}, Qt::gray), jpeg, {520, 400});
    Watcher watcher;
    EXPECT_EQ(Read(file, {.progress = &watcher}).pixels.Size(), QSize(1300, 1600));
    EXPECT_EQ(watcher.preview.Size(), QSize(200, 260)) << "half of it, upright";
    EXPECT_GT(watcher.done, 0.9);
    Watcher impatient;
    impatient.end = 0.1;
    EXPECT_THROW(Read(file, {.progress = &impatient}), ReadCancelled);
    EXPECT_LT(impatient.done, 0.3);

    EXPECT_EQ(Read(file, {.shrink = 8}).pixels.Size(), QSize(50, 65)) << "of the preview alone";
    const QByteArray damaged = QByteArray(file).replace(jpeg, QByteArray(jpeg.size(), 'x'));
    EXPECT_EQ(Read(damaged, {.shrink = 8}).pixels.Size(), QSize(1300, 1600));
}

TEST(ReaderRaw, DevelopsWithTheCamerasWhiteBalanceAndItsTurn) {
    const QColor colour(200, 120, 60);
    for (const Dng& dng : {Dng{}, Dng{.red = 0.5, .blue = 0.7}}) {
        const LoadedImage loaded = Read(RawFile(dng, colour));
        ASSERT_EQ(loaded.pixels.Size(), dng.size) << "all pixels of the sensor";
        ExpectColour(loaded, {32, 24}, colour, 3);
    }
    // Where the upper half comes to lie, which has less light.
    for (const auto& [orientation, dim] :
         {std::pair(3, QPoint(32, 40)), {6, {40, 32}}, {8, {8, 32}}}) {
        const Dng turned{.orientation = quint16(orientation), .dimRows = 24};
        const QImage photo = Read(RawFile(turned, colour)).pixels.ToImage();
        ASSERT_EQ(photo.size(), orientation == 3 ? QSize(64, 48) : QSize(48, 64));
        EXPECT_LT(qRed(photo.pixel(dim)), qRed(photo.pixel(photo.rect().bottomRight() - dim)));
    }
    EXPECT_EQ(Read(RawFile({.orientation = 6}, colour), {.applyOrientation = false}).pixels.Size(),
              QSize(64, 48));
}

TEST(ReaderRaw, DevelopsTheBandsOfALargePictureAlike) {
    // The brightest pixels become white, and they are in the last band alone.
    const Dng dng{.size = {1500, 1500}, .dimRows = 1400};
    const LoadedImage loaded = Read(RawFile(dng, QColor(235, 235, 235)));
    ASSERT_EQ(loaded.pixels.Size(), dng.size);
    for (const int y : {0, 600, 1319, 1320, 1390}) {
        ExpectColour(loaded, {750, y}, QColor(188, 188, 188), 2);
    }
    ExpectColour(loaded, {750, 1410}, Qt::white, 0);
}

TEST(ReaderRaw, SaysWhatIsWrong) {
    const QByteArray file = RawFile({}, Qt::gray);
    for (qsizetype size = 1; size < file.size(); size += 1000) {
        EXPECT_NE(Failure(file.first(size)), QString()) << size;
    }
    EXPECT_NE(Failure(RawFile({.missingRows = 40}, Qt::gray)), QString());
    EXPECT_TRUE(Failure(file, {.maximumPixels = 3000}).contains(u"Megapixel"_s));
    // Lossless JPEG, of which LibRaw makes black where it does not begin.
    QByteArray coded = file;
    const QByteArray compression = LittleEndian(quint16{0x0103}) + Packed<quint16>(3, 1, 0);
    coded[coded.lastIndexOf(compression) + compression.size()] = 7;
    EXPECT_NE(Failure(coded), QString());
    // A camera that nobody knows: its pixels are compressed in a way of its own.
    EXPECT_NE(Failure(QByteArray("FUJIFILMCCD-RAW") + QByteArray(5000, 'x')), QString());
    // A box whose length in eight bytes leads back to where it stands.
    EXPECT_NE(
        Failure(QByteArray::fromHex("0000000c667479706372782000000001001466740000000000000000") +
                QByteArray(59, '\0')),
        QString());
}

TEST(ReaderRaw, JpegsOfLossyDataHaveThePicturesSizeAndOneScan) {
    const auto lossy = [](bool progressive, quint16 height) {
        JpegContent content;
        content.size = {64, 48};
        content.progressive = progressive;
        return Tiff({Short(0x0100, 64),
                     Short(0x0101, height),
                     {0x0102, 3, Packed<quint16>(8, 8, 8)},
                     Short(0x0103, 34892),
                     Short(0x0106, 34892),
                     {0x010f, 2, "Test\0"_ba},
                     {0x0110, 2, "Kamera\0"_ba},
                     Short(0x0115, 3),
                     {0xc612, 1, QByteArray("\1\4\0\0", 4)}},
                    Jpeg(content));
    };
    const QString refused = Complaint("Die Datei ist beschädigt oder unvollständig.");
    EXPECT_EQ(Failure(lossy(false, 48)), QString());
    EXPECT_EQ(Failure(lossy(true, 48)), refused);
    EXPECT_EQ(Failure(lossy(false, 32)), refused);
    const QByteArray ofAMaker = lossy(true, 48).replace(0, 4, QByteArray("IIU\0", 4));
    EXPECT_EQ(Failure(ofAMaker), refused);
}

}  // namespace kadrona::imaging::test
