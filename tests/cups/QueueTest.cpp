// What a real print service says of its queues and jobs, and what of a choice reaches it.

#include <gmock/gmock.h>

#include <QScopeGuard>
#include <QTest>

#include "PrintingFixture.h"
#include "printing/PrinterSetup.h"

using namespace kadrona;
using namespace kadrona::printing;
using namespace kadrona::testing;
using namespace Qt::StringLiterals;
using printing::cups::CupsPrinterLayer;
using printing::cups::DeviceMode;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

TEST_F(PrintingTest, AChoiceSurvivesARestartAndReachesTheJob) {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"prn1.tmp"_s);
    {
        CupsPrinterLayer layer(service_.Address());
        Set(layer, {{"PageSize", "A6"},
                    {"InputSlot", "Photo"},
                    {"ColorModel", "Gray"},
                    {"DryTime", "Long"},
                    {DeviceMode::Copies, "2"},
                    {"GoneOption", "Kept"},
                    {"CNInputSlot", "Oben"},
                    {"MediaType", "GoneChoice"}});
        TPrinterSetup(layer).SaveToFile(file);
    }
    service_.AddQueue(u"Another"_s);
    service_.Run(u"lpadmin"_s, {u"-d"_s, u"Another"_s});

    CupsPrinterLayer layer(service_.Address());
    TPrinterSetup(layer).LoadFromFile(file);
    EXPECT_EQ(layer.CurrentPrinter().device, u"Photo"_s);
    const DeviceMode mode(layer.CurrentPrinter().deviceMode);
    EXPECT_EQ(mode.Value("GoneOption"), "Kept");
    EXPECT_EQ(mode.Value("MediaType"), "GoneChoice");

    const PrintedPage printed = Printed(layer, Sheet({35, 45}, core::SheetLayouts[5]));
    EXPECT_NEAR(printed.page.width(), 105, 0.02);
    const QHash<QString, std::string> job = service_.JobAttributes(1);
    EXPECT_EQ(job[u"PageSize"_s], "A6");
    EXPECT_EQ(job[u"InputSlot"_s], "Photo");
    EXPECT_EQ(job[u"ColorModel"_s], "Gray");
    EXPECT_EQ(job[u"DryTime"_s], "Long");
    EXPECT_EQ(job[u"PhotoEnhance"_s], "true") << "an option that nobody changed is kept, too";
    EXPECT_EQ(job[u"copies"_s], "2");
    EXPECT_EQ(job[u"print-scaling"_s], "none");
    EXPECT_EQ(job[u"job-name"_s], "Müller, Größe");
    EXPECT_EQ(layer.Paper().remarks,
              QStringList({u"„Oben“ (Papierfach) gibt es bei diesem Drucker nicht mehr."_s,
                           u"„GoneChoice“ (Papierart) gibt es bei diesem Drucker nicht mehr; er "
                           u"nimmt „Normalpapier“."_s}));
    EXPECT_FALSE(job.contains(u"GoneOption"_s));
    EXPECT_FALSE(job.contains(u"MediaType"_s));
    Set(layer, {{"PageSize", "GonePaper"}});
    layer.Print(Sheet({35, 45}, core::SheetLayouts[5]));
    EXPECT_EQ(service_.JobAttributes(2)[u"PageSize"_s], "A4") << "the paper that is drawn on";
}

TEST_F(PrintingTest, EveryQueueIsTheStandardOneAndIsFoundAgain) {
    const QString longName = u"Zweiter-Drucker-im-hinteren-Buero-am-Fenster"_s;
    service_.AddQueue(longName);
    service_.Run(u"lpadmin"_s, {u"-p"_s, u"Photo"_s, u"-c"_s, u"Alle"_s});
    service_.Run(u"cupsaccept"_s, {u"Alle"_s});
    service_.Run(u"cupsenable"_s, {u"Alle"_s});
    for (const QString& name : {longName, u"Alle"_s, u"Photo"_s}) {
        SCOPED_TRACE(name.toStdString());
        service_.Run(u"lpadmin"_s, {u"-d"_s, name});
        QTemporaryDir folder;
        CupsPrinterLayer layer(service_.Address());
        TPrinterSetup(layer).SaveToFile(folder.filePath(u"prn1.tmp"_s));
        CupsPrinterLayer other(service_.Address());
        TPrinterSetup(other).LoadFromFile(folder.filePath(u"prn1.tmp"_s));
        EXPECT_EQ(other.CurrentPrinter().device, name);
        EXPECT_EQ(ErrorOf([&] { other.Print(Sheet({35, 45}, core::SheetLayouts[6])); }), "");
    }
    // By the address the service looks up who may print.
    EXPECT_THAT(platform::ReadWholeFile(service_.AccessLog(), 1'000'000).toStdString(),
                HasSubstr("POST /classes/Alle "));
}

TEST_F(PrintingTest, WhatTheQueueSaysIsShownAndAGoneOneLeavesTheCurrentPrinter) {
    CupsPrinterLayer layer(service_.Address());
    const PrinterChoice photo = layer.CurrentPrinter();
    const auto print = [&] { layer.Print(Sheet({35, 45}, core::SheetLayouts[6])); };
    service_.Run(u"cupsdisable"_s, {u"Photo"_s});
    EXPECT_EQ(ErrorOf(print), "") << "a paused queue takes the job";
    EXPECT_EQ(service_.JobAttributes(1)[u"job-state"_s], "pending");

    PrinterChoice gone = photo;
    gone.device = u"Alt"_s;
    const auto load = [&] { layer.SetCurrentPrinter(gone); };
    EXPECT_EQ(ErrorOf(load), "Drucker „Alt“: Der Drucker ist nicht mehr vorhanden.");
    for (const QString& hostile : {QString(), u"a/b?c#d %s"_s, QString(33, QChar(0xd800))}) {
        gone.device = hostile;
        EXPECT_FALSE(ErrorOf(load).empty());
    }
    EXPECT_EQ(layer.CurrentPrinter(), photo);
    layer.SetCurrentPrinter(photo);

    const std::string rejects = "Drucker „Photo“: Der Drucker nimmt zurzeit keine Aufträge an";
    const std::string isGone = "Drucker „Photo“: Der Drucker ist nicht mehr vorhanden.";
    const std::string none = "Es ist kein Drucker eingerichtet.";
    service_.Run(u"cupsreject"_s, {u"-r"_s, u"Wartung bis Montag"_s, u"Photo"_s});
    EXPECT_EQ(ErrorOf(print), rejects + ": Wartung bis Montag.");
    service_.Run(u"cupsreject"_s, {u"Photo"_s});
    EXPECT_EQ(ErrorOf(print), rejects + ".");
    service_.Run(u"lpadmin"_s, {u"-x"_s, u"Photo"_s});
    EXPECT_EQ(ErrorOf(print), isGone);
    EXPECT_EQ(ErrorOf([&] { layer.Paper(); }), isGone);
    CupsPrinterLayer fresh(service_.Address());
    const auto ask = [&] { fresh.CurrentPrinter(); };
    const auto setUp = [&] { fresh.ShowSetupDialog(nullptr); };
    EXPECT_EQ(ErrorOf(ask), none);
    EXPECT_EQ(ErrorOf(setUp), none);

    service_.Kill();
    EXPECT_THAT(ErrorOf(print), StartsWith("Drucker „Photo“: Unter „/"));
    EXPECT_THAT(ErrorOf(ask), StartsWith("Unter „/"));
    EXPECT_THAT(ErrorOf(setUp), StartsWith("Unter „/"));
}

TEST_F(PrintingTest, AJobIsFollowedToItsEndWithTheServicesReason) {
    CupsPrinterLayer layer(service_.Address());
    const auto follow = [&](const QString& expected, const std::function<void()>& step) {
        const std::unique_ptr<JobWatch> watch = layer.Print(Sheet({35, 45}, core::SheetLayouts[6]));
        step();
        QStringList texts;
        QObject::connect(watch.get(), &JobWatch::Changed,
                         [&](const JobState& state) { texts.append(state.text); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return texts.contains(expected); }, 10'000))
            << expected.toStdString() << " is not in " << texts.join(u'|').toStdString();
    };
    follow(u"gedruckt"_s, [] {});
    service_.Run(u"cupsdisable"_s, {u"-r"_s, u"Papierwechsel"_s, u"Photo"_s});
    EXPECT_EQ(layer.Paper().remarks,
              QStringList(u"Der Drucker „Photo“ ist angehalten: Papierwechsel. Der Auftrag wartet, "
                          u"bis er weiterdruckt."_s));
    follow(u"angehalten: Papierwechsel"_s, [] {});
    follow(u"angehalten: zurückgehalten"_s, [&] {
        service_.Run(u"lp"_s, {u"-i"_s, u"3"_s, u"-H"_s, u"hold"_s});
    });
    follow(u"abgebrochen"_s, [&] { service_.Run(u"cancel"_s, {u"4"_s}); });
}

TEST_F(PrintingTest, AJobWhoseDriverFailsSaysMoreThanThatItFailed) {
    const QTemporaryDir folder;
    service_.Run(
        u"/bin/sh"_s,
        {u"-c"_s,
         u"sed 's!^.cupsFilter2.*!*cupsFilter: \"application/vnd.cups-pdf 0 /bin/false\"!' "
         "\"$0\" > \"$1\" && lpadmin -p Photo -P \"$1\""_s,
         QStringLiteral(KADRONA_CUPS_TESTS "/photo-printer.ppd"), folder.filePath(u"fails.ppd"_s)});
    CupsPrinterLayer layer(service_.Address());
    const auto watch = layer.Print(Sheet({35, 45}, core::SheetLayouts[6]));
    QString last;
    QObject::connect(watch.get(), &JobWatch::Changed,
                     [&](const JobState& state) { last = state.text; });
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return last == u"angehalten: Der Druckertreiber ist gescheitert"_s; }, 10'000))
        << last.toStdString();
}

TEST_F(PrintingTest, WhyAJobCannotBeWrittenIsSaidInGerman) {
    CupsPrinterLayer layer(service_.Address());
    const QByteArray folder = qgetenv("TMPDIR");
    const auto restored =
        qScopeGuard([&] { folder.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", folder); });
    qputenv("TMPDIR", "/proc");  // takes no files, not even an administrator's
    EXPECT_EQ(ErrorOf([&] {
                  layer.Print(Sheet({35, 45}, core::SheetLayouts[6]));
              }),
              "Drucker „Photo“: Es kann keine temporäre Datei angelegt werden: Die Datei oder der "
              "Ordner ist nicht vorhanden.");
}

}  // namespace
