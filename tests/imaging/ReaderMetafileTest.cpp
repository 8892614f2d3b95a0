#include "ReaderFixture.h"

namespace kadrona::imaging::test {

namespace {

// A picture of 64 by 48 pixels on a screen of 100 dots per inch.
constexpr int Width = 64;
constexpr int Height = 48;

QByteArray Padded(const QByteArray& bytes, qsizetype unit) {
    return bytes.leftJustified((bytes.size() + unit - 1) / unit * unit, '\0');
}

QByteArray EmfRecord(quint32 type, const QByteArray& content = {}) {
    const QByteArray padded = Padded(content, 4);
    return Packed<quint32>(type, padded.size() + 8) + padded;
}

QByteArray Emf(const QByteArray& records) {
    constexpr int HeaderSize = 88;
    const QByteArray body = records + EmfRecord(14, Packed<quint32>(0, 16, 20));
    const QByteArray header = Packed<qint32>(0, 0, Width - 1, Height - 1) +
                              Packed<qint32>(0, 0, Width * 2540 / 100, Height * 2540 / 100) +
                              " EMF" + Packed<quint32>(0x10000, HeaderSize + body.size(), 3) +
                              Packed<quint16>(8, 0) + Packed<quint32>(0, 0, 0) +
                              Packed<qint32>(1000, 1000, 254, 254);
    return Packed<quint32>(1, HeaderSize) + header + body;
}

QByteArray Bounds() {
    return Packed<qint32>(0, 0, Width - 1, Height - 1);
}

QByteArray BitmapInformation(int width, int height) {
    return Packed<qint32>(40, width, height) + Packed<quint16>(1, 24) + QByteArray(24, '\0');
}

/// Of 1 by 2 pixels, bottom up, 24 bits: red over blue.
const QByteArray TwoColours("\xff\0\0\0\0\0\xff\0", 8);

QByteArray StretchDibits(QRect target, const QByteArray& bits, QSize size = {1, 2}) {
    constexpr qint32 InformationOffset = 80;
    const QByteArray information = BitmapInformation(size.width(), size.height());
    return EmfRecord(
        81,
        Bounds() + Packed<qint32>(target.x(), target.y(), 0, 0, size.width(), size.height()) +
            Packed<quint32>(InformationOffset, information.size(),
                            InformationOffset + information.size(), bits.size(), 0, 0x00cc0020) +
            Packed<qint32>(target.width(), target.height()) + information + bits);
}

/// A brush of 0x00bbggrr, selected as object `handle`.
QByteArray EmfBrush(quint32 handle, quint32 colour) {
    constexpr quint32 NullPen = 0x80000008;
    return EmfRecord(39, Packed<quint32>(handle, 0, colour, 0)) +
           EmfRecord(37, Packed<quint32>(handle)) + EmfRecord(37, Packed<quint32>(NullPen));
}

QByteArray EmfRectangle(int left, int top, int right, int bottom) {
    return EmfRecord(43, Packed<qint32>(left, top, right, bottom));
}

QByteArray WmfRecord(quint16 function, const QByteArray& parameters = {}) {
    const QByteArray padded = Padded(parameters, 2);
    return Packed<quint32>(3 + padded.size() / 2) + Packed<quint16>(function) + padded;
}

/// 640 by 480 units at 960 to the inch: 64 by 48 pixels at 96 dots per inch.
QByteArray Wmf(const QByteArray& records, bool placeable = true) {
    const QByteArray window =
        WmfRecord(0x020b, Packed<qint16>(0, 0)) + WmfRecord(0x020c, Packed<qint16>(480, 640));
    const QByteArray body = window + records + WmfRecord(0);
    QByteArray file;
    if (placeable) {
        file = Packed<quint32>(0x9ac6cdd7) + Packed<qint16>(0, 0, 0, 640, 480, 960, 0, 0, 0);
    }
    return file + Packed<quint16>(1, 9, 0x300) + Packed<quint32>(9 + body.size() / 2) +
           Packed<quint16>(4) + Packed<quint32>(100) + Packed<quint16>(0) + body;
}

QByteArray WmfBrushAndNoPen(quint32 colour) {
    return WmfRecord(0x02fc, Packed<quint16>(0) + Packed<quint32>(colour) + Packed<quint16>(0)) +
           WmfRecord(0x02fa, Packed<quint16>(5, 0, 0) + Packed<quint32>(0)) +
           WmfRecord(0x012d, Packed<quint16>(0)) + WmfRecord(0x012d, Packed<quint16>(1));
}

}  // namespace

TEST(ReaderMetafile, AnEmfHasTheSizeOfItsFrameAndSkipsWhatHasNoEffect) {
    const LoadedImage loaded =
        Read(Emf(EmfRecord(70, "a comment") + StretchDibits({8, 8, 16, 32}, TwoColours)));
    EXPECT_EQ(loaded.pixels.Size(), QSize(Width, Height));
    EXPECT_EQ(loaded.resolution.value, 100);
    ExpectColours(
        loaded, {{4, 4, "#ffffff"}, {12, 10, "#ff0000"}, {12, 38, "#0000ff"}, {40, 20, "#ffffff"}});
    // A negative height mirrors.
    const LoadedImage mirrored = Read(Emf(StretchDibits({8, 40, 16, -32}, TwoColours)));
    ExpectColours(mirrored, {{12, 10, "#0000ff"}, {12, 38, "#ff0000"}});
}

TEST(ReaderMetafile, ALargeBitmapKeepsItsPixels) {
    constexpr QSize BitmapSize(500, 500);
    const QByteArray bits(qsizetype{500} * 500 * 3, '\x40');
    const auto emf = [&](int width, int height) {
        return Emf(StretchDibits({0, 0, width, height}, bits, BitmapSize));
    };
    ReadOptions options;
    options.maximumPixels = 300'000;
    const LoadedImage loaded = Read(emf(Width, Height), options);
    EXPECT_NEAR(loaded.pixels.Width() * loaded.pixels.Height(), 500 * 500, 1000);
    EXPECT_EQ(loaded.resolution.value, (loaded.pixels.Width() * 100 + Width / 2) / Width);
    // On a quarter of the picture it would take a million: as many as are allowed.
    const LoadedImage limited = Read(emf(Width / 2, Height / 2), options);
    EXPECT_NEAR(limited.pixels.Width() * limited.pixels.Height(), 299'000, 1000);
    EXPECT_EQ(Colour(limited, 9, 9), "#404040");
    options.maximumPixels = 200'000;
    EXPECT_EQ(Failure(emf(Width, Height), options), Complaint("Die Zeichnung ist zu umfangreich."));
}

TEST(ReaderMetafile, EmfPolygonsMappingStateAndClipping) {
    // Of 32 and of 16 bits.
    const QByteArray wide =
        EmfRecord(3, Bounds() + Packed<quint32>(3) + Packed<qint32>(0, 0, 20, 0, 0, 20));
    const QByteArray narrow =
        EmfRecord(86, Bounds() + Packed<quint32>(3) + Packed<qint16>(60, 40, 60, 20, 40, 40));
    ExpectColours(
        Read(Emf(EmfBrush(1, 0x000000ff) + wide + EmfBrush(2, 0x0000ff00) + narrow)),
        {{3, 3, "#ff0000"}, {17, 17, "#ffffff"}, {57, 37, "#00ff00"}, {43, 23, "#ffffff"}});

    const QByteArray page =
        EmfRecord(17, Packed<qint32>(8)) + EmfRecord(9, Packed<qint32>(640, -480)) +
        EmfRecord(10, Packed<qint32>(0, 480)) + EmfRecord(11, Packed<qint32>(Width, Height));
    // y upwards, ten units a pixel.
    ExpectColours(Read(Emf(page + EmfBrush(1, 0xff) + EmfRectangle(0, 480, 100, 400))),
                  {{4, 4, "#ff0000"}, {12, 4, "#ffffff"}, {4, 12, "#ffffff"}});

    // The clipping ends with RestoreDC.
    const QByteArray clipped =
        Emf(EmfBrush(1, 0xff) + EmfRecord(33) + EmfRecord(30, Packed<qint32>(0, 0, 10, 10)) +
            EmfRectangle(0, 0, 20, 20) + EmfRecord(34, Packed<qint32>(-1)) +
            EmfRectangle(30, 30, 40, 40));
    ExpectColours(Read(clipped), {{5, 5, "#ff0000"}, {15, 15, "#ffffff"}, {35, 35, "#ff0000"}});
}

TEST(ReaderMetafile, WhatIsNotDrawnIsRefusedByName) {
    const auto complaint = [](const char* name) {
        return Complaint(
            ("Der Zeichenbefehl „" + std::string(name) + "“ wird nicht unterstützt.").c_str());
    };
    const QByteArray drawn = EmfBrush(1, 0xff) + EmfRectangle(0, 0, 20, 20);
    const auto emf = [&](const QByteArray& record) { return Failure(Emf(drawn + record)); };
    EXPECT_EQ(emf(EmfRecord(84, Bounds())), complaint("EXTTEXTOUTW"));
    EXPECT_EQ(emf(EmfRecord(59)), complaint("BEGINPATH"));
    EXPECT_EQ(emf(EmfRecord(20, Packed<quint32>(7))), complaint("SETROP2"));
    EXPECT_EQ(emf(EmfRecord(20, Packed<quint32>(13))), QString());
    EXPECT_EQ(emf(EmfRecord(75, Packed<quint32>(0, 1))), complaint("EXTSELECTCLIPRGN"));
    EXPECT_EQ(emf(EmfRecord(9999)), complaint("0x270f"));
    EXPECT_EQ(emf(StretchDibits({0, 0, 9, 9}, TwoColours).replace(68, 4, "\xc6\0\x88\0", 4)),
              complaint("TERNARYRASTEROPERATION"));
    const auto wmf = [](quint16 function) {
        return Failure(Wmf(WmfRecord(0x041b, Packed<qint16>(9, 9, 1, 1)) +
                           WmfRecord(function, Packed<quint16>(1, 1, 1, 1))));
    };
    EXPECT_EQ(wmf(0x0a32), complaint("EXTTEXTOUT"));
    EXPECT_EQ(wmf(0x7777), complaint("0x7777"));
    EXPECT_EQ(wmf(0x0626), QString()) << "an escape";
}

TEST(ReaderMetafile, WmfKeepsStatesAndPlaces) {
    const auto rectangle = [](int left) {
        return WmfRecord(0x041b, Packed<qint16>(100, left + 80, 0, left));
    };
    // The clipping and the brush end with RestoreDC.
    const LoadedImage restored =
        Read(Wmf(WmfBrushAndNoPen(0x0000ff) + WmfRecord(0x001e) +
                 WmfRecord(0x0416, Packed<qint16>(480, 100, 0, 0)) + rectangle(200) +
                 WmfRecord(0x0127, Packed<qint16>(-1)) + rectangle(300)));
    ExpectColours(restored, {{24, 4, "#ffffff"}, {34, 4, "#ff0000"}});
    // The place of a deleted brush is the next one's: the second brush is object 0 again.
    const LoadedImage reused = Read(
        Wmf(WmfBrushAndNoPen(0x0000ff) + WmfRecord(0x01f0, Packed<quint16>(0)) +
            WmfRecord(0x02fc, Packed<quint16>(0) + Packed<quint32>(0x00ff00) + Packed<quint16>(0)) +
            WmfRecord(0x012d, Packed<quint16>(0)) + rectangle(0)));
    ExpectColours(reused, {{4, 4, "#00ff00"}});
}

TEST(ReaderMetafile, WmfPolygonAndBitmap) {
    const QByteArray polygon = WmfRecord(0x0324, Packed<qint16>(3, 0, 0, 200, 0, 0, 200));
    const QByteArray bitmap = WmfRecord(
        0x0f43, Packed<quint32>(0x00cc0020) + Packed<qint16>(0, 2, 1, 0, 0, 200, 100, 100, 400) +
                    BitmapInformation(1, 2) + TwoColours);
    for (const bool placeable : {true, false}) {
        const LoadedImage loaded =
            Read(Wmf(WmfBrushAndNoPen(0x00ff00) + polygon + bitmap, placeable));
        const int scale = loaded.pixels.Width() / Width;
        EXPECT_EQ(loaded.pixels.Size(), QSize(Width, Height) * (placeable ? 1 : 16));
        EXPECT_EQ(loaded.resolution.value, placeable ? 96 : 0);
        ExpectColours(loaded, {{3 * scale, 3 * scale, "#00ff00"},
                               {30 * scale, 3 * scale, "#ffffff"},
                               {45 * scale, 12 * scale, "#ff0000"},
                               {45 * scale, 28 * scale, "#0000ff"}});
    }
}

TEST(ReaderMetafile, DamagedFilesAndEndlessWorkAreRefused) {
    const QByteArray emf = Emf(StretchDibits({8, 8, 16, 32}, TwoColours));
    for (qsizetype size = 44; size < emf.size() - 12; size += 4) {
        EXPECT_NE(Failure(emf.first(size)), QString()) << size;
    }
    const QByteArray wmf = Wmf(WmfRecord(0x041b, Packed<qint16>(9, 9, 1, 1)));
    for (qsizetype size = 18; size < wmf.size() - 2; size += 2) {
        EXPECT_NE(Failure(wmf.first(size)), QString()) << size;
    }

    const QString damaged = Complaint("Die Datei ist beschädigt.");
    EXPECT_EQ(Failure(Emf(StretchDibits({8, 8, 16, 32}, TwoColours.first(4)))), damaged);
    EXPECT_EQ(Failure(Emf(Packed<quint32>(70, 4))), damaged);
    EXPECT_EQ(Failure(Emf(Packed<quint32>(70, 0xfffffffc))),
              Complaint("Die Datei ist unvollständig."));
    QByteArray turnedAround = emf;
    turnedAround.replace(8, 32, Packed<qint32>(9, 9, -9, -9, 9, 9, -9, -9));
    EXPECT_EQ(Failure(turnedAround), damaged);
    EXPECT_EQ(Failure(Emf(EmfRecord(3, Bounds() + Packed<quint32>(0xffffffff)))), damaged);
    EXPECT_EQ(Failure(Emf({})), Complaint("Die Datei enthält nichts, was sich darstellen lässt."));
    const QString tooMuch = Complaint("Die Zeichnung ist zu umfangreich.");
    const QByteArray fill = EmfRectangle(0, 0, 64, 48);
    EXPECT_EQ(Failure(Emf(EmfBrush(1, 0xff) + fill.repeated(200'000))), tooMuch);
    const QByteArray clip = EmfRecord(30, Packed<qint32>(0, 0, 64, 48));
    const QByteArray points =
        EmfRecord(87, Bounds() + Packed<quint32>(300'000) + QByteArray(1'200'000, '\0'));
    for (const QByteArray& records : {clip.repeated(600), EmfRecord(33).repeated(600), points}) {
        EXPECT_EQ(Failure(Emf(records + fill)), tooMuch) << records.first(8).toHex().toStdString();
    }
    EXPECT_EQ(Failure(Emf(EmfBrush(0x10000, 0xff) + fill)), damaged);
}

}  // namespace kadrona::imaging::test
