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

/// All places that the pattern matches.
QList<QRegularExpressionMatch> Matches(const QString& text, const QString& pattern) {
    QList<QRegularExpressionMatch> matches;
    for (auto all = QRegularExpression(pattern).globalMatch(text); all.hasNext();) {
        matches.append(all.next());
    }
    return matches;
}

QSizeF SizeOf(const QRegularExpressionMatch& match, int firstGroup) {
    return {match.captured(firstGroup).toDouble(), match.captured(firstGroup + 1).toDouble()};
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

    // Pixel sizes of the images by their names in the drawing.
    QHash<QString, QSizeF> sizes;
    for (const auto& image :
         Matches(drawing, u"<image id=\"([^\"]+)\" width=\"(\\d+)\" height=\"(\\d+)\""_s)) {
        sizes.insert(image.captured(1), SizeOf(image, 2));
    }
    PrintedPage page;
    for (const auto& use :
         Matches(drawing, u"<use xlink:href=\"#([^\"]+)\" transform=\"matrix\\(([^)]+)\\)\""_s)) {
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
    const QString info = Output(u"pdfinfo"_s, {pdf});
    page.page = SizeOf(Matches(info, u"Page size: +([0-9.]+) x ([0-9.]+) pts"_s).value(0), 1) *
                MillimetresPerPoint;
    page.count = Matches(info, u"Pages: +(\\d+)"_s).value(0).captured(1).toInt();
    return page;
}

}  // namespace kadrona::testing
