#include "PrintedPage.h"

#include <QFile>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTransform>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

constexpr double MillimetresPerPoint = 25.4 / 72;

QString Output(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        throw std::runtime_error(program.toStdString() + " is needed, or cannot read the page: " +
                                 process.readAllStandardError().toStdString());
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

QRectF InMillimetres(const QRectF& points) {
    return {points.topLeft() * MillimetresPerPoint, points.size() * MillimetresPerPoint};
}

/// Pixel sizes of the images by their names in the drawing.
QHash<QString, QSizeF> ImageSizes(const QString& drawing) {
    static const QRegularExpression image(
        u"<image id=\"([^\"]+)\" width=\"(\\d+)\" height=\"(\\d+)\""_s);
    QHash<QString, QSizeF> sizes;
    for (auto matches = image.globalMatch(drawing); matches.hasNext();) {
        const auto match = matches.next();
        sizes.insert(match.captured(1),
                     {match.captured(2).toDouble(), match.captured(3).toDouble()});
    }
    return sizes;
}

PrintedPage::Copy CopyOf(const QStringList& matrix, const QSizeF& pixels) {
    const QTransform placed(matrix[0].toDouble(), matrix[1].toDouble(), matrix[2].toDouble(),
                            matrix[3].toDouble(), matrix[4].toDouble(), matrix[5].toDouble());
    return {InMillimetres(placed.mapRect(QRectF(QPointF(), pixels))), placed.m11() == 0};
}

}  // namespace

QRectF PrintedPage::Sheet() const {
    QRectF all;
    for (const Copy& copy : copies) {
        all |= copy.place;
    }
    return all;
}

PrintedPage Measured(const QString& pdf) {
    QTemporaryDir folder;
    const QString file = folder.filePath(u"page.svg"_s);
    // Else the program fits the page to a paper of whole points.
    Output(u"pdftocairo"_s, {u"-svg"_s, u"-noshrink"_s, u"-nocenter"_s, u"-f"_s, u"1"_s, u"-l"_s,
                             u"1"_s, pdf, file});
    QFile svg(file);
    svg.open(QIODevice::ReadOnly);
    const QString drawing = QString::fromUtf8(svg.readAll());

    PrintedPage page;
    static const QRegularExpression use(
        u"<use xlink:href=\"#([^\"]+)\" transform=\"matrix\\(([^)]+)\\)\""_s);
    const QHash<QString, QSizeF> sizes = ImageSizes(drawing);
    for (auto matches = use.globalMatch(drawing); matches.hasNext();) {
        const auto match = matches.next();
        page.copies.push_back(
            CopyOf(match.captured(2).split(u','), sizes.value(match.captured(1))));
    }
    static const QRegularExpression size(u"Page size: +([0-9.]+) x ([0-9.]+) pts"_s);
    static const QRegularExpression count(u"Pages: +(\\d+)"_s);
    const QString info = Output(u"pdfinfo"_s, {pdf});
    page.page =
        QSizeF(size.match(info).captured(1).toDouble(), size.match(info).captured(2).toDouble()) *
        MillimetresPerPoint;
    page.count = count.match(info).captured(1).toInt();
    return page;
}

}  // namespace kadrona::testing
