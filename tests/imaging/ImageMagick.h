#pragma once

#include <QTemporaryDir>
#include <algorithm>

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

/// The largest difference of a channel inside `area`; 255 where a size is wrong.
inline int LargestDifference(const QImage& a, const QImage& b, const QRect& area) {
    if (a.size() != b.size() || !a.rect().contains(area)) {
        ADD_FAILURE() << "sizes differ";
        return 255;
    }
    int largest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor left(a.pixel(x, y));
            const QColor right(b.pixel(x, y));
            largest = std::max({largest, std::abs(left.red() - right.red()),
                                std::abs(left.green() - right.green()),
                                std::abs(left.blue() - right.blue())});
        }
    }
    return largest;
}

inline int LargestDifference(const QImage& a, const QImage& b) {
    return LargestDifference(a, b, a.rect());
}

}  // namespace kadrona::imaging
