// HEIF files that ask their library for more than their picture needs.
#include "ReaderFixture.h"

namespace kadrona::imaging::test {

namespace {

const QByteArray None(4, '\0');  // version and flags
const QByteArray One = BigEndian(quint16{1});

QByteArray Named(quint16 item, const QByteArray& type) {
    return Box("iinf", None + One +
                           Box("infe", BigEndian(quint32{2 << 24}) + BigEndian(item) +
                                           BigEndian(quint16{0}) + type + '\0'));
}

/// Each part the file's first bytes.
QByteArray Located(quint16 item, quint16 parts, quint32 bytes) {
    return Box("iloc", None + QByteArray("\x44\0\0\1", 4) + BigEndian(item) + None.first(2) +
                           BigEndian(parts) + (None + BigEndian(bytes)).repeated(parts));
}

/// The bytes of the item, in the box "idat".
QByteArray Inside(const QByteArray& bytes) {
    return Box("idat", bytes) +
           Box("iloc", "\1" + None.first(3) + QByteArray("\x44\0\0\1\0\1\0\1\0\0\0\1", 12) + None +
                           BigEndian(quint32(bytes.size())));
}

struct Item {
    const char* type = "iden";
    /// In the box "av1C".
    QByteArray coded = {};
    /// That it is made of.
    quint16 part = 2;
    /// Its size, the box above, one that turns, and "hvcC".
    QByteArray properties = "\2\1\2";
    QByteArray moreBoxes = {};
};

/// Of one item of 10 by 10 pixels.
QByteArray Heif(const Item& item) {
    const QByteArray size = BigEndian(quint32{10}).repeated(2);
    const QByteArray said =
        Box("ipco", Box("ispe", None + size) + Box("av1C", None + item.coded) + Box("irot", "\1") +
                        Box("hvcC", QByteArray(21, '\0') + QByteArray("\3", 2))) +
        Box("ipma", None + BigEndian(quint32{1}) + One + item.properties);
    return Box("ftyp", "heic" + None + "mif1") +
           Box("meta", None + Box("hdlr", None + None + "pict" + QByteArray(13, '\0')) +
                           Box("pitm", None + One) + Named(1, item.type) +
                           Box("iref", None + Box("dimg", One + One + BigEndian(item.part))) +
                           Box("iprp", said) + item.moreBoxes);
}

QString Refused() {
    return Complaint("Diese Art von HEIF-Datei wird nicht unterstützt.");
}

}  // namespace

// What the library would crash at.
TEST(ReaderHeif, PicturesMadeOfThemselvesOrTurnedOftenAreRefused) {
    EXPECT_EQ(Failure(Heif({.part = 1})), Refused());
    EXPECT_EQ(Failure(Heif({.properties = "\7\3\3\3\3\3\3\3"})), Refused());
    EXPECT_NE(Failure(Heif({.properties = "\6\3\3\3\3\3\3"})), Refused());
}

TEST(ReaderHeif, CodedPicturesLargerThanTheyAreSaidToBeAreRefused) {
    // 65536 by 65536 pixels.
    const QByteArray sequence("\x0a\x0a\x18\x3f\xff\xff\xff\xff\xff\0\0\0", 12);
    EXPECT_EQ(Failure(Heif({.type = "av01", .coded = sequence})), Refused());
    EXPECT_EQ(Failure(Heif({.type = "av01", .properties = "\3\1\4\2"})), Refused())
        << "two configurations";
    EXPECT_NE(Failure(Heif({.type = "av01"})), Refused());
    // A sequence of 10 by 10 pixels, and a frame that says its own size.
    const auto frame = [](const char* header) {
        return Heif({.type = "av01",
                     .coded = QByteArray::fromHex("0a0c000000fbfc002400240001081a0a14") +
                              QByteArray::fromHex(header)});
    };
    EXPECT_EQ(Failure(frame("5dbc5dbc82c80000")), Refused()) << "6000 by 6000";
    EXPECT_EQ(Failure(frame("5dbc5dbc82c80000").replace("\x1a\x0a", "\x3a\x0a")), Refused())
        << "a redundant header without another";
    EXPECT_NE(Failure(frame("3e7c3e7c85900000")), Refused()) << "4000 by 4000";
    // Of 6100 by 6100 pixels with all chroma, 10 bits and 8.
    const auto fine = [](const char* bits) {
        const QByteArray coded =
            QByteArray::fromHex("0a0c200000fbfc5f4c5f4c00") + QByteArray::fromHex(bits);
        return Heif({.type = "av01", .coded = coded, .moreBoxes = Located(1, 1, 4)})
            .replace(BigEndian(quint32{10}).repeated(2), BigEndian(quint32{6100}).repeated(2));
    };
    EXPECT_EQ(Failure(fine("0a40")), TooMuch());
    EXPECT_NE(Failure(fine("0240")), TooMuch());
}

TEST(ReaderHeif, CanvasesLargerThanThePictureAreRefused) {
    const auto canvas = [](const char* type, int unused, quint16 side) {
        const QByteArray laidOut = QByteArray(unused, '\0') + BigEndian(side) + BigEndian(side);
        return Heif({.type = type, .moreBoxes = Inside(laidOut)});
    };
    for (const auto& [type, unused] : {std::pair("iovl", 10), {"grid", 4}}) {
        EXPECT_EQ(Failure(canvas(type, unused, 5000)), Refused()) << type;
        EXPECT_NE(Failure(canvas(type, unused, 4000)), Refused()) << type;
    }
}

TEST(ReaderHeif, MuchBesideThePictureIsRefused) {
    const quint32 wholeFile = 1 << 24;
    EXPECT_NE(Failure(Heif({.moreBoxes = Located(3, 2, wholeFile)})), Refused());
    EXPECT_EQ(Failure(Heif({.moreBoxes = Located(3, 3, wholeFile)})), Refused());
    EXPECT_NE(Failure(Heif({.moreBoxes = Box("free", {}).repeated(99'000)})), Refused());
    EXPECT_EQ(Failure(Heif({.moreBoxes = Box("free", {}).repeated(100'000)})), Refused());
    const auto units = [](quint16 count) {  // of no bytes, twice
        const QByteArray array = '\1' + BigEndian(count) + QByteArray(2, '\0').repeated(count);
        return Box("hvcC", QByteArray(22, '\0') + '\2' + array + array);
    };
    EXPECT_NE(Failure(Heif({.moreBoxes = units(49'000)})), Refused());
    EXPECT_EQ(Failure(Heif({.moreBoxes = units(50'000)})), Refused());
    const auto coded = [](qsizetype units) {
        return Heif({.type = "hvc1",
                     .properties = "\2\1\4",
                     .moreBoxes = Inside(QByteArray(4 * units, '\0'))});
    };
    EXPECT_NE(Failure(coded(99'000)), Refused());
    EXPECT_EQ(Failure(coded(101'000)), Refused());
    const QByteArray text("mime\0a\0", 7);
    EXPECT_NE(Failure(Heif({.moreBoxes = Named(3, text)})), Refused());
    EXPECT_EQ(Failure(Heif({.moreBoxes = Named(3, text + "deflate")})), Refused()) << "packed";
}

}  // namespace kadrona::imaging::test
