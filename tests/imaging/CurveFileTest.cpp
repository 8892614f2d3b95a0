#include "WriterFixture.h"
#include "imaging/tone/CurveFile.h"
#include "platform/AtomicFile.h"
#include "tests/support/Errors.h"

using namespace Qt::StringLiterals;

namespace kadrona::imaging {

namespace {

/// 16-bit big-endian words.
QByteArray Words(std::initializer_list<int> words) {
    QByteArray bytes;
    for (const int word : words) {
        bytes.append(static_cast<char>(word >> 8)).append(static_cast<char>(word));
    }
    return bytes;
}

/// A curve of `count` points.
Curve Detailed(int count) {
    std::vector<CurvePoint> points;
    points.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        points.push_back({i * 3, 255 - i});
    }
    return Curve(points);
}

CurveSet SomeCurves() {
    CurveSet set;
    set[CurveChannel::Rgb] = Curve({{0, 0}, {128, 160}, {255, 255}});
    set[CurveChannel::Green] = Curve({{10, 20}, {200, 250}});
    return set;
}

}  // namespace

class CurveFileTest : public WriterTest {
 protected:
    CurveSet Read(const QByteArray& bytes) const {
        platform::WriteFileAtomically(path_, bytes);
        return ReadCurveFile(path_);
    }

    QByteArray Written(const CurveSet& set) const {
        WriteCurveFile(path_, set);
        return platform::ReadWholeFile(path_, 1000);
    }

    /// Expects that reading fails with an error that names the file and this reason.
    void ExpectRefused(const QByteArray& bytes, const QString& reason) const {
        const QString text = testing::TextOf<CurveFileError>([&] { Read(bytes); });
        EXPECT_TRUE(text.contains(path_) && text.contains(reason)) << qPrintable(text);
    }

    const QString path_ = PathOf(u"Weiße Wand 100 %1.acv"_s);
};

TEST_F(CurveFileTest, WritesTheWordsOfTheFormat) {
    const QByteArray identity = Words({2, 0, 0, 255, 255});
    EXPECT_EQ(Written({}), Words({4, 5}) + identity.repeated(5));
    EXPECT_EQ(Written(SomeCurves()), Words({4, 5, 3, 0, 0, 160, 128, 255, 255}) + identity +
                                         Words({2, 20, 10, 250, 200}) + identity + identity);
    EXPECT_EQ(ReadCurveFile(path_), SomeCurves());
}

TEST_F(CurveFileTest, TakesFiftyEightPointsAndNoMore) {
    CurveSet set;
    set[CurveChannel::Rgb] = Detailed(52);
    ASSERT_EQ(set.PointCount(), MaximumCurvePoints);
    EXPECT_EQ(Written(set).size(), 22 + 4 * 58);
    EXPECT_EQ(ReadCurveFile(path_), set);

    const auto failure = [this](const CurveSet& tooMany) {
        return testing::TextOf<CurveFileError>([&] { WriteCurveFile(path_, tooMany); });
    };
    CurveSet more = set;
    more[CurveChannel::Blue] = Detailed(3);
    EXPECT_EQ(failure(more),
              u"Die Kurvenvorlage „%1“ konnte nicht gespeichert werden: Die Kurven haben zusammen "
              "59 Punkte, in eine Vorlage passen höchstens 58. Bitte entfernen Sie mindestens "
              "einen Punkt und speichern Sie noch einmal."_s.arg(path_));
    more[CurveChannel::Red] = Detailed(80);
    EXPECT_TRUE(failure(more).contains(u"137 Punkte"_s));
    EXPECT_TRUE(failure(more).contains(u"mindestens 79 Punkte"_s));
    EXPECT_EQ(ReadCurveFile(path_), set) << "the older file stays";
}

TEST_F(CurveFileTest, ReadsWhatOtherProgramsWrite) {
    const QByteArray rgb = Words({3, 0, 0, 160, 128, 255, 255});
    const QByteArray green = Words({2, 20, 10, 250, 200});
    const QByteArray identity = Words({2, 0, 0, 255, 255});
    const QByteArray four = rgb + identity + green + identity;
    const QByteArray full = Words({4, 5}) + four + identity;
    CurveSet onlyRgb;
    onlyRgb[CurveChannel::Rgb] = SomeCurves()[CurveChannel::Rgb];

    const struct {
        const char* name;
        QByteArray bytes;
        CurveSet expected;
    } cases[] = {
        {"version 1", Words({1, 5}) + four + identity, SomeCurves()},
        {"four curves", Words({4, 4}) + four, SomeCurves()},
        {"one curve", Words({1, 1}) + rgb, onlyRgb},
        {"seven curves", Words({4, 7}) + four + green.repeated(3), SomeCurves()},
        {"bytes after the last curve", full + "more", SomeCurves()},
        {"unsorted, repeated points", Words({4, 1, 5, 255, 255, 9, 0, 0, 0, 1, 128, 160, 128}),
         onlyRgb},
        {"a single point", Words({4, 2, 1, 100, 50}) + identity, {}},
        {"a curve without points", Words({4, 2, 0}) + identity, {}},
    };
    for (const auto& example : cases) {
        EXPECT_EQ(Read(example.bytes), example.expected) << example.name;
    }
    for (qsizetype length = 0; length < full.size(); ++length) {
        ExpectRefused(full.first(length), u"unvollständig"_s);
    }
}

TEST_F(CurveFileTest, RefusesWhatNoCurveCanBe) {
    ExpectRefused(Words({2, 1, 2, 0, 0, 255, 255}), u"Version"_s);
    ExpectRefused("\x89PNG\r\n\x1a\n", u"Version"_s);
    ExpectRefused(Words({4, 0}), u"keine Kurve"_s);
    ExpectRefused(Words({4, 0xffff, 2, 0, 0, 255, 255}), u"unvollständig"_s);
    ExpectRefused(Words({4, 1, 0xffff, 0, 0, 255, 255}), u"65535 Punkte"_s);
    ExpectRefused(Words({4, 1, 2, 0, 0, 255, 256}), u"außerhalb"_s);
    ExpectRefused(Words({4, 1, 2, 0x8000, 0, 255, 255}), u"außerhalb"_s);
    ExpectRefused(QByteArray(1 << 20, '\0'), u"größer"_s);
    QFile::remove(path_);
    EXPECT_THROW(ReadCurveFile(path_), CurveFileError) << "no such file";
    EXPECT_THROW(ReadCurveFile(folder_.path()), CurveFileError) << "a folder";
    EXPECT_THROW(WriteCurveFile(PathOf(u"fehlt/a.acv"_s), {}), CurveFileError);
}

}  // namespace kadrona::imaging
