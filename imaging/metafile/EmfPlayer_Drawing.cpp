// The records of an EMF that draw.
#include "imaging/metafile/EmfPlayer.h"
#include "imaging/metafile/MetafilePoints.h"
#include "imaging/metafile/MetafileShapes.h"

namespace kadrona::imaging {

namespace {

constexpr qsizetype BoundsSize = 16;

// Records of BitBlt's family.
constexpr quint32 BitBltType = 76;
constexpr quint32 StretchBltType = 77;
constexpr quint32 SetDibitsToDeviceType = 80;
constexpr quint32 StretchDibitsType = 81;
constexpr quint32 AlphaBlendType = 114;

/// The bitmap that four numbers tell: offset and size of its header and of its pixels.
BitmapView ReadBitmap(platform::ByteReader& reader, QByteArrayView record) {
    const auto part = [&] {
        platform::ByteReader whole(record);
        whole.Seek(reader.Read<quint32>());
        return whole.Take(reader.Read<quint32>());
    };
    const QByteArrayView information = part();
    return {information, part(), true};
}

}  // namespace

bool EmfPlayer::PlayFigure(Record& record) {
    platform::ByteReader& reader = record.reader;
    switch (record.type) {
        case 15: {  // SETPIXELV
            const QPointF point = ReadPoint<qint32>(reader);
            canvas_.SetPixel(point, ColourFrom(reader.Read<quint32>()));
            return true;
        }
        case 27:  // MOVETOEX
            canvas_.MoveTo(ReadPoint<qint32>(reader));
            return true;
        case 42:  // ELLIPSE
            canvas_.Draw(EllipsePath(ReadCorners<qint32>(reader)), ShapePainting::FillAndStroke);
            return true;
        case 43:  // RECTANGLE
            canvas_.Draw(RectanglePath(ReadCorners<qint32>(reader)), ShapePainting::FillAndStroke);
            return true;
        case 44: {  // ROUNDRECT
            const QRectF rectangle = ReadCorners<qint32>(reader);
            canvas_.Draw(RoundRectanglePath(rectangle, ReadSize<qint32>(reader)),
                         ShapePainting::FillAndStroke);
            return true;
        }
        case 54:  // LINETO
            canvas_.DrawFromPosition({ReadPoint<qint32>(reader)}, false);
            return true;
        default:
            return false;
    }
}

bool EmfPlayer::PlayPoints(Record& record) {
    // The records with 16-bit points, 85 to 91, follow the order of those with 32 bits, 2 to 8.
    constexpr quint32 Narrower = 83;
    const bool wide = record.type >= 2 && record.type <= 8;
    if (!wide && (record.type < 2 + Narrower || record.type > 8 + Narrower)) {
        return false;
    }
    record.reader.Skip(BoundsSize);
    if (wide) {
        DrawPoints<qint32>(record.reader, record.type);
    } else {
        DrawPoints<qint16>(record.reader, record.type - Narrower);
    }
    return true;
}

template <typename Coordinate>
void EmfPlayer::DrawPoints(platform::ByteReader& reader, quint32 wideType) {
    if (wideType >= 7) {  // POLYPOLYLINE, POLYPOLYGON
        DrawManyPolygons<Coordinate>(reader, wideType == 8);
        return;
    }
    const auto count = reader.Read<quint32>();
    const QPolygonF points = ReadPoints<Coordinate>(reader, count);
    switch (wideType) {
        case 2:  // POLYBEZIER
            canvas_.Draw(BezierPath(points), ShapePainting::Stroke);
            break;
        case 3:  // POLYGON
            canvas_.Draw(PolygonPath(points), ShapePainting::FillAndStroke);
            break;
        case 4:  // POLYLINE
            canvas_.Draw(PolylinePath(points), ShapePainting::Stroke);
            break;
        case 5:  // POLYBEZIERTO
            canvas_.DrawFromPosition(points, true);
            break;
        default:  // POLYLINETO
            canvas_.DrawFromPosition(points, false);
            break;
    }
}

template <typename Coordinate>
void EmfPlayer::DrawManyPolygons(platform::ByteReader& reader, bool closed) {
    const auto polygons = reader.Read<quint32>();
    reader.Skip(4);
    platform::ByteReader counts(reader.Take(qint64{polygons} * 4));
    QPainterPath path;
    while (counts.Remaining() > 0) {
        path.addPolygon(ReadPoints<Coordinate>(reader, counts.Read<quint32>()));
        RequireFewPoints(path.elementCount());
        if (closed) {
            path.closeSubpath();
        }
    }
    canvas_.Draw(path, closed ? ShapePainting::FillAndStroke : ShapePainting::Stroke);
}

bool EmfPlayer::PlayBitmap(Record& record) {
    platform::ByteReader& reader = record.reader;
    switch (record.type) {
        case BitBltType:
        case StretchBltType:
        case AlphaBlendType:
            BlitBitmap(record);
            return true;
        case SetDibitsToDeviceType:
        case StretchDibitsType:
            break;
        default:
            return false;
    }
    reader.Skip(BoundsSize);
    BitmapDrawing drawing;
    drawing.target.moveTopLeft(ReadPoint<qint32>(reader));
    drawing.source.moveTopLeft(ReadPoint<qint32>(reader));
    drawing.source.setSize(ReadSize<qint32>(reader));
    drawing.bitmap = ReadBitmap(reader, record.bytes);
    drawing.bitmap.hasOwnColours = reader.Read<quint32>() == 0;
    if (record.type == StretchDibitsType) {
        drawing.rasterOperation = reader.Read<quint32>();
        drawing.target.setSize(ReadSize<qint32>(reader));
    } else {
        drawing.target.setSize(drawing.source.size());
    }
    if (drawing.bitmap.information.isEmpty()) {
        return true;
    }
    drawing.source = CountedFromTop(drawing.source, drawing.bitmap.information);
    canvas_.Draw(drawing);
    return true;
}

void EmfPlayer::BlitBitmap(Record& record) {
    constexpr quint32 PremultipliedAlpha = 1;
    constexpr qsizetype TransformSize = 24;
    platform::ByteReader& reader = record.reader;
    reader.Skip(BoundsSize);
    BitmapDrawing drawing;
    drawing.target.moveTopLeft(ReadPoint<qint32>(reader));
    drawing.target.setSize(ReadSize<qint32>(reader));
    const auto operation = reader.Read<quint32>();
    drawing.source.moveTopLeft(ReadPoint<qint32>(reader));
    reader.Skip(TransformSize + 4);
    const bool hasOwnColours = reader.Read<quint32>() == 0;
    drawing.bitmap = ReadBitmap(reader, record.bytes);
    drawing.bitmap.hasOwnColours = hasOwnColours;
    if (drawing.bitmap.information.isEmpty()) {
        canvas_.FillRectangle(drawing.target, operation);
        return;
    }
    drawing.source.setSize(record.type != BitBltType ? ReadSize<qint32>(reader)
                                                     : drawing.target.size());
    if (record.type == AlphaBlendType) {  // the operation is a BLENDFUNCTION
        drawing.opacity = (operation >> 16 & 0xff) / 255.0;
        if (operation >> 24 == PremultipliedAlpha) {
            drawing.alpha = BitmapAlpha::Premultiplied;
        }
    } else {
        drawing.rasterOperation = operation;
    }
    canvas_.Draw(drawing);
}

}  // namespace kadrona::imaging
