#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "imaging/writing/ImageWriter.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging {

using testing::LargestDifference;
using testing::TestPicture;
using testing::Unrolled;

/// What an outside program says about a file.
struct ProgramResult {
    int exitCode = -1;
    QString output;
    QString errors;
};

inline bool IsInstalled(const QString& program) {
    return !QStandardPaths::findExecutable(program).isEmpty();
}

inline ProgramResult RunProgram(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        return {-1, {}, process.errorString()};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

class WriterTest : public ::testing::Test {
 protected:
    QString PathOf(const QString& name) const { return folder_.filePath(name); }

    /// Names of the files in the folder, hidden and temporary ones too.
    QStringList Files() const {
        return QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

    QByteArray Bytes(const QString& name) const {
        QFile file(PathOf(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    /// The pixels of a file. Where Qt does not know its format an outside program decodes it.
    QImage ReadBack(const QString& name) const {
        QString path = PathOf(name);
        if (name.endsWith(QStringLiteral(".pdf"))) {
            RunProgram(QStringLiteral("pdfimages"),
                       {QStringLiteral("-png"), path, PathOf(QStringLiteral("decoded"))});
            path = PathOf(QStringLiteral("decoded-000.png"));
        } else if (name.endsWith(QStringLiteral(".jp2"))) {
            path = PathOf(QStringLiteral("decoded.ppm"));
            RunProgram(QStringLiteral("opj_decompress"),
                       {QStringLiteral("-i"), PathOf(name), QStringLiteral("-o"), path});
        }
        QImageReader reader(path);
        QImage image = reader.read();
        EXPECT_FALSE(image.isNull()) << qPrintable(path + reader.errorString());
        return image;
    }

    QTemporaryDir folder_;
};

}  // namespace kadrona::imaging
