#pragma once

#include <QHash>
#include <QProcess>
#include <QRectF>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTransform>
#include <stdexcept>
#include <vector>

#include "platform/AtomicFile.h"

namespace kadrona::testing {

/// A printed page as an outside program (poppler) sees it; all lengths in millimetres, the origin
/// at the page's top left.
struct PrintedPage {
    struct Copy {
        QRectF place;
        /// Whether the image lies on its side.
        bool turned = false;
    };

    QSizeF page;
    std::vector<Copy> copies;
    /// Pages of the document.
    int count = 0;

    /// The rectangle around all copies.
    QRectF Sheet() const {
        QRectF all;
        for (const Copy& copy : copies) {
            all |= copy.place;
        }
        return all;
    }
};

inline constexpr double MillimetresPerPoint = 25.4 / 72;

inline QString Output(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        throw std::runtime_error(program.toStdString() + " is needed, or cannot read the page: " +
                                 process.readAllStandardError().toStdString());
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// All places that the pattern matches.
inline QList<QRegularExpressionMatch> Matches(const QString& text, const QString& pattern) {
    QList<QRegularExpressionMatch> matches;
    for (auto all = QRegularExpression(pattern).globalMatch(text); all.hasNext();) {
        matches.append(all.next());
    }
    return matches;
}

inline QSizeF SizeOf(const QRegularExpressionMatch& match, int firstGroup) {
    return {match.captured(firstGroup).toDouble(), match.captured(firstGroup + 1).toDouble()};
}

/// Measures the first page of a PDF. Throws std::runtime_error where it cannot be read.
inline PrintedPage Measured(const QString& pdf) {
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("page.svg"));
    // Else the program fits the page to a paper of whole points.
    Output(QStringLiteral("pdftocairo"),
           {QStringLiteral("-svg"), QStringLiteral("-noshrink"), QStringLiteral("-nocenter"),
            QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("1"),
            pdf, file});
    const QString drawing = QString::fromUtf8(platform::ReadWholeFile(file, 100'000'000));

    // Pixel sizes of the images by their names in the drawing.
    QHash<QString, QSizeF> sizes;
    for (const auto& image :
         Matches(drawing,
                 QStringLiteral("<image id=\"([^\"]+)\" width=\"(\\d+)\" height=\"(\\d+)\""))) {
        sizes.insert(image.captured(1), SizeOf(image, 2));
    }
    PrintedPage page;
    for (const auto& use : Matches(
             drawing,
             QStringLiteral("<use xlink:href=\"#([^\"]+)\" transform=\"matrix\\(([^)]+)\\)\""))) {
        QList<double> m;
        for (const QString& number : use.captured(2).split(u',')) {
            m.append(number.toDouble());
        }
        const QRectF placed = QTransform(m[0], m[1], m[2], m[3], m[4], m[5])
                                  .mapRect(QRectF(QPointF(), sizes.value(use.captured(1))));
        page.copies.push_back(
            {{placed.topLeft() * MillimetresPerPoint, placed.size() * MillimetresPerPoint},
             m[0] == 0});
    }
    const QString info = Output(QStringLiteral("pdfinfo"), {pdf});
    page.page =
        SizeOf(Matches(info, QStringLiteral("Page size: +([0-9.]+) x ([0-9.]+) pts")).value(0), 1) *
        MillimetresPerPoint;
    page.count = Matches(info, QStringLiteral("Pages: +(\\d+)")).value(0).captured(1).toInt();
    return page;
}

}  // namespace kadrona::testing
