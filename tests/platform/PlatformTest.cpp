#include <gtest/gtest.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"
#include "platform/UserRegistry.h"
#include "platform/WebPage.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// Sets an environment variable until the end of the scope.
class ScopedVariable {
 public:
    ScopedVariable(const char* name, const QByteArray& value)
        : name_(name), wasSet_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {
        qputenv(name, value);
    }
    ~ScopedVariable() { wasSet_ ? qputenv(name_, before_) : qunsetenv(name_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
    const char* name_;
    bool wasSet_;
    QByteArray before_;
};

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
    WriteFileAtomically(JoinPath(folder.path(), u"file"), "x"_ba);
    EXPECT_FALSE(CreateFolder(JoinPath(folder.path(), u"file")));
    EXPECT_FALSE(CreateFolder(JoinPath(folder.path(), u"file/below")));
    EXPECT_FALSE(CreateFolder(QString()));
}

TEST(Paths, CommonAppDataFollowsTheEnvironment) {
    {
        const ScopedVariable chosen("KADRONA_COMMON_APPDATA", "/srv/daten/");
        EXPECT_EQ(CommonAppDataFolder(), u"/srv/daten"_s);
    }
    if (QFileInfo::exists(u"/var/lib/Kadrona"_s)) {
        GTEST_SKIP() << "the program is installed on this machine";
    }
    const ScopedVariable unset("KADRONA_COMMON_APPDATA", "");
    const ScopedVariable home("XDG_DATA_HOME", "/srv/data-home");
    EXPECT_EQ(CommonAppDataFolder(), u"/srv/data-home"_s);
}

TEST(UserRegistry, KeepsValuesAndReadsMissingOnesAsNothing) {
    const QTemporaryDir folder;
    const ScopedVariable home("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    EXPECT_EQ(ReadRegistryInteger(u"DBCount"_s), 0);
    EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), QString());

    const QString archive = u"/daten/Bilder, „alt“; neu=1"_s;
    WriteRegistryInteger(u"DBCount"_s, -12);
    WriteRegistryText(u"ArchivFilesDir"_s, archive);
    EXPECT_EQ(ReadRegistryInteger(u"DBCount"_s), -12);
    EXPECT_EQ(ReadRegistryText(u"ArchivFilesDir"_s), archive);
    EXPECT_EQ(ReadRegistryInteger(u"ArchivFilesDir"_s), 0) << "a text is no integer";

    const QByteArray file = ReadWholeFile(folder.filePath(u"Veltmark/Kadrona.conf"_s), 10'000);
    EXPECT_TRUE(file.startsWith("[Save]\n")) << file.toStdString();
}

TEST(WebPage, StartsTheBrowserForWebAddressesOnly) {
    const QTemporaryDir folder;
    const QString seen = folder.filePath(u"seen"_s);
    const QString browser = folder.filePath(u"xdg-open"_s);
    const ScopedVariable path("PATH", folder.path().toLocal8Bit());
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

}  // namespace
}  // namespace kadrona::platform
