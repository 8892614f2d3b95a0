#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/FolderWatch.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;

class FolderWatchTest : public ::testing::Test {
 protected:
    void Write(const QString& name, const QByteArray& content) const {
        QDir().mkpath(folder);
        QFile file(folder + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    /// The files after a look, without their folder.
    QStringList Looked() {
        watch.Look();
        QStringList names;
        for (const QString& path : watch.Files()) {
            names += QFileInfo(path).fileName();
        }
        names.sort();
        return names;
    }
    QString Path(const QString& name) const { return folder + u'/' + name; }

    QTemporaryDir root;
    QString folder = root.filePath(u"card"_s);
    FolderWatch watch{folder, {u"*.jpg"_s}};
};

TEST_F(FolderWatchTest, WaitsForWhatIsWrittenAndFollowsAFolderThatComesAndGoes) {
    EXPECT_EQ(Looked(), QStringList());
    Write(u"old.JPG"_s, "photo");
    Write(u"note.txt"_s, "no photo");
    Write(u"empty.jpg"_s, "");
    EXPECT_EQ(Looked(), QStringList());
    EXPECT_EQ(Looked(), QStringList(u"old.JPG"_s));
    EXPECT_FALSE(watch.Look()) << "nothing changed";
    EXPECT_EQ(watch.TakeArrived(), QStringList()) << "it was there";

    Write(u"new.jpg"_s, "half");
    EXPECT_EQ(Looked(), QStringList(u"old.JPG"_s));
    Write(u"new.jpg"_s, "half and half");
    EXPECT_EQ(Looked(), QStringList(u"old.JPG"_s)) << "still growing";
    EXPECT_EQ(Looked(), (QStringList{u"new.jpg"_s, u"old.JPG"_s}));
    EXPECT_EQ(watch.TakeArrived(), QStringList(Path(u"new.jpg"_s)));

    ASSERT_TRUE(QDir().rename(folder, folder + u"-away"_s));
    EXPECT_EQ(Looked(), QStringList());
    ASSERT_TRUE(QDir().rename(folder + u"-away"_s, folder));
    Looked();
    EXPECT_EQ(Looked(), (QStringList{u"new.jpg"_s, u"old.JPG"_s}));
    EXPECT_EQ(watch.TakeArrived(), QStringList()) << "it is as it was";

    watch.PassOver(Path(u"new.jpg"_s));
    EXPECT_EQ(Looked(), QStringList(u"old.JPG"_s));
    Write(u"new.jpg"_s, "now it is whole");
    Looked();
    EXPECT_EQ(Looked(), (QStringList{u"new.jpg"_s, u"old.JPG"_s}));
}

TEST_F(FolderWatchTest, PassesOverAFolderOfTooManyFilesUntilItHasFewer) {
    Write(u"photo.jpg"_s, "photo");
    const QByteArray name = QFile::encodeName(Path(u"photo.jpg"_s));
    for (int i = 0; i < FolderWatch::MostEntries; ++i) {
        ASSERT_EQ(link(name, QFile::encodeName(Path(u"%1.txt"_s.arg(i)))), 0);
    }
    Looked();
    EXPECT_EQ(Looked(), QStringList());
    EXPECT_TRUE(watch.IsCrowded());
    ASSERT_TRUE(QFile::remove(Path(u"0.txt"_s)));
    Looked();
    EXPECT_EQ(Looked(), QStringList(u"photo.jpg"_s));
    EXPECT_FALSE(watch.IsCrowded());
}

TEST_F(FolderWatchTest, LooksIntoTheFoldersOfACard) {
    for (const QString& name : {u"private/no.jpg"_s, u"DCIM/100EOS/1.jpg"_s, u"DCIM/101EOS/2.jpg"_s,
                                u"DCIM/100EOS/deeper/no.jpg"_s}) {
        QDir().mkpath(QFileInfo(Path(name)).path());
        Write(name, "photo");
    }
    Looked();
    EXPECT_EQ(Looked(), (QStringList{u"1.jpg"_s, u"2.jpg"_s}));
    FolderWatch photos{Path(u"DCIM"_s), {u"*.jpg"_s}};
    photos.Look();
    photos.Look();
    EXPECT_EQ(photos.Files().size(), 2);
}

}  // namespace kadrona::platform
