// The program is killed while it saves. What stands under the file's name is whole, old or new.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>
#include <algorithm>
#include <array>
#include <iostream>

#include "tests/support/CoreFakes.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

class KilledSave : public ::testing::Test {
 protected:
    /// How one quick save went.
    struct Outcome {
        qint64 microseconds = 0;
        QByteArray message;
    };

    KilledSave() {
        QDir().mkpath(installation.Path("saved"));
        for (const char* name : {"light.bmp", "dark.bmp"}) {
            EXPECT_TRUE(Noise(name[0] == 'l' ? 90 : 30).save(installation.Path(name)));
        }
    }

    /// What JPEG cannot make small, so that writing takes its time.
    static QImage Noise(int grey) {
        QImage image(1600, 2000, QImage::Format_RGB32);
        quint32 seed = 1;
        for (int y = 0; y < image.height(); ++y) {
            auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                seed = seed * 1664525U + 1013904223U;
                const int value = grey + static_cast<int>(seed >> 26);
                row[x] = qRgb(value, value, value);
            }
        }
        return image;
    }

    /// Saves quickly in a process of its own, which is killed so long after it began, or else when
    /// it has said that it is done.
    Outcome Save(const char* photo, std::optional<qint64> killAfter = {}) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(QUICK_SAVER),
                      {installation.Path(""), installation.Path(photo)});
        EXPECT_EQ(NextLine(process), "saving\n");
        QElapsedTimer clock;
        clock.start();
        Outcome outcome;
        if (killAfter) {
            QThread::usleep(static_cast<unsigned long>(*killAfter));
        } else {
            outcome.message = NextLine(process);
        }
        outcome.microseconds = clock.nsecsElapsed() / 1000;
        process.kill();
        EXPECT_TRUE(process.waitForFinished());
        return outcome;
    }

    static QByteArray NextLine(QProcess& process) {
        while (!process.canReadLine() && process.waitForReadyRead()) {
        }
        return process.readLine();
    }

    QByteArray Saved() const {
        QFile file(installation.Path("saved/Bildname.jpg"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// What stands beside the photo is removed.
    qsizetype CountAndRemoveOthers() const {
        QDir folder(installation.Path("saved"));
        QStringList others = folder.entryList(QDir::Files | QDir::Hidden);
        others.removeAll(u"Bildname.jpg"_s);
        for (const QString& other : others) {
            EXPECT_TRUE(other.startsWith(u"kdr"_s) && other.endsWith(u".tmp"_s))
                << other.toStdString();
            folder.remove(other);
        }
        return others.size();
    }

    Installation installation;
};

/// 60 times, or as often as a minute allows; as often as the variable KADRONA_KILLS says where it
/// is set.
TEST_F(KilledSave, LeavesTheOldFileOrTheNewOne) {
    constexpr int Minute = 60'000;
    const int wanted = qEnvironmentVariableIntValue("KADRONA_KILLS");
    const std::array photos{"light.bmp", "dark.bmp"};
    std::array<QByteArray, 2> whole;
    qint64 duration = 0;
    for (size_t i = 0; i < photos.size(); ++i) {
        const Outcome outcome = Save(photos[i]);
        EXPECT_TRUE(outcome.message.contains("gespeichert")) << outcome.message.constData();
        duration = std::max(duration, outcome.microseconds);
        whole[i] = Saved();
        ASSERT_GT(whole[i].size(), 1'000'000);
    }
    ASSERT_NE(whole[0], whole[1]);

    int kills = 0;
    int replaced = 0;
    qsizetype leftOver = 0;
    QElapsedTimer clock;
    clock.start();
    while (wanted > 0 ? kills < wanted : kills < 60 && clock.elapsed() < Minute) {
        const size_t photo = static_cast<size_t>(kills) % photos.size();
        if (kills % 5 == 4) {
            QFile::remove(installation.Path("saved/Bildname.jpg"));
        }
        const QByteArray before = Saved();
        Save(photos[photo], QRandomGenerator::global()->bounded(duration));
        const QByteArray after = Saved();
        ++kills;
        ASSERT_TRUE(after == before || after == whole[photo])
            << "kill " << kills << " left " << after.size() << " bytes";
        // Whatever else the machine does, about a third of the kills come after the writing.
        const bool over = after != before;
        duration += over ? -duration / 10 : duration / 20;
        replaced += over;
        leftOver += CountAndRemoveOthers();
    }
    std::cout << kills << " kills, at last within " << duration / 1000 << " ms: " << replaced
              << " times the new file, " << leftOver << " times a temporary file\n";
    EXPECT_GT(replaced, 0);
    EXPECT_LT(replaced, kills);
}

}  // namespace kadrona::testing
