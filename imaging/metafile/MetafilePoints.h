#pragma once

#include <QPolygonF>
#include <QRectF>

#include "imaging/metafile/MetafileFault.h"
#include "platform/ByteReader.h"

namespace kadrona::imaging {

/// Points and rectangles as metafiles store them. All throw platform::OutOfBytes.

/// Of one record: the painter takes a kilobyte for each of a line's.
inline constexpr qint64 MostPoints = 200'000;

inline void RequireFewPoints(qint64 count) {
    if (count > MostPoints) {
        throw MetafileFault::TooComplex;
    }
}

/// Two numbers, x before y.
template <typename Coordinate>
QPointF ReadPoint(platform::ByteReader& reader) {
    const auto x = reader.Read<Coordinate>();
    const auto y = reader.Read<Coordinate>();
    return QPointF(x, y);
}

template <typename Coordinate>
QPolygonF ReadPoints(platform::ByteReader& reader, qint64 count) {
    if (count > reader.Remaining() / qint64{2 * sizeof(Coordinate)}) {
        throw platform::OutOfBytes();
    }
    RequireFewPoints(count);
    QPolygonF points;
    points.reserve(count);
    for (qint64 i = 0; i < count; ++i) {
        points << ReadPoint<Coordinate>(reader);
    }
    return points;
}

template <typename Coordinate>
QSizeF ReadSize(platform::ByteReader& reader) {
    const QPointF size = ReadPoint<Coordinate>(reader);
    return {size.x(), size.y()};
}

/// Left, top, right, bottom.
template <typename Coordinate>
QRectF ReadCorners(platform::ByteReader& reader) {
    const QPointF topLeft = ReadPoint<Coordinate>(reader);
    return {topLeft, ReadPoint<Coordinate>(reader)};
}

/// WMF stores nearly everything backwards: y before x.
inline QPointF ReadPointBackwards(platform::ByteReader& reader) {
    const auto y = reader.Read<qint16>();
    return {qreal(reader.Read<qint16>()), qreal(y)};
}

inline QSizeF ReadSizeBackwards(platform::ByteReader& reader) {
    const QPointF size = ReadPointBackwards(reader);
    return {size.x(), size.y()};
}

/// Bottom, right, top, left.
inline QRectF ReadCornersBackwards(platform::ByteReader& reader) {
    const QPointF bottomRight = ReadPointBackwards(reader);
    return {ReadPointBackwards(reader), bottomRight};
}

/// Height, width, top, left.
inline QRectF ReadRectangleBackwards(platform::ByteReader& reader) {
    const QSizeF size = ReadSizeBackwards(reader);
    return {ReadPointBackwards(reader), size};
}

}  // namespace kadrona::imaging
