#include "imaging/metafile/EmfPlayer.h"

#include <algorithm>
#include <array>
#include <limits>

#include "imaging/metafile/MetafilePoints.h"

namespace kadrona::imaging {

namespace {

constexpr quint32 EndOfFileType = 14;
constexpr qsizetype RecordHeaderSize = 8;

QTransform ReadTransform(platform::ByteReader& reader) {
    std::array<double, 6> m = {};
    for (double& value : m) {
        value = reader.Read<float>();
    }
    return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

/// What ScaleWindowExtEx and ScaleViewportExtEx multiply an extent by.
QSizeF ReadRatio(platform::ByteReader& reader) {
    const double xNumerator = reader.Read<qint32>();
    const double xDenominator = reader.Read<qint32>();
    const double yNumerator = reader.Read<qint32>();
    const double yDenominator = reader.Read<qint32>();
    if (xDenominator == 0 || yDenominator == 0) {
        return {1, 1};
    }
    return {xNumerator / xDenominator, yNumerator / yDenominator};
}

QSizeF Product(QSizeF a, QSizeF b) {
    return {a.width() * b.width(), a.height() * b.height()};
}

/// The objects that every device has, by the number in their handle.
MetafileCanvas::Object StockObject(quint32 number) {
    switch (number) {
        case 0:
            return QBrush(Qt::white);
        case 1:
            return QBrush(QColor(192, 192, 192));
        case 2:
            return QBrush(QColor(128, 128, 128));
        case 3:
            return QBrush(QColor(64, 64, 64));
        case 4:
            return QBrush(Qt::black);
        case 5:
            return QBrush(Qt::NoBrush);
        case 6:
            return QPen(Qt::white, 0);
        case 7:
            return QPen(Qt::black, 0);
        case 8:
            return QPen(Qt::NoPen);
        case 18:
            return QBrush(Qt::white);
        default:
            return QPen(Qt::black, 0);
    }
}

struct NamedEmfRecord {
    quint32 type;
    const char* name;
};
/// Those that would change the picture.
constexpr auto UnsupportedEmfRecords = std::to_array<NamedEmfRecord>({
    {20, "SETROP2"},
    {26, "OFFSETCLIPRGN"},
    {29, "EXCLUDECLIPRECT"},
    {41, "ANGLEARC"},
    {45, "ARC"},
    {46, "CHORD"},
    {47, "PIE"},
    {53, "EXTFLOODFILL"},
    {55, "ARCTO"},
    {56, "POLYDRAW"},
    {59, "BEGINPATH"},
    {62, "FILLPATH"},
    {63, "STROKEANDFILLPATH"},
    {64, "STROKEPATH"},
    {67, "SELECTCLIPPATH"},
    {71, "FILLRGN"},
    {72, "FRAMERGN"},
    {73, "INVERTRGN"},
    {74, "PAINTRGN"},
    {75, "EXTSELECTCLIPRGN"},
    {78, "MASKBLT"},
    {79, "PLGBLT"},
    {83, "EXTTEXTOUTA"},
    {84, "EXTTEXTOUTW"},
    {92, "POLYDRAW16"},
    {93, "CREATEMONOBRUSH"},
    {94, "CREATEDIBPATTERNBRUSHPT"},
    {96, "POLYTEXTOUTA"},
    {97, "POLYTEXTOUTW"},
    {102, "GLSRECORD"},
    {103, "GLSBOUNDEDRECORD"},
    {108, "SMALLTEXTOUT"},
    {116, "TRANSPARENTBLT"},
    {118, "GRADIENTFILL"},
});

/// Refuses a record by its name. Those that alone change nothing (palettes, colour management, how
/// text would look, comments, escapes to a printer) pass.
void RequireWithoutEffect(quint32 type) {
    constexpr quint32 LastKnown = 122;
    for (const NamedEmfRecord& record : UnsupportedEmfRecords) {
        if (record.type == type) {
            throw UnsupportedRecord{record.name, type};
        }
    }
    if (type > LastKnown) {
        throw UnsupportedRecord{nullptr, type};
    }
}

}  // namespace

bool IsEmf(QByteArrayView start) {
    return start.size() >= 44 && start.startsWith(QByteArrayView("\1\0\0\0", 4)) &&
           start.sliced(40, 4) == " EMF";
}

MetafilePicture ReadEmfHeader(QByteArrayView file) {
    constexpr double FrameUnitsPerMillimetre = 100;
    constexpr double MillimetresPerInch = 25.4;
    platform::ByteReader reader(file);
    reader.Skip(RecordHeaderSize);
    const QRectF bounds = ReadCorners<qint32>(reader);
    const QRectF frame = ReadCorners<qint32>(reader);
    reader.Skip(8);
    if (reader.Read<quint32>() > quint64(file.size())) {
        throw MetafileFault::Incomplete;
    }
    reader.Seek(72);
    const QPointF devicePixels = ReadPoint<qint32>(reader);
    const QPointF deviceMillimetres = ReadPoint<qint32>(reader);
    MetafilePicture picture;
    picture.dotsPerMillimetre = QSizeF(96, 96) / MillimetresPerInch;
    if (devicePixels.x() > 0 && devicePixels.y() > 0 && deviceMillimetres.x() > 0 &&
        deviceMillimetres.y() > 0) {
        picture.dotsPerMillimetre = {devicePixels.x() / deviceMillimetres.x(),
                                     devicePixels.y() / deviceMillimetres.y()};
    }
    const QSizeF scale = picture.dotsPerMillimetre / FrameUnitsPerMillimetre;
    picture.frame = {frame.x() * scale.width(), frame.y() * scale.height(),
                     frame.width() * scale.width(), frame.height() * scale.height()};
    if (picture.frame.width() <= 0 || picture.frame.height() <= 0) {
        picture.frame = bounds.adjusted(0, 0, 1, 1);  // the bounds are inclusive
    }
    if (picture.frame.width() <= 0 || picture.frame.height() <= 0) {
        throw MetafileFault::Damaged;
    }
    picture.widthInInches =
        picture.frame.width() / picture.dotsPerMillimetre.width() / MillimetresPerInch;
    return picture;
}

void EmfPlayer::Play() {
    qsizetype position = 0;
    while (file_.size() - position >= RecordHeaderSize) {
        platform::ByteReader header(file_.sliced(position));
        const auto type = header.Read<quint32>();
        const qint64 size = header.Read<quint32>();
        if (type == EndOfFileType) {
            return;
        }
        if (size < RecordHeaderSize || size % 4 != 0) {
            throw MetafileFault::Damaged;
        }
        if (size > file_.size() - position) {
            throw MetafileFault::Incomplete;
        }
        const QByteArrayView bytes = file_.sliced(position, size);
        Record record{type, bytes, platform::ByteReader(bytes)};
        record.reader.Skip(RecordHeaderSize);
        PlayRecord(record);
        position += size;
    }
    throw MetafileFault::Incomplete;
}

void EmfPlayer::PlayRecord(Record& record) {
    if (!(PlayMapping(record) || PlayState(record) || PlayObject(record) || PlayFigure(record) ||
          PlayPoints(record) || PlayBitmap(record))) {
        RequireWithoutEffect(record.type);
    }
}

bool EmfPlayer::PlayMapping(Record& record) {
    platform::ByteReader& reader = record.reader;
    MetafileMapping& mapping = canvas_.State().mapping;
    switch (record.type) {
        case 9:  // SETWINDOWEXTEX
            mapping.windowExtent = ReadSize<qint32>(reader);
            return true;
        case 10:  // SETWINDOWORGEX
            mapping.windowOrigin = ReadPoint<qint32>(reader);
            return true;
        case 11:  // SETVIEWPORTEXTEX
            mapping.viewportExtent = ReadSize<qint32>(reader);
            return true;
        case 12:  // SETVIEWPORTORGEX
            mapping.viewportOrigin = ReadPoint<qint32>(reader);
            return true;
        case 17:  // SETMAPMODE
            mapping.mode = reader.Read<qint32>();
            return true;
        case 31:  // SCALEVIEWPORTEXTEX
            mapping.viewportExtent = Product(mapping.viewportExtent, ReadRatio(reader));
            return true;
        case 32:  // SCALEWINDOWEXTEX
            mapping.windowExtent = Product(mapping.windowExtent, ReadRatio(reader));
            return true;
        case 35:  // SETWORLDTRANSFORM
            mapping.world = ReadTransform(reader);
            return true;
        case 36:  // MODIFYWORLDTRANSFORM
            ModifyWorld(reader);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::ModifyWorld(platform::ByteReader& reader) {
    QTransform& world = canvas_.State().mapping.world;
    const QTransform change = ReadTransform(reader);
    switch (reader.Read<quint32>()) {
        case 1:
            world = {};
            break;
        case 2:
            world = change * world;
            break;
        case 3:
            world = world * change;
            break;
        case 4:
            world = change;
            break;
        default:
            break;
    }
}

bool EmfPlayer::PlayState(Record& record) {
    platform::ByteReader& reader = record.reader;
    switch (record.type) {
        case 19:  // SETPOLYFILLMODE
            canvas_.State().fillRule =
                reader.Read<quint32>() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
            return true;
        case 20:  // SETROP2
            return reader.Read<quint32>() == CopyPen;
        case 30:  // INTERSECTCLIPRECT
            canvas_.ClipTo(ReadCorners<qint32>(reader));
            return true;
        case 33:  // SAVEDC
            canvas_.Save();
            return true;
        case 34:  // RESTOREDC
            canvas_.Restore(reader.Read<qint32>());
            return true;
        case 75:  // EXTSELECTCLIPRGN
            return SelectClipRegion(reader);
        default:
            return false;
    }
}

// A table.
bool EmfPlayer::PlayObject(Record& record) {
    platform::ByteReader& reader = record.reader;
    switch (record.type) {
        case 37:  // SELECTOBJECT
            SelectObject(reader.Read<quint32>());
            return true;
        case 38: {  // CREATEPEN
            const auto handle = reader.Read<quint32>();
            const auto style = reader.Read<quint32>();
            const double width = ReadPoint<qint32>(reader).x();
            AddObject(handle, PenFrom(style, width, ColourFrom(reader.Read<quint32>())));
            return true;
        }
        case 39: {  // CREATEBRUSHINDIRECT
            const auto handle = reader.Read<quint32>();
            const auto style = reader.Read<quint32>();
            const QColor colour = ColourFrom(reader.Read<quint32>());
            AddObject(handle, BrushFrom(style, colour, reader.Read<quint32>()));
            return true;
        }
        case 40:  // DELETEOBJECT
            objects_.erase(reader.Read<quint32>());
            return true;
        case 95: {  // EXTCREATEPEN
            constexpr quint32 Geometric = 0x00010000;
            const auto handle = reader.Read<quint32>();
            reader.Skip(16);
            const auto style = reader.Read<quint32>();
            const double width = reader.Read<quint32>();
            reader.Skip(4);
            AddObject(handle, PenFrom(style, (style & Geometric) ? width : 0,
                                      ColourFrom(reader.Read<quint32>())));
            return true;
        }
        default:
            return false;
    }
}

/// Their number has 16 bits in the header.
void EmfPlayer::AddObject(quint32 handle, Object object) {
    if (handle > std::numeric_limits<quint16>::max()) {
        throw MetafileFault::Damaged;
    }
    objects_[handle] = std::move(object);
}

void EmfPlayer::SelectObject(quint32 handle) {
    constexpr quint32 Stock = 0x80000000;
    if (handle & Stock) {
        canvas_.Select(StockObject(handle & ~Stock));
    } else if (const auto object = objects_.find(handle); object != objects_.end()) {
        canvas_.Select(object->second);
    }
}

bool EmfPlayer::SelectClipRegion(platform::ByteReader& reader) {
    constexpr quint32 Copy = 5;
    constexpr quint32 MaximumParts = 10'000;
    const auto size = reader.Read<quint32>();
    if (reader.Read<quint32>() != Copy) {
        return false;
    }
    if (size == 0) {
        canvas_.SetDeviceClip({});
        return true;
    }
    reader.Skip(8);
    const quint32 count = std::min(reader.Read<quint32>(), MaximumParts);
    reader.Skip(20);
    std::vector<QRectF> parts;
    for (quint32 i = 0; i < count; ++i) {
        parts.push_back(ReadCorners<qint32>(reader));
    }
    canvas_.SetDeviceClip(parts);
    return true;
}

}  // namespace kadrona::imaging
