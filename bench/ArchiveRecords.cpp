#include "bench/ArchiveRecords.h"

#include <QPainter>
#include <QRandomGenerator>
#include <array>

#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveTable.h"
#include "core/base/FileNaming.h"
#include "imaging/writing/ImageWriter.h"
#include "store/sqlite/SqliteDatabase.h"

using namespace Qt::StringLiterals;

namespace kadrona::bench {

namespace {

constexpr int ThumbnailKinds = 64;

constexpr std::array GivenNames{u"Anna",  u"Jürgen", u"Sofie",  u"Müzeyyen", u"Björn", u"Karin",
                                u"Peter", u"Käthe",  u"Mehmet", u"Zoë",      u"Lukas", u"Renate"};
constexpr std::array FamilyNames{u"Müller",  u"Schmidt", u"Weiß",     u"Özdemir", u"Bäcker",
                                 u"Krüger",  u"Nowak",   u"Groß",     u"Lehmann", u"Jäger",
                                 u"Fischer", u"Schäfer", u"Großmann", u"Vogel",   u"Böhm"};
constexpr std::array Towns{u"Berlin", u"Köln", u"München", u"Lübeck", u"Görlitz", u"Gießen"};
constexpr std::array Templates{u"deutschland-reisepass.schablone", u"usa-reisepass.schablone",
                               u"japan-reisepass.schablone", u"schweiz-reisepass.schablone"};

template <typename List>
QString OneOf(const List& list, QRandomGenerator& random) {
    return QStringView(list[random.bounded(quint32(list.size()))]).toString();
}

/// A head before a light wall, with the noise of a camera.
QByteArray PortraitThumbnail(QRandomGenerator& random) {
    QImage image(140, 180, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(int(random.bounded(360)), 20, 235));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv(int(random.bounded(360)), 120, 110));
    painter.drawEllipse(QRect(10, 130, 120, 120));
    painter.setBrush(
        QColor::fromHsv(int(15 + random.bounded(20)), 90, 160 + int(random.bounded(80))));
    painter.drawEllipse(QRect(35, 30, 70, 110));
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int noise = int(random.bounded(9)) - 4;
            row[x] =
                qRgb(qBound(0, qRed(row[x]) + noise, 255), qBound(0, qGreen(row[x]) + noise, 255),
                     qBound(0, qBlue(row[x]) + noise, 255));
        }
    }
    return imaging::EncodeJpeg(imaging::Pixels(image));
}

core::ArchiveRecord Record(qint64 id, const QDateTime& created, QRandomGenerator& random) {
    core::NameSources sources;
    sources.now = [&] { return created; };
    const QString givenName = OneOf(GivenNames, random);
    const QString familyName = OneOf(FamilyNames, random);
    return {.id = id,
            .name = core::GetArchivFileName(id, sources) + u".jpg"_s,
            .type = OneOf(Templates, random),
            .created = created,
            .folder = core::GetMonthDir(sources),
            .tags = givenName + u' ' + familyName + u"\r\n"_s + OneOf(Towns, random) +
                    u"\r\nAuftrag "_s + QString::number(10000 + id) + u"\r\n"_s};
}

}  // namespace

void MakeArchiveRecords(const QString& databaseFolder, int count) {
    constexpr qint64 SecondsBetweenPhotos = 2400;
    QRandomGenerator random(1);
    std::vector<QByteArray> thumbnails;
    for (int i = 0; i < ThumbnailKinds; ++i) {
        thumbnails.push_back(PortraitThumbnail(random));
    }
    store::SqliteDatabase database(databaseFolder);
    database.Execute(u"PRAGMA synchronous = OFF"_s);
    database.Execute(u"PRAGMA journal_mode = MEMORY"_s);
    core::CreateArchive(database);
    core::ArchiveTable table(database);
    const QDateTime last(QDate(2026, 3, 7), QTime(14, 30));
    for (int i = 0; i < count; ++i) {
        const QDateTime created = last.addSecs(-SecondsBetweenPhotos * (count - 1 - i));
        table.Fill(Record(table.Insert(), created, random), thumbnails[size_t(i % ThumbnailKinds)]);
    }
}

}  // namespace kadrona::bench
