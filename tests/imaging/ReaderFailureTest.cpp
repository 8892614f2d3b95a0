#include <sys/resource.h>
#include <sys/stat.h>

#include <QTemporaryDir>

#include "RawFixture.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging::test {

namespace {

QByteArray NoisyJpeg(bool progressive) {
    JpegContent content;
    content.size = {200, 150};
    content.progressive = progressive;
    content.pixel = [](int x, int y, uchar* pixel) {
        for (int channel = 0; channel < 3; ++channel) {
            pixel[channel] = static_cast<uchar>(x * 37 + y * 101 + channel * 59 + x * y);
        }
    };
    return Jpeg(content);
}

}  // namespace

TEST(ReaderFailure, FilesThatEndEarlyAreRefused) {
    QList<QByteArray> files{NoisyJpeg(false), NoisyJpeg(true), Gif({1})};
    for (const char* format : {"png", "tiff", "bmp", "ico", "webp"}) {
        files.append(Written(TestPicture(40, 30), format));
    }
    for (const QByteArray& whole : files) {
        ASSERT_EQ(Failure(whole), QString());
        const bool isJpeg = whole.startsWith("\xff\xd8");
        // The last bytes of some are checksums or metadata.
        const qsizetype missing = isJpeg ? 2 : qMax(whole.size() / 10, 1);
        for (qsizetype size = 3; size < whole.size() - missing; size += 1 + size / 40) {
            const QString text = Failure(whole.first(size));
            EXPECT_TRUE(isJpeg ? text == Complaint("Die Datei ist unvollständig.")
                               : !text.isEmpty())
                << whole.first(9).toHex().toStdString() << ' ' << size << qPrintable(text);
        }
    }
    EXPECT_EQ(Failure(NoisyJpeg(false).chopped(2)), QString()) << "without its end marker";
    // Two by three pixels: a run, a move to the next row and a row of single ones.
    const auto packedBmp = [](int bits, const QByteArray& runs) {
        const QByteArray colours(4 << bits, 'c');
        const QByteArray head = Packed<quint32>(0, 0, 54 + colours.size(), 40, 2, 3) +
                                Packed<quint16>(1, bits) + Packed<quint32>(bits == 8 ? 1 : 2);
        return "BM" + head + QByteArray(20, '\0') + colours + runs;
    };
    const QByteArray runs(
        "\2\1"
        "\0\2\0\1"
        "\0\0"
        "\2\1"
        "\0\0"
        "\0\1",
        14);
    for (const int bits : {4, 8}) {
        EXPECT_EQ(Failure(packedBmp(bits, runs)), QString());
        EXPECT_EQ(Failure(packedBmp(bits, runs.chopped(4))), QString()) << "without its mark";
        for (const qsizetype missing : {5, 7, 10}) {
            EXPECT_EQ(Failure(packedBmp(bits, runs.chopped(missing))),
                      Complaint("Die Datei ist unvollständig."));
        }
        EXPECT_NE(Failure(packedBmp(bits, QByteArray("\0\1", 2))), QString());
    }
}

TEST(ReaderFailure, DamagedJpegDataIsRefused) {
    QByteArray damaged = NoisyJpeg(true);
    // No Huffman code consists of ones alone.
    for (qsizetype i = damaged.size() / 2; i < damaged.size() / 2 + 40; i += 2) {
        damaged.replace(i, 2, QByteArray("\xff\0", 2));
    }
    EXPECT_EQ(Failure(damaged), Complaint("Die Datei ist beschädigt."));
    QByteArray shortened = NoisyJpeg(false);
    shortened.remove(shortened.size() / 2, 2000);
    EXPECT_NE(Failure(shortened), QString());
    // Each scan goes over the whole picture.
    const QByteArray whole = NoisyJpeg(true);
    const qsizetype first = whole.indexOf("\xff\xda");
    const QByteArray scan = whole.sliced(first, whole.indexOf("\xff\xc4", first) - first);
    EXPECT_EQ(Failure(QByteArray(whole).insert(first, scan.repeated(80))), QString());
    const QString unsupported = Complaint("Diese Art von JPEG-Datei wird nicht unterstützt.");
    EXPECT_EQ(Failure(QByteArray(whole).insert(first, scan.repeated(110))), unsupported);
    const QByteArray segment("\xff\xe1\0\2", 4);
    EXPECT_EQ(Failure(QByteArray(whole).insert(2, segment.repeated(4900))), QString());
    EXPECT_EQ(Failure(QByteArray(whole).insert(2, segment.repeated(5100))), unsupported);
}

TEST(ReaderFailure, WhoOnlyLooksWaitsNoLongerThanHeSays) {
    QByteArray jpeg = NoisyJpeg(true);
    const qsizetype first = jpeg.indexOf("\xff\xda");
    const QByteArray scan = jpeg.sliced(first, jpeg.indexOf("\xff\xc4", first) - first);
    jpeg.insert(first, scan.repeated(80));
    const QByteArray raw = RawFile({.size = {800, 700}}, Qt::gray);  // more than is read at once
    for (const QByteArray& file : {jpeg, raw}) {
        EXPECT_THROW(Read(file, {.shrink = 8, .patienceMilliseconds = 1}), ReadTooLong);
        EXPECT_THROW(Read(file, {.maximumPixels = 1000, .patienceMilliseconds = 60'000}),
                     ReadTooLong);
        EXPECT_EQ(Failure(file, {.shrink = 8, .patienceMilliseconds = 60'000}), QString());
    }
}

TEST(ReaderFailure, TooManyPixelsAreRefusedByTheHeader) {
    ReadOptions options;
    options.maximumPixels = 2'000'000;
    const auto text = [](const char* megapixels) {
        return u"Das Bild „probe“ hat %1 Megapixel; es werden höchstens 2 Megapixel unterstützt."_s
            .arg(QLatin1StringView(megapixels));
    };
    QByteArray bmp = Written(TestPicture(40, 30), "bmp");
    bmp.replace(18, 8, Packed<qint32>(2001, 1000));
    EXPECT_EQ(Failure(bmp, options), text("3"));
    JpegContent content;
    content.size = {2000, 1001};
    EXPECT_EQ(Failure(Jpeg(content), options), text("3"));
    // Of rows at an eighth nothing as large is ever held.
    options.shrink = 8;
    options.maximumShrunkPixels = 2'002'000;
    EXPECT_EQ(Read(Jpeg(content), options).pixels.Size(), QSize(250, 126));
    content.progressive = true;
    EXPECT_EQ(Failure(Jpeg(content), options), text("3"));
    content.size = {2000, 1000};
    EXPECT_EQ(Failure(Jpeg(content), options), QString());
}

// The sizes stand in the headers alone: nothing could be decoded.
TEST(ReaderFailure, DeclaredSizesTakeNoMemory) {
    const QImage picture = TestPicture(40, 30);
    constexpr quint16 Side = 60'000;
    constexpr quint32 LongSide = Side;
    QByteArray jpeg = NoisyJpeg(false);
    jpeg.replace(jpeg.indexOf("\xff\xc0") + 5, 4, BigEndian(Side) + BigEndian(Side));
    const QByteArray png = Written(picture, "png");
    const QByteArray header = BigEndian(LongSide) + BigEndian(LongSide) + png.mid(24, 5);
    QByteArray webp = Written(picture, "webp");
    const bool isLossless = webp.indexOf("VP8L") == 12;
    ASSERT_TRUE(isLossless || webp.indexOf("VP8 ") == 12);
    webp.replace(isLossless ? 21 : 26, 4,
                 isLossless ? LittleEndian(quint32{0x0fffffff}) : Packed<quint16>(0x3fff, 0x3fff));
    const std::vector<std::pair<QByteArray, const char*>> files{
        {jpeg, "3.600 Megapixel"},
        {WithChunk(png.first(8) + QByteArray(25, '\0'), "IHDR", header).remove(8, 25) + png.mid(33),
         "3.600 Megapixel"},
        {Written(picture, "bmp").replace(18, 8, Packed<qint32>(Side, Side)), "unvollständig"},
        {Written(picture, "bmp").replace(18, 8, Packed<qint32>(2 * Side, 1)), "120.000 Pixel lang"},
        {Gif({1}).replace(6, 4, Packed<quint16>(Side, Side)), "3.600 Megapixel"},
        {RawFile({.size = {Side, Side}, .missingRows = Side - 1}, Qt::gray), "3.600 Megapixel"},
        {Tiff({Short(0x100, Side), Short(0x101, Side), Short(0x102, 8), Short(0x103, 1),
               Short(0x106, 1), Short(0x116, Side)},
              QByteArray(100, 'x')),
         "3.600 Megapixel"},
        {webp, "26"},  // its numbers end there
        // A square whose height of 18 bits stands behind three bits, lowest first.
        {"\xff\x0a" + LittleEndian(quint32{4 | (Side - 1) << 3 | 1 << 21 | 1 << 24}) +
             QByteArray(100, 'x'),
         "3.600 Megapixel"},
    };
    for (const auto& [file, said] : files) {
        EXPECT_TRUE(Failure(file).contains(QString::fromUtf8(said)))
            << file.first(12).toHex().toStdString() << qPrintable(Failure(file));
    }
}

TEST(ReaderFailure, WhatWouldTakeTooMuchMemoryIsRefusedByTheHeader) {
    const auto jpeg2000 = [](quint32 side) {  // one tile
        const QByteArray size = BigEndian(side) + BigEndian(side);
        return QByteArray("\xff\x4f\xff\x51\0\x29\0\0", 8) + size + QByteArray(8, '\0') + size +
               QByteArray(8, '\0') + BigEndian(quint16{3});
    };
    const auto losslessWebP = [](quint32 side) {
        return "RIFF" + Packed<quint32>(22) + "WEBPVP8L" + Packed<quint32>(10) + "/" +
               Packed<quint32>((side - 1) | (side - 1) << 14) + QByteArray(5, '\0');
    };
    const auto floats = [](quint32 side) {
        return Tiff({Short(0x100, quint16(side)), Short(0x101, quint16(side)), Short(0x102, 32),
                     Short(0x103, 1), Short(0x106, 1), Short(0x115, 1), Short(0x153, 3)},
                    "ends here");
    };
    const QString tooMuch = TooMuch();
    const auto gif = [](quint16 side) {
        return Gif({1}).replace(6, 4, Packed<quint16>(side, side));
    };
    EXPECT_EQ(Failure(jpeg2000(4700)), tooMuch);
    EXPECT_EQ(Failure(gif(8000)), tooMuch);
    EXPECT_EQ(Failure(losslessWebP(7900)), tooMuch);
    EXPECT_EQ(Failure(floats(3600)), tooMuch);
    const QList<TiffEntry> square{Short(0x100, 10), Short(0x101, 10), Short(0x102, 8),
                                  Short(0x103, 1),  Short(0x106, 1),  Short(0x115, 1)};
    const TiffEntry profile{0x8773, 7, QByteArray(125'000'000, ' ')};
    EXPECT_EQ(Failure(Tiff(square, QByteArray(100, 'x'))), QString());
    EXPECT_EQ(Failure(Tiff(square + QList{profile}, QByteArray(100, 'x'))), tooMuch);
    QList<TiffEntry> deep = square;
    deep[2] = Short(0x102, 16);
    EXPECT_EQ(Failure(Tiff(deep, QByteArray(200, 'x'))), QString());
    EXPECT_EQ(Failure(Tiff(deep + QList{profile}, QByteArray(200, 'x'))), tooMuch);
    const auto sameStrip = [](qsizetype times) {
        const qsizetype bytes = 1'000'000;
        return Tiff({Short(0x100, 10), Short(0x101, quint16(times)), Short(0x102, 8),
                     Short(0x103, 1), Short(0x106, 1), Short(0x115, 1), Short(0x116, 1),
                     TiffEntry{0x111, 4, LittleEndian(quint32{8}).repeated(times)},
                     TiffEntry{0x117, 4, LittleEndian(quint32(bytes)).repeated(times)}}) +
               QByteArray(bytes, ' ');
    };
    EXPECT_EQ(Failure(sameStrip(500)), QString());
    EXPECT_EQ(Failure(sameStrip(510)), Complaint("Die Datei ist beschädigt."));
    const QByteArray segment = "\xff\xed\xff\xff" + QByteArray(0xfffd, ' ');
    EXPECT_EQ(Failure(Written(TestPicture(40, 30), "jpg").insert(2, segment.repeated(1000))),
              tooMuch);
    for (const QByteArray& smaller :
         {jpeg2000(4300), gif(7000), losslessWebP(7600), floats(3300)}) {
        EXPECT_NE(Failure(smaller), tooMuch);
    }
}

// A megapixel of 65,536 blocks, each with codes of its own.
TEST(ReaderFailure, WhatTheHeaderDoesNotTellIsBoundedWhileItIsDecoded) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer takes any address space";
#endif
    constexpr int Blocks = 65'536;
    const QByteArray oneSymbol = "1000";
    const QByteArray allOfEightBits = "00001" + QByteArray(33, '0') + "100" + "111001111111";
    QByteArray bits = "11110100" + QByteArray("11111111110000").repeated(2) + "0000" + "001000" +
                      "0" + allOfEightBits.repeated(2) + oneSymbol.repeated(3);
    for (int block = 0; block < Blocks; ++block) {
        bits += QByteArray::number(Blocks + block, 2).last(16);
    }
    bits += oneSymbol.repeated(5).repeated(Blocks) + QByteArray(64, '0');
    QByteArray packed(bits.size() / 8, '\0');
    for (qsizetype bit = 0; bit < packed.size() * 8; ++bit) {
        packed[bit / 8] = char(packed[bit / 8] | (bits[bit] - '0') << bit % 8);
    }
    const QByteArray chunk = "WEBPVP8L" + LittleEndian(quint32(packed.size())) + packed;
    EXPECT_EQ(Failure("RIFF" + LittleEndian(quint32(chunk.size())) + chunk + '\0'),
              Complaint("Der Arbeitsspeicher reicht nicht aus."));
}

// What the libraries would crash at, or calculate for hours.
TEST(ReaderFailure, PicturesOfMorePartsThanTheySayAreRefused) {
    const QByteArray side = BigEndian(quint32{1000});
    const auto jpeg2000 = [&](const char* style) {
        return QByteArray("\xff\x4f\xff\x51\0\x29\0\0", 8) + side + side + QByteArray(8, '\0') +
               side + side + QByteArray(8, '\0') + BigEndian(quint16{1}) + "\7\1\1" +
               QByteArray::fromHex(style) + "\xff\xd9";
    };
    const QString tooMuch = TooMuch();
    EXPECT_EQ(Failure(jpeg2000("ff52000d0100000100000404000100")), tooMuch);
    EXPECT_NE(Failure(jpeg2000("ff52000d01000001000004040001ff")), tooMuch);
    EXPECT_NE(Failure(jpeg2000("ff52000c0000000100000f0f0001")), QString()) << "2^34 samples";
    EXPECT_EQ(Failure(jpeg2000("ff52000d0102ffff00000404000155")), tooMuch) << "layers";
    EXPECT_NE(Failure(jpeg2000("ff52000d01020fff00000404000155")), tooMuch);
    // 1000 by 1000 pixels of a palette far behind in the header.
    const auto palette = [&](char channels) {
        const QByteArray colours = QByteArray("\0\1", 2) + channels + QByteArray(200, '\7');
        return Box("jP  ", "\r\n\x87\n") +
               Box("jp2h", Box("xml ", "pclr" + QByteArray(70'000, ' ')) + Box("pclr", colours)) +
               Box("jp2c", jpeg2000("ff52000d0100000100000404000155"));
    };
    const QString unsupported = Complaint("Diese Art von JPEG-2000-Datei wird nicht unterstützt.");
    EXPECT_EQ(Failure(palette(5)), unsupported);
    EXPECT_NE(Failure(palette(4)), unsupported);
    const QByteArray corner = BigEndian(quint32{0xfffffffe}).repeated(2);
    const QByteArray tile = BigEndian(quint32{1}).repeated(2) + QByteArray(8, '\0');
    EXPECT_EQ(Failure(QByteArray("\xff\x4f\xff\x51\0\x29\0\0", 8) + QByteArray(8, '\xff') + corner +
                      tile + BigEndian(quint16{1}) + QByteArray(20, '\0')),
              tooMuch)
        << "tiles whose number no number holds";
    const QByteArray chunks = QByteArray("JUNK\0\0\0\0", 8).repeated(200'000);
    EXPECT_EQ(Failure("RIFF" + LittleEndian(quint32(chunks.size() + 4)) + "WEBP" + chunks),
              tooMuch);
}

TEST(ReaderFailure, MuchBesideASmallPictureIsRefused) {
    const QByteArray much(101'000'000, '\0');
    const QByteArray png = Written(TestPicture(40, 30), "png");
    const QByteArray icon =
        Packed<quint16>(0, 1, 1, 0x2020, 0, 1, 32) + Packed<quint32>(0xffffffff, 22) + png;
    EXPECT_EQ(Failure(icon), QString());
    for (const auto& [file, most] : {std::pair{Gif({1}), "40"}, {png, "100"}, {icon, "40"}}) {
        EXPECT_EQ(
            Failure(file + much),
            Complaint(QByteArray("Sie ist zu groß; es werden höchstens ") + most + " MB gelesen."));
    }
    const QString damaged = Complaint("Die Datei ist beschädigt.");
    const QByteArray jpeg = NoisyJpeg(true);
    const qsizetype secondScan = jpeg.indexOf("\xff\xda", jpeg.indexOf("\xff\xda") + 2);
    for (const qsizetype place : {jpeg.indexOf("\xff\xdb"), secondScan}) {
        EXPECT_EQ(Failure(QByteArray(jpeg).insert(place, much)), damaged);
        EXPECT_EQ(Failure(QByteArray(jpeg).insert(place, QByteArray(much.size(), '\xff'))),
                  damaged);
        EXPECT_EQ(Failure(QByteArray(jpeg).insert(place, QByteArray(90'000'000, '\xff'))),
                  QString());
    }
    const auto webp = [](qint64 profile) {
        const QByteArray chunks = "WEBPVP8X" + Packed<quint32>(10, 0x20) +
                                  QByteArray::fromHex("2700001d0000") + "ICCP" +
                                  Packed<quint32>(profile) + QByteArray(profile, ' ') +
                                  Written(TestPicture(40, 30), "webp").mid(12);
        return "RIFF" + Packed<quint32>(chunks.size()) + chunks;
    };
    EXPECT_EQ(Failure(webp(16'000'000)), QString());
    EXPECT_EQ(Failure(webp(17'000'000)), TooMuch());
}

TEST(ReaderFailure, WhatIsNoPictureIsNamed) {
    EXPECT_EQ(Failure({}), Complaint("Die Datei ist leer."));
    const QString unknown = Complaint("Das Format der Datei ist nicht bekannt.");
    for (const QByteArray& content :
         {"Das ist ein Brief und kein Bild.\n"_ba, QByteArray(100'000, '\0'), "%PDF-1.4\n"_ba,
          "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>"_ba,
          // What plug-ins and other programs would take: TGA, MNG, EPS, PPM, XPM, a cursor.
          QByteArray("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0\x18\0\1\2\3", 21), "\x8aMNG\r\n\x1a\n"_ba,
          "%!PS-Adobe-3.0 EPSF-3.0\n"_ba, "P6 1 1 255\nabc"_ba,
          "/* XPM */\nstatic char* a[] = {\"1 1 1 1\", \"a c red\", \"a\"};"_ba,
          QByteArray("\0\0\2\0\1\0", 6)}) {
        EXPECT_EQ(Failure(content), unknown) << content.first(9).toStdString();
    }
}

TEST(ReaderFailure, PackedTextsOfPngAreNotUnpacked) {
    constexpr int Texts = 60;
    constexpr long MostKibibytes = 100'000;
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    QByteArray png = Written(TestPicture(40, 30), "png");
    const QByteArray text = QByteArray("a\0\0", 3) + qCompress(QByteArray(7'900'000, ' ')).mid(4);
    for (int i = 0; i < Texts; ++i) {
        png = WithChunk(png, "zTXt", text);
    }
    const long before = peak();
    EXPECT_EQ(Failure(png), QString());
    EXPECT_LT(peak() - before, MostKibibytes);
}

TEST(ReaderFailure, FilesThatCannotBeOpened) {
    const QTemporaryDir folder;
    const QString longName(300, u'x');
    const QString pipe = folder.filePath(u"pipe.jpg"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const auto& [file, reason] :
         {std::pair(folder.filePath(u"weg.jpg"_s), u"Die Datei ist nicht vorhanden"_s),
          {folder.path(), u"Es ist ein Ordner"_s},
          {folder.filePath(longName), u"Der Name ist zu lang"_s},
          {pipe, u"Es ist keine gewöhnliche Datei"_s},
          {u"/dev/zero"_s, u"Es ist keine gewöhnliche Datei"_s}}) {
        const QString path = file;
        EXPECT_EQ(testing::TextOf<ReadError>([&] { ReadImageFile(path); }),
                  u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(
                      QFileInfo(path).fileName(), reason));
    }
}

}  // namespace kadrona::imaging::test
