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
constexpr quint32 MaskBltType = 78;
constexpr quint32 SetDibitsToDeviceType = 80;
constexpr quint32 StretchDibitsType = 81;
constexpr quint32 AlphaBlendType = 114;
constexpr quint32 TransparentBltType = 116;

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
        case 45:  // ARC
            DrawArc(reader, ArcKind::Open);
            return true;
        case 46:  // CHORD
            DrawArc(reader, ArcKind::Chord);
            return true;
        case 47:  // PIE
            DrawArc(reader, ArcKind::Pie);
            return true;
        case 54:  // LINETO
            canvas_.DrawFromPosition({ReadPoint<qint32>(reader)}, false);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::DrawArc(platform::ByteReader& reader, ArcKind kind) {
    const QRectF box = ReadCorners<qint32>(reader);
    const QPointF start = ReadPoint<qint32>(reader);
    const QPointF end = ReadPoint<qint32>(reader);
    canvas_.Draw(ArcPath(box, start, end, kind, canvas_.State().arcsClockwise),
                 kind == ArcKind::Open ? ShapePainting::Stroke : ShapePainting::FillAndStroke);
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
        case MaskBltType:
        case AlphaBlendType:
        case TransparentBltType:
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
    const bool stretches = record.type != BitBltType && record.type != MaskBltType;
    drawing.source.setSize(stretches ? ReadSize<qint32>(reader) : drawing.target.size());
    if (record.type == AlphaBlendType) {  // the operation is a BLENDFUNCTION
        drawing.opacity = (operation >> 16 & 0xff) / 255.0;
        if (operation >> 24 == PremultipliedAlpha) {
            drawing.alpha = BitmapAlpha::Premultiplied;
        }
    } else if (record.type != TransparentBltType) {
        drawing.rasterOperation = operation;
    }
    canvas_.Draw(drawing);
}

void EmfPlayer::CreatePatternBrush(Record& record) {
    constexpr qint64 MaximumPatternPixels = 1 << 20;
    const auto handle = record.reader.Read<quint32>();
    const bool hasOwnColours = record.reader.Read<quint32>() == 0;
    BitmapView bitmap = ReadBitmap(record.reader, record.bytes);
    bitmap.hasOwnColours = hasOwnColours;
    const QImage image = DecodeBitmap(bitmap, BitmapAlpha::Ignored, MaximumPatternPixels);
    objects_[handle] = image.isNull() ? QBrush(Qt::NoBrush) : QBrush(image);
}

bool EmfPlayer::PlayText(Record& record) {
    switch (record.type) {
        case 83:  // EXTTEXTOUTA
        case 84:  // EXTTEXTOUTW
            DrawExtendedText(record);
            return true;
        case 108:  // SMALLTEXTOUT
            DrawSmallText(record.reader);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::DrawExtendedText(Record& record) {
    constexpr quint32 GlyphIndices = 0x10;
    constexpr quint32 TwoAdvances = 0x2000;
    platform::ByteReader& reader = record.reader;
    reader.Skip(BoundsSize + 12);  // the graphics mode and its scales
    TextDrawing drawing;
    drawing.reference = ReadPoint<qint32>(reader);
    const auto count = reader.Read<quint32>();
    const auto textOffset = reader.Read<quint32>();
    drawing.options = reader.Read<quint32>();
    drawing.rectangle = ReadCorners<qint32>(reader);
    const auto advancesOffset = reader.Read<quint32>();

    platform::ByteReader text(record.bytes);
    text.Seek(textOffset);
    if (record.type == 83) {
        drawing.text = QString::fromLatin1(text.Take(count));
    } else {
        const QByteArrayView bytes = text.Take(qint64{count} * 2);
        platform::ByteReader characters(bytes);
        while (characters.Remaining() > 0) {
            drawing.text.append(QChar(characters.Read<quint16>()));
        }
    }
    if (advancesOffset != 0 && !(drawing.options & TwoAdvances)) {
        platform::ByteReader advances(record.bytes);
        advances.Seek(advancesOffset);
        for (quint32 i = 0; i < count && advances.Remaining() >= 4; ++i) {
            drawing.advances.push_back(advances.Read<quint32>());
        }
    }
    // The numbers of a font's glyphs mean nothing in another font.
    if (!(drawing.options & GlyphIndices)) {
        canvas_.Draw(drawing);
    }
}

void EmfPlayer::DrawSmallText(platform::ByteReader& reader) {
    constexpr quint32 NoRectangle = 0x100;
    constexpr quint32 SmallCharacters = 0x200;
    TextDrawing drawing;
    drawing.reference = ReadPoint<qint32>(reader);
    const auto count = reader.Read<quint32>();
    drawing.options = reader.Read<quint32>();
    reader.Skip(12);  // the graphics mode and its scales
    if (!(drawing.options & NoRectangle)) {
        drawing.rectangle = ReadCorners<qint32>(reader);
    }
    if (drawing.options & SmallCharacters) {
        drawing.text = QString::fromLatin1(reader.Take(count));
    } else {
        platform::ByteReader characters(reader.Take(qint64{count} * 2));
        while (characters.Remaining() > 0) {
            drawing.text.append(QChar(characters.Read<quint16>()));
        }
    }
    canvas_.Draw(drawing);
}

}  // namespace kadrona::imaging
