#pragma once

#include <QTemporaryDir>

#include "WriterFixture.h"

namespace kadrona::imaging {

/// What ImageMagick makes of an image by the given operations; null where it fails.
inline QImage ByImageMagick(const QImage& image, const QStringList& operations) {
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source.png"));
    const QString result = folder.filePath(QStringLiteral("result.png"));
    EXPECT_TRUE(image.save(source));
    const ProgramResult run = RunProgram(
        QStringLiteral("convert"), QStringList{source} + operations +
                                       QStringList{QStringLiteral("-depth"), QStringLiteral("8"),
                                                   QStringLiteral("PNG24:") + result});
    EXPECT_EQ(run.exitCode, 0) << qPrintable(run.errors);
    return QImage(result);
}

using testing::LargestDifference;

}  // namespace kadrona::imaging
