#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/AtomicFile.h"
#include "platform/PropertyFile.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

class PropertyFileTest : public testing::Test {
 protected:
    QString Path() const { return folder_.filePath(u"pro1.tmp"_s); }

    QTemporaryDir folder_;
};

TEST_F(PropertyFileTest, KeepsTextsExactly) {
    QStringList texts =
        u"|Bildname|  both ends\t|zwei\r\nZeilen|\"„ß“\"|C:\\Bilder\\neu|\\u0041|;#[x]=y|<<<END|"
        u"\U0001F4F7|25|true|\x01\x7F|\uFEFF"_s.split(u'|');
    texts << QString(QChar(0xD83D)) << QString(QChar(0xDCF7)) + u'x' << u"\0"_s;
    PropertyFile written(Path());
    for (int i = 0; i < texts.size(); ++i) {
        written.WriteText(u"Ed"_s, QString::number(i), texts[i]);
    }
    written.WriteList(u"Box"_s, u"Properties.Items"_s, texts);
    written.Save();

    const PropertyFile read(Path());
    for (int i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(read.ReadText(u"Ed"_s, QString::number(i)), texts[i]) << i;
    }
    EXPECT_EQ(read.ReadList(u"Box"_s, u"Properties.Items"_s), texts);
}

TEST_F(PropertyFileTest, WritesAReadableForm) {
    PropertyFile file(Path());
    file.WriteText(u"FileNameEd"_s, u"Text"_s, u"Größe \"L\"\n"_s);
    file.WriteBoolean(u"ScaleImageCk"_s, u"Checked"_s, true);
    file.WriteList(u"Box"_s, u"Properties.Items"_s, {u"a"_s, u"b"_s, u"c"_s});
    file.WriteList(u"Box"_s, u"Properties.Items"_s, {u"d"_s});
    file.WriteInteger(u"Box"_s, u"ItemIndex"_s, -1);
    file.Save();
    EXPECT_EQ(ReadWholeFile(Path(), 1000),
              "[FileNameEd]\nText=\"Größe \\\"L\\\"\\n\"\n"
              "\n[ScaleImageCk]\nChecked=true\n"
              "\n[Box]\nProperties.Items=1\nProperties.Items.1=\"d\"\nItemIndex=-1\n"_ba);
}

TEST_F(PropertyFileTest, WrongTypesAndDamageReadAsNothing) {
    WriteFileAtomically(
        Path(),
        "[C]\nnumber=5\nflag=TRUE\ntext=\"x\"\nopen=\"x\nodd=\"a\"b\"\nescape=\"\\q\"\n"
        "short=\"\\u00\"\nend=\"\\\"\nquote=\"\nbig=99999999999\n"
        "[L]\nItems=2\nItems.1=\"a\"\nless=-1\nhuge=2147483647\nhuge.1=\"a\"\nempty=0\n"_ba);
    const PropertyFile file(Path());
    for (const QString& key : {u"number"_s, u"flag"_s, u"open"_s, u"odd"_s, u"escape"_s, u"short"_s,
                               u"end"_s, u"quote"_s, u"missing"_s}) {
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

}  // namespace
}  // namespace kadrona::platform
