#include "WriterFixture.h"
#include "imaging/metadata/Iptc.h"
#include "imaging/metadata/IptcFile.h"
#include "imaging/reading/ImageReader.h"
#include "platform/AtomicFile.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;
using kadrona::testing::TextOf;

namespace kadrona::imaging {

namespace {

const QByteArray Signature("Photoshop 3.0\0", 14);
const QByteArray MarkedUtf8("\x1c\x01\x5a\0\x03\x1b%G", 8);

IptcItems Tags(const QString& objectName, const QString& keywords) {
    IptcItems items;
    items.AddText(2, 5, objectName);
    items.AddText(2, 25, keywords);
    return items;
}

QByteArray Segment(char marker, const QByteArray& content) {
    const qsizetype length = content.size() + 2;
    return QByteArray("\xff") + marker + char(length >> 8) + char(length & 0xff) + content;
}

/// A resource of a Photoshop block, without a name.
QByteArray Resource(int number, const QByteArray& content) {
    return "8BIM" + QByteArray(1, char(number >> 8)) + char(number & 0xff) + QByteArray(4, '\0') +
           char(content.size() >> 8) + char(content.size() & 0xff) + content +
           QByteArray(content.size() % 2, '\0');
}

/// `segments` in front of the others of a small JPEG file.
QByteArray JpegWith(const QByteArray& segments) {
    return QByteArray(EncodeJpeg(Pixels(TestPicture(20, 30)), {300})).insert(2, segments);
}

/// From the first scan on.
QByteArray Scan(const QByteArray& jpeg) {
    return jpeg.sliced(jpeg.indexOf("\xff\xda"));
}

}  // namespace

TEST(Iptc, StreamKeepsEveryItem) {
    IptcItems items({{2, 0, QByteArray("\0\4", 2)},
                     {2, 5, "Jürgen \U0001F4F7"},
                     {2, 25, "eins"},
                     {2, 25, QByteArray(100'000, 'x')},
                     {2, 202, QByteArray("\xff\xd8\0\xfc", 4)}});
    const QByteArray stream = EncodeIptc(items);
    EXPECT_TRUE(stream.startsWith(MarkedUtf8));
    const IptcItems read = DecodeIptc(stream);
    ASSERT_EQ(read.Items().size(), 6U);
    EXPECT_EQ(read.Items()[0], (IptcItem{1, 90, "\x1b%G"}));
    EXPECT_TRUE(std::equal(items.Items().begin(), items.Items().end(), read.Items().begin() + 1));
    EXPECT_EQ(read.IndexOf(2, 25), 3) << "the first of two";
    EXPECT_EQ(read.IndexOf(2, 80), -1);
    EXPECT_EQ(EncodeIptc(read), stream) << "the mark stands there once";
    EXPECT_EQ(EncodeIptc({}), QByteArray());
}

TEST(Iptc, TextsBecomeUtf8) {
    const QByteArray stream("\x1c\x02\x05\0\x06M\xfcl\0\xc3\x9f\x1c\x02\x19\0\x02\xc3\x9f", 18);
    const IptcItems items = DecodeIptc(stream);
    EXPECT_EQ(items.Text(0), u"Mülß"_s) << "Windows-1252 beside UTF-8, and no NUL";
    EXPECT_EQ(items.Text(1), u"ß"_s);
    EXPECT_EQ(Tags(u"a\0b"_s, {}).Text(0), u"ab"_s);
}

TEST(Iptc, ReadsDamagedStreamsAsFarAsTheyGo) {
    const QByteArray stream = EncodeIptc(Tags(u"Anna"_s, QString(40'000, u'x')));
    for (qsizetype size = 0; size < 60; ++size) {
        const size_t expected = size < 8 ? 0 : size < 17 ? 1 : 2;
        EXPECT_EQ(DecodeIptc(stream.first(size)).Items().size(), expected) << size;
    }
    EXPECT_EQ(DecodeIptc(QByteArray("\x1c\x02\x05\x80\x08\0\0\0\0\0\0\0\1x", 14)).Items().size(),
              0U)
        << "a length of eight bytes";
    EXPECT_EQ(DecodeIptc(QByteArray("\x1c\x02\x05\x80\x04\xff\xff\xff\xff", 9)).Items().size(), 0U);
    EXPECT_EQ(DecodeIptc(QByteArray("\x1c\x02\x19\0\0", 5).repeated(200'000)).Items().size(),
              100'000U)
        << "each takes memory";
}

class IptcFileTest : public WriterTest {
 protected:
    /// What exiftool tells of some items, a line each.
    QString ByExiftool(const QString& items) const {
        return RunProgram(u"exiftool"_s, u"-s3 "_s.append(items).split(u' ') + QStringList{path_})
            .output;
    }

    const QString names_ = u"-IPTC:ObjectName -IPTC:Keywords"_s;
    const QString path_ = PathOf(u"a.jpg"_s);
};

TEST_F(IptcFileTest, ASavedPhotoCarriesItsItems) {
    const IptcItems items = Tags(u"Jürgen Groß"_s, u"Jürgen Groß,Köln €,"_s);
    WriteImageFile(path_, Pixels(TestPicture(20, 30)), {300}, {"abc", items});
    IptcItems read = ReadImageFile(path_).iptc;
    EXPECT_EQ(EncodeIptc(read), EncodeIptc(items));
    EXPECT_TRUE(read.Own().IsEmpty()) << "what a file brought is not what this program set";
    read.SetText(1, u"neu"_s);
    EXPECT_EQ(read.Own().Items().size(), 1U);
}

TEST_F(IptcFileTest, RewritingLeavesEverythingElse) {
    const QByteArray exif = Segment('\xe1', "Exif\0\0 as it was");
    const QByteArray foreign = Segment('\xed', "Adobe_CM of another kind");
    const QByteArray before = Resource(0x03ed, "resolution");
    const QByteArray after = Resource(0x0425, "odd");
    const QByteArray old = Resource(0x0404, EncodeIptc(Tags(u"alt"_s, u"alt,alt"_s)));
    const QByteArray comment = Segment('\xfe', "Kommentar");
    const IptcItems items = Tags(u"Käthe"_s, u"Käthe,"_s);
    const QByteArray now = Resource(0x0404, EncodeIptc(items));

    const QByteArray jpeg =
        JpegWith(exif + Segment('\xed', Signature + before + old + after) + foreign + comment);
    EXPECT_EQ(
        WithIptc(jpeg, items),
        JpegWith(exif + Segment('\xed', Signature + before + now + after) + foreign + comment));
    EXPECT_EQ(WithIptc(JpegWith(comment), items),
              JpegWith(Segment('\xed', Signature + now) + comment));
    EXPECT_EQ(WithIptc(WithIptc(jpeg, Tags(u"x"_s, {})), items), WithIptc(jpeg, items));

    // A block that ends early, one that makes no sense, one in two segments.
    const QByteArray whole = before + after + old;
    const auto block = [](const QByteArray& part) { return Segment('\xed', Signature + part); };
    for (const auto& [segments, kept] :
         {std::pair(block(whole.chopped(1)), before + after),
          {block(before + "8BIX" + after), before},
          {block(whole.first(9)) + block(whole.sliced(9)), before + after}}) {
        EXPECT_EQ(WithIptc(JpegWith(segments), items), JpegWith(block(kept + now)));
    }
}

TEST_F(IptcFileTest, OtherProgramsReadWhatWasRewritten) {
    if (!IsInstalled(u"exiftool"_s) || !IsInstalled(u"exiv2"_s)) {
        GTEST_SKIP() << "exiftool or exiv2 is not installed";
    }
    WriteImageFile(path_, Pixels(TestPicture(20, 30)), {300}, {"abc", Tags(u"alt"_s, u"ä"_s)});
    EXPECT_EQ(ByExiftool(names_ + u" -validate"_s), u"alt\nä\nOK\n"_s);
    RunProgram(u"exiftool"_s, {u"-overwrite_original"_s, u"-Artist=Käthe"_s, u"-XMP:Label=rot"_s,
                               u"-IPTC:City=Köln"_s, u"-Photoshop:URL=http://x"_s, path_});
    const QByteArray before = Bytes(u"a.jpg"_s);
    const QString keywords = u"Groß,\"%s\"*,\U0001F4F7,"_s;
    RewriteIptc(path_, Tags(u"Groß"_s, keywords));
    EXPECT_EQ(Scan(Bytes(u"a.jpg"_s)), Scan(before));
    EXPECT_EQ(ByExiftool(names_), u"Groß\n"_s + keywords + u'\n');
    EXPECT_EQ(ByExiftool(u"-Artist -XMP:Label -IPTC:City -Photoshop:URL -warning"_s),
              u"Käthe\nrot\nhttp://x\n"_s)
        << "the items from before are replaced, all else is kept";
    EXPECT_EQ(
        RunProgram(u"exiv2"_s, {u"-PIv"_s, u"-K"_s, u"Iptc.Application2.Keywords"_s, path_}).output,
        keywords + u'\n');

    const QString large = u"ä"_s.repeated(500'000);
    RewriteIptc(path_, Tags({}, large));
    EXPECT_EQ(ByExiftool(names_), u'\n' + large + u'\n') << "1 MB";
    EXPECT_EQ(ReadImageFile(path_).iptc.Text(2), large);
    // More than is read at once, before the picture and in it.
    platform::WriteFileAtomically(path_, Bytes(u"a.jpg"_s) + QByteArray(3'000'000, 'x'));
    RewriteIptc(path_, Tags({}, u"k"_s));
    EXPECT_EQ(Scan(Bytes(u"a.jpg"_s)), Scan(before) + QByteArray(3'000'000, 'x'));
}

TEST_F(IptcFileTest, WhatIsNoJpegStaysAsItIs) {
    const QByteArray jpeg = JpegWith({});
    const qsizetype scan = jpeg.indexOf("\xff\xda");
    for (qsizetype size = 0; size < scan + 2; ++size) {
        EXPECT_THROW(WithIptc(jpeg.first(size), Tags({}, {})), platform::Error) << size;
    }
    const QByteArray segments = QByteArray("\xff\xfe\0\2", 4).repeated(100'001);
    for (const QByteArray& bytes :
         {QByteArray("GIF89a"), jpeg.first(100), QByteArray(jpeg).insert(2, segments)}) {
        platform::WriteFileAtomically(path_, bytes);
        EXPECT_TRUE(TextOf([&] { RewriteIptc(path_, Tags(u"x"_s, {})); }).contains(path_));
        EXPECT_EQ(Bytes(u"a.jpg"_s), bytes);
    }
    EXPECT_EQ(Files(), QStringList(u"a.jpg"_s));
}

}  // namespace kadrona::imaging
