#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <limits>
#include <optional>

#include "platform/AtomicFile.h"
#include "printing/PrinterSetup.h"
#include "tests/support/FakePrinter.h"

using namespace kadrona::printing;
using namespace Qt::StringLiterals;
using kadrona::testing::FakePrinter;

namespace {

const PrinterChoice Before{u"Alt"_s, u"Treiber"_s, u"usb:"_s, "x=1\n"};
const PrinterChoice Photo{u"Fotodrucker_Büro"_s, u"Treiber für 📷"_s, u"ipp://127.0.0.1:631/"_s,
                          QByteArray("PageSize=A6\n\0binary", 19)};

class PrinterSetupTest : public ::testing::Test {
 protected:
    QByteArray Saved(const PrinterChoice& choice = Photo) const {
        FakePrinter layer;
        layer.current = choice;
        TPrinterSetup(layer).SaveToFile(path_);
        return kadrona::platform::ReadWholeFile(path_, 1 << 20);
    }

    /// What is current after the bytes were loaded over `Before`; nothing where that failed.
    std::optional<PrinterChoice> Loaded(const QByteArray& bytes) {
        kadrona::platform::WriteFileAtomically(path_, bytes);
        layer_.current = Before;
        try {
            TPrinterSetup(layer_).LoadFromFile(path_);
        } catch (const kadrona::platform::Error& error) {
            EXPECT_TRUE(error.Text().contains(path_) || dynamic_cast<const PrinterError*>(&error));
            EXPECT_EQ(layer_.current, Before) << "a failure changed the current printer";
            return std::nullopt;
        }
        return layer_.current;
    }

    FakePrinter layer_;
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"prn1a2b.tmp"_s);
};

TEST_F(PrinterSetupTest, AnIndependentReaderFindsEveryFieldAtItsOffset) {
    Saved();
    QProcess reader;
    reader.start(u"python3"_s, {u"-c"_s,
                                uR"(
import struct, sys
data = open(sys.argv[1], "rb").read()
*names, padding, length = struct.unpack("<66s66s66s2sq", data[:208])
for name in names:
    text, zeros = name.decode("utf-16-le").split("\0", 1)
    assert not zeros.strip("\0"), "a name is not filled with zeros"
    print(text)
print(padding.hex(), length, data[208:].hex())
)"_s,
                                path_});
    ASSERT_TRUE(reader.waitForFinished()) << "python3 is needed";
    EXPECT_EQ(QString::fromUtf8(reader.readAllStandardOutput()),
              u"Fotodrucker_Büro\nTreiber für 📷\nipp://127.0.0.1:631/\n0000 19 %1\n"_s.arg(
                  QString::fromLatin1(Photo.deviceMode.toHex())))
        << reader.readAllStandardError().toStdString();
}

TEST_F(PrinterSetupTest, WhatWasSavedOrMakesSenseIsLoaded) {
    const QString ä31(31, u'ä');
    PrinterChoice endless = Photo;
    endless.device = QString(33, QChar(0x4141));
    QByteArray shorter = Saved() + "grown later";
    qToLittleEndian<qint64>(4, shorter.data() + 200);
    PrinterChoice shortened = Photo;
    shortened.deviceMode = "Page";
    const struct {
        const char* name;
        QByteArray bytes;
        PrinterChoice loaded;
    } rows[] = {
        {"as saved", Saved(), Photo},
        {"names are cut between characters",
         Saved({ä31 + u"bc"_s, ä31 + u"📷"_s, ä31 + u"b"_s, {}}),
         {ä31 + u"b"_s, ä31, ä31 + u"b"_s, {}}},
        {"a name without end", QByteArray(66, 'A') + Saved().mid(66), endless},
        {"padding, and what has grown", Saved().replace(198, 2, "\xff\xee") + "grown", Photo},
        {"the stored length decides", shorter, shortened},
    };
    for (const auto& [name, bytes, loaded] : rows) {
        EXPECT_EQ(Loaded(bytes), loaded) << name;
    }
}

TEST_F(PrinterSetupTest, WhatMakesNoSenseIsRefusedAndAMissingFileDoesNothing) {
    const QByteArray whole = Saved();
    for (qsizetype size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(Loaded(whole.first(size)), std::nullopt) << "cut after " << size << " bytes";
    }
    constexpr qint64 Most = std::numeric_limits<qint64>::max();
    for (const qint64 length : {qint64{20}, qint64{-1}, -Most - 1, Most, Most - 207}) {
        QByteArray bytes = whole;
        qToLittleEndian<qint64>(length, bytes.data() + 200);
        EXPECT_EQ(Loaded(bytes), std::nullopt) << length;
    }
    layer_.failure = u"Der Drucker ist nicht vorhanden."_s;
    EXPECT_EQ(Loaded(whole), std::nullopt);
    layer_.failure.clear();
    QFile::remove(path_);
    EXPECT_NO_THROW(TPrinterSetup(layer_).LoadFromFile(path_));
    QDir().mkpath(path_);
    EXPECT_THROW(TPrinterSetup(layer_).LoadFromFile(path_), kadrona::platform::FileError);
    EXPECT_THROW(TPrinterSetup(layer_).SaveToFile(path_), kadrona::platform::FileError);
}

}  // namespace
