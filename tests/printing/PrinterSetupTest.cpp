#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <optional>

#include "platform/AtomicFile.h"
#include "printing/PrinterSetup.h"

using namespace kadrona::printing;
using namespace Qt::StringLiterals;

namespace {

/// A layer that knows its printer and nothing else; an empty name is a printer that is gone.
class RememberingLayer : public PrinterLayer {
 public:
    explicit RememberingLayer(PrinterChoice choice = {}) : current(std::move(choice)) {}

    PrinterChoice CurrentPrinter() override { return current; }
    void SetCurrentPrinter(const PrinterChoice& choice) override {
        if (choice.device.isEmpty()) {
            throw PrinterError(u"Der Drucker ist nicht vorhanden."_s);
        }
        current = choice;
    }
    bool ShowSetupDialog(QWindow*) override { return false; }
    QSizeF PaperMillimetres() override { return {}; }
    void Print(const PrintImage&) override {}

    PrinterChoice current;
};

class PrinterSetupTest : public ::testing::Test {
 protected:
    QString Path() const { return folder_.filePath(u"prn1a2b.tmp"_s); }

    void Write(QByteArrayView bytes) { kadrona::platform::WriteFileAtomically(Path(), bytes); }
    QByteArray Written() { return kadrona::platform::ReadWholeFile(Path(), 1 << 20); }

    /// What is current after the file was loaded over `Before`; nothing where that failed.
    std::optional<PrinterChoice> Loaded() {
        RememberingLayer layer(Before);
        try {
            TPrinterSetup(layer).LoadFromFile(Path());
        } catch (const kadrona::platform::Error& error) {
            EXPECT_FALSE(error.Text().isEmpty());
            EXPECT_EQ(layer.current, Before) << "a failure changed the current printer";
            return std::nullopt;
        }
        return layer.current;
    }

    static inline const PrinterChoice Before{u"Alt"_s, u"Treiber"_s, u"usb:"_s, "x=1\n"};
    static inline const PrinterChoice Photo{u"Fotodrucker_Büro"_s, u"Treiber für 📷"_s,
                                            u"ipp://127.0.0.1:631/"_s,
                                            QByteArray("PageSize=A6\n\0binary", 19)};

 private:
    QTemporaryDir folder_;
};

TEST_F(PrinterSetupTest, AnIndependentReaderFindsEveryFieldAtItsOffset) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    QProcess reader;
    reader.start(u"python3"_s, {u"-c"_s,
                                uR"(
import struct, sys
data = open(sys.argv[1], "rb").read()
device, driver, port, padding, length = struct.unpack("<66s66s66s2sq", data[:208])
for name in (device, driver, port):
    text, zeros = name.decode("utf-16-le").split("\0", 1)
    assert not zeros.strip("\0"), "a name is not filled with zeros"
    print(text)
print(padding.hex(), length, data[208:].hex(), len(data))
)"_s,
                                Path()});
    ASSERT_TRUE(reader.waitForFinished()) << "python3 is needed";
    EXPECT_EQ(QString::fromUtf8(reader.readAllStandardOutput()),
              u"Fotodrucker_Büro\nTreiber für 📷\nipp://127.0.0.1:631/\n0000 19 %1 227\n"_s.arg(
                  QString::fromLatin1(Photo.deviceMode.toHex())))
        << reader.readAllStandardError().toStdString();
}

TEST_F(PrinterSetupTest, WhatIsSavedComesBack) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    EXPECT_EQ(Loaded(), Photo);
}

TEST_F(PrinterSetupTest, LongNamesAreCutBetweenCharacters) {
    const QString units31(31, u'ä');
    RememberingLayer layer({units31 + u"bc"_s, units31 + u"📷"_s, units31 + u"b"_s, {}});
    TPrinterSetup(layer).SaveToFile(Path());
    EXPECT_EQ(Loaded(), (PrinterChoice{units31 + u"b"_s, units31, units31 + u"b"_s, {}}));
    EXPECT_EQ(Written().mid(64, 2), QByteArray(2, '\0')) << "the name is not ended";
}

TEST_F(PrinterSetupTest, ANameWithoutEndStopsAtItsField) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    Write(QByteArray(66, 'A') + Written().mid(66));
    PrinterChoice expected = Photo;
    expected.device = QString(33, QChar(0x4141));
    EXPECT_EQ(Loaded(), expected);
}

TEST_F(PrinterSetupTest, TheStoredLengthDecidesAndThePaddingDoesNot) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    QByteArray bytes = Written() + "grown later";
    bytes.replace(198, 2, "\xff\xee");
    Write(bytes);
    EXPECT_EQ(Loaded(), Photo);

    qToLittleEndian<qint64>(4, bytes.data() + 200);
    Write(bytes);
    PrinterChoice expected = Photo;
    expected.deviceMode = "Page";
    EXPECT_EQ(Loaded(), expected);
}

TEST_F(PrinterSetupTest, AFileThatEndsEarlyIsRefused) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    const QByteArray whole = Written();
    for (qsizetype size = 0; size < whole.size(); ++size) {
        Write(whole.first(size));
        EXPECT_EQ(Loaded(), std::nullopt) << "cut after " << size << " bytes";
    }
}

TEST_F(PrinterSetupTest, ALengthThatCannotBeIsRefused) {
    RememberingLayer layer(Photo);
    TPrinterSetup(layer).SaveToFile(Path());
    QByteArray bytes = Written();
    for (const qint64 length :
         {qint64{20}, qint64{-1}, std::numeric_limits<qint64>::min(),
          std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::max() - 207}) {
        qToLittleEndian<qint64>(length, bytes.data() + 200);
        Write(bytes);
        EXPECT_EQ(Loaded(), std::nullopt) << length;
    }
}

TEST_F(PrinterSetupTest, AMissingFileDoesNothingAndAPrinterThatIsGoneStaysTheLayersError) {
    EXPECT_EQ(Loaded(), Before);

    Write(QByteArray(208, '\0'));
    RememberingLayer layer(Before);
    EXPECT_THROW(TPrinterSetup(layer).LoadFromFile(Path()), PrinterError);
}

TEST_F(PrinterSetupTest, WhatCannotBeReadOrWrittenNamesTheFile) {
    ASSERT_TRUE(QDir().mkpath(Path()));
    RememberingLayer layer(Photo);
    for (const bool save : {true, false}) {
        try {
            save ? TPrinterSetup(layer).SaveToFile(Path())
                 : TPrinterSetup(layer).LoadFromFile(Path());
            ADD_FAILURE() << "a folder passed for a file";
        } catch (const kadrona::platform::FileError& error) {
            EXPECT_TRUE(error.Text().contains(Path()));
        }
    }
}

}  // namespace
