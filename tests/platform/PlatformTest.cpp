#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <csignal>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderListing.h"
#include "platform/Paths.h"
#include "platform/ProgramPart.h"
#include "platform/Progress.h"
#include "platform/PropertyFile.h"
#include "platform/Surroundings.h"
#include "platform/TerminationSignals.h"
#include "platform/TextDecoding.h"
#include "platform/UniqueFile.h"
#include "platform/UserRegistry.h"
#include "platform/WebPage.h"
#include "tests/support/Errors.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// Sets an environment variable until the end of the scope; before it was set too.
auto Scoped(const char* name, const QByteArray& value) {
    const QByteArray before = qgetenv(name);
    qputenv(name, value);
    return qScopeGuard([name, before] { qputenv(name, before); });
}

TEST(UniqueFile, NamesAreNewAndOfTheForm) {
    const QTemporaryDir folder;
    const QRegularExpression form(u"^pro[0-9A-F]{1,4}\\.tmp$"_s);
    QSet<QString> names;
    for (int i = 0; i < 500; ++i) {
        const QString name = CreateUniqueFile(folder.path(), u"profile"_s);
        EXPECT_TRUE(form.match(name).hasMatch()) << name.toStdString();
        EXPECT_EQ(QFileInfo(JoinPath(folder.path(), name)).size(), 0);
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 500);
    EXPECT_THROW(CreateUniqueFile(u"/fehlt"_s, u"pro"_s), FileError);
}

TEST(Paths, CreateFolderMakesAllButOverNoFile) {
    const QTemporaryDir folder;
    const QString deep = JoinPath(folder.path(), u"2026/03");
    EXPECT_TRUE(CreateFolder(deep));
    EXPECT_TRUE(CreateFolder(deep)) << "an existing one is fine";
    const QString file = JoinPath(folder.path(), u"file");
    WriteFileAtomically(file, "x"_ba);
    for (const QString& refused : {file, file + u"/below"_s, QString()}) {
        EXPECT_FALSE(CreateFolder(refused)) << refused.toStdString();
    }
    EXPECT_TRUE(testing::TextOf<FileError>([&] {
                    RequireFolder(file + u"/below"_s);
                }).endsWith(u"angelegt werden: Der Name ist schon vergeben."_s));
}

TEST(Paths, AFolderThatCannotBeReadIsNotAnEmptyOne) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors of its own to look at an object";
#endif
    const QTemporaryDir folder;
    const QString below = JoinPath(folder.path(), u"below");
    ASSERT_TRUE(CreateFolder(below));
    WriteFileAtomically(JoinPath(folder.path(), u"a"), "x"_ba);
    EXPECT_EQ(FolderEntries(folder.path()), QStringList({u"a"_s, u"below"_s}));
    EXPECT_EQ(FolderEntries(below + u"/missing"_s), QStringList());
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    const auto unread = WalkFolder(folder.path(), [&](const FoundFile& file) {
        EXPECT_TRUE(file.isRegular);
        setrlimit(RLIMIT_NOFILE, &none);
    });
    EXPECT_THROW(FolderEntries(below), FileError);
    setrlimit(RLIMIT_NOFILE, &before);
    ASSERT_EQ(unread.size(), 1U);
    EXPECT_EQ(unread[0].path, below);
    EXPECT_TRUE(unread[0].text.endsWith(u"Es sind zu viele Dateien geöffnet."_s));
}

TEST(Paths, CommonAppDataFollowsTheEnvironment) {
    {
        const auto chosen = Scoped("KADRONA_COMMON_APPDATA", "/srv/daten/");
        EXPECT_EQ(CommonAppDataFolder(), u"/srv/daten"_s);
    }
    if (QFileInfo::exists(u"/var/lib/Kadrona"_s)) {
        GTEST_SKIP() << "the program is installed on this machine";
    }
    const auto unset = Scoped("KADRONA_COMMON_APPDATA", "");
    const auto home = Scoped("XDG_DATA_HOME", "/srv/data-home");
    EXPECT_EQ(CommonAppDataFolder(), u"/srv/data-home"_s);
}

TEST(ProgramPart, IsNamedWhereItIsMissing) {
    const QString text =
        testing::TextOf<PartMissing>([] { AddressInPart("kadrona-fehlt", "open"); });
    EXPECT_TRUE(text.contains(u"kadrona-fehlt.so"_s)) << text.toStdString();
}

class UserRegistry : public ::testing::Test {
 protected:
    UserRegistry() { qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder_.path())); }
    QString Path() const { return folder_.filePath(u"Veltmark/Kadrona.conf"_s); }

    QTemporaryDir folder_;
};

TEST_F(UserRegistry, HasTheFormOfQSettings) {
    EXPECT_EQ(ReadRegistryInteger(u"DBCount"_s), 0);
    EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), QString());
    WriteRegistryInteger(u"DBCount"_s, -12);
    for (const QString& archive : {u"/daten/Bilder, „alt“; neu=1"_s, u"@Variant(x)"_s,
                                   u" C:\\Bilder \"a\"\n\x01e2\t"_s, QString()}) {
        WriteRegistryText(u"ArchivFilesDir"_s, archive);
        EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), archive);
        QSettings other(Path(), QSettings::IniFormat);
        EXPECT_EQ(other.value(u"Save/DBCount"_s).toInt(), -12);
        EXPECT_EQ(other.value(u"Save/ArchivFilesDir"_s).toString(), archive);
        other.setValue(u"Save/ArchivFilesDir"_s, archive + u'e');
        other.sync();
        EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), archive + u'e');
        EXPECT_EQ(ReadRegistryInteger(u"ArchivFilesDir"_s), 0) << "a text is no integer";
    }
}

TEST_F(UserRegistry, SaysWhatFailsAndWaitsForNobody) {
    WriteRegistryText(u"ArchivFilesDir"_s, u"/a"_s);
    WriteFileAtomically(Path() + u".lock"_s, "1\nKadrona\nanother\n"_ba);
    WriteRegistryText(u"ArchivFilesDir"_s, u"/b"_s);
    EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), u"/b"_s);
    QFile::remove(Path());
    ASSERT_EQ(mkfifo(QFile::encodeName(Path()).constData(), 0600), 0);
    EXPECT_THROW(ReadRegistryText(u"ArchivFilesDir"_s), FileError);
    EXPECT_THROW(WriteRegistryInteger(u"DBCount"_s, 1), FileError);
}

TEST(WebPage, StartsTheBrowserForWebAddressesOnly) {
    const QTemporaryDir folder;
    const QString seen = folder.filePath(u"seen"_s);
    const QString browser = folder.filePath(u"xdg-open"_s);
    const auto path = Scoped("PATH", folder.path().toLocal8Bit());
    EXPECT_FALSE(OpenWebPage(QUrl(u"https://example.org/"_s))) << "no browser yet";

    const QString script =
        u"#!/bin/sh\necho \"$1\" > '%1.new'\n/bin/mv '%1.new' '%1'\n"_s.arg(seen);
    WriteFileAtomically(browser, script.toLocal8Bit());
    QFile::setPermissions(browser, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    EXPECT_FALSE(OpenWebPage(QUrl(u"file:///etc/passwd"_s)));
    EXPECT_TRUE(OpenWebPage(QUrl(u"https://example.org/a b?q=ä"_s)));
    for (int wait = 0; wait < 500 && !QFile::exists(seen); ++wait) {
        QThread::msleep(10);
    }
    EXPECT_EQ(ReadWholeFile(seen, 1000), "https://example.org/a%20b?q=%C3%A4\n"_ba);
}

class PropertyFileTest : public ::testing::Test {
 protected:
    QTemporaryDir folder_;
    const QString path_ = folder_.filePath(u"pro1.tmp"_s);
};

TEST_F(PropertyFileTest, KeepsTextsExactly) {
    QStringList texts =
        u"|Bildname|  both ends\t|zwei\r\nZeilen|\"„ß“\"|C:\\Bilder\\neu|\\u0041|;#[x]=y|<<<END|"
        u"\U0001F4F7|25|true|\x01\x7F|\uFEFF"_s.split(u'|');
    texts << QString(QChar(0xD83D)) << QString(QChar(0xDCF7)) + u'x' << u"\0"_s;
    PropertyFile written(path_);
    for (int i = 0; i < texts.size(); ++i) {
        written.WriteText(u"Ed"_s, QString::number(i), texts[i]);
    }
    written.WriteList(u"Box"_s, u"Properties.Items"_s, texts);
    written.Save();
    const PropertyFile read(path_);
    for (int i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(read.ReadText(u"Ed"_s, QString::number(i)), texts[i]) << i;
    }
    EXPECT_EQ(read.ReadList(u"Box"_s, u"Properties.Items"_s), texts);
}

TEST_F(PropertyFileTest, WritesAReadableForm) {
    PropertyFile file(path_);
    file.WriteText(u"FileNameEd"_s, u"Text"_s, u"Größe \"L\"\n"_s);
    file.WriteBoolean(u"ScaleImageCk"_s, u"Checked"_s, true);
    file.WriteList(u"Box"_s, u"Properties.Items"_s, {u"a"_s, u"b"_s, u"c"_s});
    file.WriteList(u"Box"_s, u"Properties.Items"_s, {u"d"_s});
    file.WriteInteger(u"Box"_s, u"ItemIndex"_s, -1);
    file.Save();
    EXPECT_EQ(ReadWholeFile(path_, 1000),
              "[FileNameEd]\nText=\"Größe \\\"L\\\"\\n\"\n"
              "\n[ScaleImageCk]\nChecked=true\n"
              "\n[Box]\nProperties.Items=1\nProperties.Items.1=\"d\"\nItemIndex=-1\n"_ba);
}

TEST_F(PropertyFileTest, WrongTypesAndDamageReadAsNothing) {
    WriteFileAtomically(
        path_,
        "[C]\nnumber=5\nflag=TRUE\ntext=\"x\"\nopen=\"x\nodd=\"a\"b\"\nescape=\"\\q\"\n"
        "short=\"\\u00\"\nend=\"\\\"\nquote=\"\nbig=99999999999\n"
        "[L]\nItems=2\nItems.1=\"a\"\nless=-1\nhuge=2147483647\nhuge.1=\"a\"\nempty=0\n"_ba);
    const PropertyFile file(path_);
    for (const QString& key :
         u"number flag open odd escape short end quote missing"_s.split(u' ')) {
        EXPECT_EQ(file.ReadText(u"C"_s, key), std::nullopt) << key.toStdString();
    }
    EXPECT_EQ(file.ReadInteger(u"C"_s, u"number"_s), 5);
    EXPECT_EQ(file.ReadInteger(u"C"_s, u"text"_s), std::nullopt);
    EXPECT_EQ(file.ReadInteger(u"C"_s, u"big"_s), std::nullopt);
    EXPECT_EQ(file.ReadBoolean(u"C"_s, u"flag"_s), true);
    EXPECT_EQ(file.ReadBoolean(u"C"_s, u"number"_s), std::nullopt);
    for (const QString& key : {u"Items"_s, u"less"_s, u"huge"_s, u"missing"_s}) {
        EXPECT_EQ(file.ReadList(u"L"_s, key), std::nullopt) << key.toStdString();
    }
    EXPECT_EQ(file.ReadList(u"L"_s, u"empty"_s), QStringList());
}

TEST(TextDecoding, TakesUtf8AndFallsBackByteByByte) {
    // In a text's last byte and before it; what Windows-1252 leaves open is the control character.
    const std::pair<QByteArray, QString> cases[] = {
        {""_ba, u""_s},
        {u"Größe \U0001F4F7"_s.toUtf8(), u"Größe \U0001F4F7"_s},
        {"\xEF\xBB\xBF[A]"_ba, u"[A]"_s},
        {u"Größe"_s.toLatin1(), u"Größe"_s},
        {"\x80\x84x\x93\x96\x9F\x81\x9D"_ba, u"€„x“–Ÿ\x81\x9D"_s},
        {"\xC3\xA4=\xE4"_ba, u"ä=ä"_s},
        {"\xE4=\xC3\xA4"_ba, u"ä=ä"_s},
        {"a\xE2\x82"_ba, u"aâ‚"_s},
        {"overlong \xC0\xAF"_ba, u"overlong À¯"_s},
        {"surrogate \xED\xA0\x80"_ba, u"surrogate í\u00A0€"_s},
        {"beyond Unicode \xF4\x90\x80\x80"_ba, u"beyond Unicode ô\x90€€"_s},
        {QByteArray("\xFF\xFEk\0=\0", 6), u"ÿþk="_s},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(DecodeText(bytes), text);
    }
}

TEST(Paths, TemplatesStandBesideTheProgramOrInTheSharedFolder) {
    const QTemporaryDir prefix;
    const QString program = prefix.filePath(u"bin"_s);
    EXPECT_EQ(TemplateFolder(program), program + u"/Schablonen"_s);
    QDir().mkpath(prefix.filePath(u"share/kadrona/Schablonen"_s));
    EXPECT_EQ(TemplateFolder(program), prefix.filePath(u"share/kadrona/Schablonen"_s));
    QDir().mkpath(program + u"/Schablonen"_s);
    EXPECT_EQ(TemplateFolder(program), program + u"/Schablonen"_s);
}

TEST(TerminationSignals, TellTheEventLoopOnce) {
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        int requests = 0;
        std::signal(number, SIG_DFL);  // in the background a shell has some ignored
        const TerminationSignals ending;
        QObject::connect(&ending, &TerminationSignals::Requested, [&] { ++requests; });
        raise(number);
        QCoreApplication::processEvents();
        EXPECT_EQ(requests, 1) << number;
    }
    EXPECT_EQ(std::signal(SIGTERM, SIG_DFL), SIG_DFL) << "as it was";
}

TEST(TerminationNote, EndsTheProgramOnceItsWorkIsCleared) {
    const auto work = [] {
        {
            const TerminationNote ending;
            raise(SIGTERM);
            EXPECT_THROW(ThrowIfEnding(), Cancelled);
            std::fputs("cleared", stderr);
        }
        std::exit(0);
    };
    std::signal(SIGTERM, SIG_DFL);
    EXPECT_EXIT(work(), ::testing::KilledBySignal(SIGTERM), "cleared");
}

TEST(Surroundings, ClosedStreamsAndRelativeFoldersAreMadeUpFor) {
    const auto data = Scoped("XDG_DATA_HOME", "here");
    const auto cache = Scoped("XDG_CACHE_HOME", "/there");
    const int input = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    MakeUpForSurroundings();
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), 0) << "the next file would be the input";
    dup2(input, STDIN_FILENO);
    close(input);
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_DATA_HOME"));
    EXPECT_EQ(qgetenv("XDG_CACHE_HOME"), "/there");
}

}  // namespace
}  // namespace kadrona::platform
