#include <gtest/gtest.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <functional>

#include "platform/SilenceWatch.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

/// Who tells the user writes down what it was run with, and one line for each answer.
class SilenceWatchTest : public ::testing::Test {
 protected:
    SilenceWatchTest() {
        QFile script(folder_.filePath(u"teller"_s));
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(
            "#!/bin/sh\ncd \"${0%/*}\"\necho \"$1 $3\" >told\n"
            "while [ -n \"$(head -c 1 | od -An -c)\" ]; do echo answer >>told; done\n"
            "echo end >>told\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        SilenceWatch::SetTeller(script.fileName());
    }
    ~SilenceWatchTest() override { SilenceWatch::SetTeller({}); }

    QString Told() const {
        QFile told(folder_.filePath(u"told"_s));
        return told.open(QIODevice::ReadOnly) ? QString::fromUtf8(told.readAll()) : QString();
    }
    bool WaitFor(const QString& end) const {
        for (int tries = 200; tries > 0 && !Told().endsWith(end); --tries) {
            usleep(10'000);
        }
        return Told().endsWith(end);
    }

    QTemporaryDir folder_;
};

TEST_F(SilenceWatchTest, TellsWhenTheProgramWaitsAndTakesItBack) {
    const SilenceWatch watch(u"„Ümlaut“"_s, milliseconds(200));
    ASSERT_TRUE(WaitFor(u"sobald eine Antwort kommt.\n"_s));
    EXPECT_TRUE(Told().startsWith(u"--waiting Das Programm wartet auf „Ümlaut“."_s));
    SilenceWatch::NoteAnswer();
    EXPECT_TRUE(WaitFor(u"answer\n"_s)) << Told().toStdString();
}

/// With a patience that a busy machine does not use up.
TEST_F(SilenceWatchTest, SaysNothingWhileItAnswersOrCalculates) {
    const auto spend = [](const std::function<void()>& work) {
        QElapsedTimer since;
        for (since.start(); since.elapsed() < 1500;) {
            work();
        }
    };
    const SilenceWatch watch(u"a"_s, milliseconds(1000));
    spend([] {
        usleep(50'000);
        SilenceWatch::NoteAnswer();
    });
    spend([] {});
    EXPECT_TRUE(Told().isEmpty());
}

}  // namespace kadrona::platform
