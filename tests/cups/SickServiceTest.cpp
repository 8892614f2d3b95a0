// Print services that are ill or hostile: the window stays alive, and the question ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include "printing/cups/CupsPrinterLayer.h"
#include "printing/cups/service/Driver.h"
#include "tests/support/Errors.h"
#include "tests/support/ModalDriver.h"

using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using cups::CupsPrinterLayer;

namespace {

class SickService {
 public:
    explicit SickService(const QString& illness) {
        process_.start(QStringLiteral(KADRONA_CUPS_TESTS "/sick-service"), {Address(), illness});
        EXPECT_TRUE(process_.waitForReadyRead(30'000)) << "python3 is needed";
    }
    ~SickService() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }
    SickService(const SickService&) = delete;
    SickService& operator=(const SickService&) = delete;

    QString Address() const { return folder_.filePath(u"socket"_s); }

 private:
    QTemporaryDir folder_;
    QProcess process_;
};

/// Notes the longest time for which the thread's events stood still.
class Heartbeat {
 public:
    Heartbeat() {
        sinceBeat_.start();
        timer_.callOnTimeout([this] { longest_ = std::max(longest_, sinceBeat_.restart()); });
        timer_.start(10);
    }
    qint64 LongestMilliseconds() const { return longest_; }

 private:
    QTimer timer_;
    QElapsedTimer sinceBeat_;
    qint64 longest_ = 0;
};

constexpr std::chrono::milliseconds Deadline{1000};
const PrinterChoice SickPrinter{u"Photo"_s, {}, {}, {}};

TEST(SickServiceTest, IsGivenUpInTimeWhileTheWindowLives) {
    const QString dumb = u"Der Druckdienst antwortet nicht."_s;
    const QString any;  // as fast as the machine is
    for (const auto& [illness, text] : {std::pair(u"silent"_s, dumb),
                                        {u"drip"_s, dumb},
                                        {u"redirects"_s, dumb},
                                        {u"headers"_s, any},
                                        {u"flood"_s, any},
                                        {u"garbage"_s, any}}) {
        SCOPED_TRACE(illness.toStdString());
        const SickService service(illness);
        CupsPrinterLayer layer(service.Address(), Deadline);
        const Heartbeat heartbeat;
        QElapsedTimer time;
        time.start();
        const QString said = TextOf<PrinterError>([&] { layer.SetCurrentPrinter(SickPrinter); });
        EXPECT_TRUE(said.startsWith(u"Drucker „Photo“: "_s + text)) << said.toStdString();
        EXPECT_LT(time.elapsed(), 10 * Deadline.count()) << "on a busy machine";
        EXPECT_LT(heartbeat.LongestMilliseconds(), Deadline.count() * 7 / 10);
    }
}

TEST(SickServiceTest, ADescriptionWithoutEndIsNotKept) {
    const SickService service(u"flood"_s);
    const cups::Connection connection({service.Address(), std::chrono::seconds(20)});
    EXPECT_EQ(TextOf<cups::ServiceFailure>([&] { connection.Fetch("/printers/Photo.ppd"); }),
              u"Die Antwort des Druckdienstes nimmt kein Ende."_s);
}

TEST(SickServiceTest, AnswersWithoutBoundsAreNamed) {
    for (const auto& [illness, text] :
         {std::pair(u"moving"_s, u"Die Antwort des Druckdienstes nimmt kein Ende."_s),
          {u"nest"_s, u"Der Druckdienst antwortet unverständlich."_s},
          {u"cave"_s, u"Der Druckdienst antwortet unverständlich."_s}}) {
        const SickService service(illness);
        const cups::Connection connection({service.Address(), std::chrono::seconds(20)});
        EXPECT_EQ(TextOf<cups::ServiceFailure>(
                      [&] { connection.Ask(cups::NewRequest(IPP_OP_CUPS_GET_PRINTERS), "/"); }),
                  text);
    }
}

TEST(SickServiceTest, WaitingCanBeCancelled) {
    const SickService service(u"silent"_s);
    CupsPrinterLayer layer(service.Address(), std::chrono::seconds(60));
    ModalDriver driver;
    driver.Expect(u"PrintServiceWait"_s,
                  [](QWidget& shown) { Child<QAbstractButton>(shown).click(); });
    EXPECT_EQ(TextOf<PrinterError>([&] { layer.SetCurrentPrinter(SickPrinter); }),
              u"Drucker „Photo“: Die Anfrage an den Druckdienst wurde abgebrochen."_s);
}

TEST(SickServiceTest, WhatAQueueTellsIsBoundedAndPasswordsInItsAddressAreNotKept) {
    const SickService service(u"gossip"_s);
    const cups::Connection connection({service.Address(), std::chrono::seconds(20)});
    const cups::Queue queue = cups::Queues(connection).at(0);
    EXPECT_EQ(queue.deviceUri, u"ipp://fern/ipp?serial=7"_s);
    EXPECT_EQ(queue.description, QString(126, u'W') + u'…');
    EXPECT_THROW(cups::Driver::OfQueue(connection, queue), cups::ServiceFailure);
}

}  // namespace
