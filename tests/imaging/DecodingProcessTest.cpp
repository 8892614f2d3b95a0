#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "imaging/reading/DecodingMessages.h"
#include "imaging/reading/DecodingProcess.h"
#include "imaging/reading/ReadProgress.h"
#include "imaging/reading/WorkWatch.h"
#include "tests/support/Errors.h"

namespace kadrona::imaging {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// As a shell says it through the channel.
QByteArray Saying(const QByteArray& bytes) {
    QByteArray command = "printf '";
    for (const char byte : bytes) {
        command += '\\' + QByteArray::number(uchar(byte), 8).rightJustified(3, '0');
    }
    return command + "' >&3\n";
}

QByteArray Saying(const DecodingMessage& message) {
    return Saying(Packed(message));
}

/// Memory of that size for the picture.
QByteArray Making(qint64 bytes) {
    return "head -c " + QByteArray::number(bytes) + " /dev/zero >&6\n";
}

class Impatient : public ReadProgress {
 public:
    void Begin(const Pixels& preview) override { begun = preview.Size(); }
    bool GoOn(double) override { return false; }
    QSize begun;
};

}  // namespace

/// Shell scripts in the place of the decoder.
class DecodingProcessTest : public ::testing::Test {
 protected:
    DecodedImage Decoded(const QByteArray& script, ReadProgress* progress = nullptr) {
        QFile program(folder_.filePath(u"decoder"_s));
        EXPECT_TRUE(program.open(QIODevice::WriteOnly));
        // The request is one message.
        program.write("#!/bin/sh\ndd bs=8192 count=1 <&3 of=/dev/null 2>/dev/null\n" + script +
                      "exec sleep 100\n");
        program.close();
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        QByteArray bytes("photo");
        QBuffer photo(&bytes);
        photo.open(QIODevice::ReadOnly);
        const ReadOptions options{.maximumPixels = 1'000'000, .progress = progress};
        return DecodeByProcess(program.fileName(), CameraFormat::Heif,
                               ReadTask(photo, u"p"_s, options));
    }
    /// Without what all begin with.
    QString Failure(const QByteArray& script) {
        return testing::TextOf([&] { Decoded(script); })
            .remove(u"Die Datei „p“ konnte nicht gelesen werden: "_s);
    }
    static qsizetype OpenFiles() {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
    }

    QTemporaryDir folder_;
};

TEST_F(DecodingProcessTest, WhateverTheDecoderDoesBecomesAPictureOrASentence) {
    using decoding::Beginning, decoding::Picture;
    const QString died =
        u"Sie ist beschädigt: Der Leser für HEIC und AVIF ist an ihr gescheitert"_s;
    const QString lied =
        u"Sie ist beschädigt: Was der Leser für HEIC und AVIF aus ihr macht, ist kein Bild."_s;
    Picture picture;
    picture.size = {2, 3};
    picture.hasAlpha = true;
    picture.profileBytes = 5;
    const auto with = [&picture](auto change) {
        Picture changed = picture;
        change(changed);
        return Saying(changed);
    };
    const struct {
        QByteArray script;
        QString failure;
    } cases[]{
        {Making(29) + Saying(picture), {}},
        {"kill -SEGV $$\n", died + u" (Signal 11)."_s},
        {"kill -XCPU $$\n", died + u" (Signal 24)."_s},
        {"exit 0\n", died + u"."_s},
        {"exec 3>&-\n", died + u"."_s},  // it lives on
        {"kill -KILL $$\n", u"Für dieses Bild reicht der Arbeitsspeicher nicht aus."_s},
        {Saying(decoding::Failure{u"Nein\x1b[2J\u202e!"_s}), u"Nein\uFFFD[2J\uFFFD!"_s},
        {Saying(decoding::Failure{QString(2000, u'x')}), QString(1000, u'x')},
        {Saying("abc"), lied},
        {"head -c 9000 /dev/zero | dd bs=9000 count=1 iflag=fullblock >&3 2>/dev/null\n", lied},
        {Saying(Packed(DecodingMessage(picture)) + 'x'), lied},
        {Saying(Packed(DecodingMessage(picture)).chopped(1)), lied},
        {Saying(picture), lied},
        {Making(28) + Saying(picture), lied},
        {Making(30) + Saying(picture), lied},
        {with([](Picture& p) {
             p.size = {0, 0};
         }),
         lied},
        {with([](Picture& p) {
             p.size = {-2, -3};
         }),
         lied},
        {with([](Picture& p) {
             p.size = {1 << 30, 1};
         }),
         lied},
        {with([](Picture& p) { p.profileBytes = -29; }), lied},
        {with([](Picture& p) { p.profileBytes = qint64{1} << 40; }), lied},
        {with([](Picture& p) { p.model = ColourModel(9); }), lied},
        {with([](Picture& p) {
             p.size = {2000, 1000};
         }),
         u"Das Bild „p“ hat 2 Megapixel; es werden höchstens 1 Megapixel unterstützt."_s},
        {Saying(Beginning{}), lied},  // nobody asked for it
        {Saying(decoding::Progress{2}), lied},
        {Saying(decoding::Expectation{-1}), lied},
    };
    const qsizetype before = OpenFiles();
    for (const auto& [script, failure] : cases) {
        EXPECT_EQ(Failure(script), failure) << script.toStdString();
    }
    EXPECT_EQ(OpenFiles(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "one is left";
}

TEST_F(DecodingProcessTest, OnceGivenUpItEndsAtOnce) {
    QElapsedTimer time;
    time.start();
    Impatient progress;
    EXPECT_THROW(Decoded("truncate -s 24 /proc/self/fd/5\n" + Saying(decoding::Beginning{{2, 3}}),
                         &progress),
                 ReadCancelled);
    EXPECT_EQ(progress.begun, QSize(2, 3));
    EXPECT_THROW(Decoded({}, &progress), ReadCancelled) << "nothing is heard of it";
    EXPECT_TRUE(progress.begun.isEmpty());
    EXPECT_LT(time.elapsed(), 10'000);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(DecodingProcessTest, SaysWhyItCannotStart) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors of its own to look at an object";
#endif
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
    close(next);
    for (const int room : {0, 2, 5}) {
        const rlimit few{static_cast<rlim_t>(next + room), files.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        QByteArray bytes("photo");
        QBuffer photo(&bytes);
        const QString failure = testing::TextOf([&] {
            DecodeByProcess(u"/bin/true"_s, CameraFormat::Raw, ReadTask(photo, u"p"_s, {}));
        });
        setrlimit(RLIMIT_NOFILE, &files);
        EXPECT_TRUE(failure.contains(u"Der Leser für Rohdaten lässt sich nicht starten: "_s))
            << room << failure.toStdString();
    }
}

TEST(WorkWatchTest, EndsWhatIdlesAndWhatWorksTooLong) {
    const auto looksUntilRefused = [](WorkWatch watch, milliseconds workALook) {
        int looks = 1;
        while (looks < 100'000 && watch.IsAllowed(looks * workALook, milliseconds(100))) {
            ++looks;
        }
        return looks;
    };
    WorkWatch large;
    large.Expect(100'000'000);
    EXPECT_EQ(looksUntilRefused({}, milliseconds(0)), 201);    // 20 seconds
    EXPECT_EQ(looksUntilRefused({}, milliseconds(1)), 251);    // hardly more
    EXPECT_EQ(looksUntilRefused({}, milliseconds(4)), 601);    // it drips
    EXPECT_EQ(looksUntilRefused({}, milliseconds(100)), 101);  // 10 seconds of work
    EXPECT_EQ(looksUntilRefused(large, milliseconds(100)), 2101);
    EXPECT_TRUE(WorkWatch().IsAllowed({}, seconds(3600))) << "both had been stopped";
}

}  // namespace kadrona::imaging
