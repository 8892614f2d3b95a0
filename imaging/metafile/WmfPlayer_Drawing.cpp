// The records of a WMF that draw.
#include "imaging/metafile/MetafilePoints.h"
#include "imaging/metafile/MetafileShapes.h"
#include "imaging/metafile/WmfPlayer.h"

namespace kadrona::imaging {

namespace {

constexpr quint16 DibBitBltFunction = 0x0940;
constexpr quint16 DibStretchBltFunction = 0x0b41;
constexpr quint16 SetDibToDeviceFunction = 0x0d33;
constexpr quint16 StretchDibFunction = 0x0f43;

}  // namespace

// A table.
bool WmfPlayer::PlayFigure(quint16 function, platform::ByteReader& parameters) {
    switch (function) {
        case 0x0213:  // LINETO
            canvas_.DrawFromPosition({ReadPointBackwards(parameters)}, false);
            return true;
        case 0x0214:  // MOVETO
            canvas_.MoveTo(ReadPointBackwards(parameters));
            return true;
        case 0x0418:  // ELLIPSE
            canvas_.Draw(EllipsePath(ReadCornersBackwards(parameters)),
                         ShapePainting::FillAndStroke);
            return true;
        case 0x041b:  // RECTANGLE
            canvas_.Draw(RectanglePath(ReadCornersBackwards(parameters)),
                         ShapePainting::FillAndStroke);
            return true;
        case 0x041f: {  // SETPIXEL
            const QColor colour = ColourFrom(parameters.Read<quint32>());
            canvas_.SetPixel(ReadPointBackwards(parameters), colour);
            return true;
        }
        case 0x061c: {  // ROUNDRECT
            const QSizeF corner = ReadSizeBackwards(parameters);
            canvas_.Draw(RoundRectanglePath(ReadCornersBackwards(parameters), corner),
                         ShapePainting::FillAndStroke);
            return true;
        }
        default:
            return false;
    }
}

bool WmfPlayer::PlayPoints(quint16 function, platform::ByteReader& parameters) {
    switch (function) {
        case 0x0324: {  // POLYGON
            const auto count = parameters.Read<quint16>();
            canvas_.Draw(PolygonPath(ReadPoints<qint16>(parameters, count)),
                         ShapePainting::FillAndStroke);
            return true;
        }
        case 0x0325: {  // POLYLINE
            const auto count = parameters.Read<quint16>();
            canvas_.Draw(PolylinePath(ReadPoints<qint16>(parameters, count)),
                         ShapePainting::Stroke);
            return true;
        }
        case 0x0538: {  // POLYPOLYGON
            const auto polygons = parameters.Read<quint16>();
            platform::ByteReader counts(parameters.Take(qint64{polygons} * 2));
            QPainterPath path;
            while (counts.Remaining() > 0) {
                path.addPath(PolygonPath(ReadPoints<qint16>(parameters, counts.Read<quint16>())));
                RequireFewPoints(path.elementCount());
            }
            canvas_.Draw(path, ShapePainting::FillAndStroke);
            return true;
        }
        default:
            return false;
    }
}

bool WmfPlayer::PlayFill(quint16 function, platform::ByteReader& parameters) {
    constexpr quint16 PatBlt = 0x061d;
    constexpr qsizetype DibBitBltWithoutBitmap = 18;
    const bool withoutBitmap =
        function == DibBitBltFunction && parameters.Remaining() <= DibBitBltWithoutBitmap;
    if (function != PatBlt && !withoutBitmap) {
        return false;
    }
    const auto operation = parameters.Read<quint32>();
    if (withoutBitmap) {
        parameters.Skip(6);
    }
    canvas_.FillRectangle(ReadRectangleBackwards(parameters), operation);
    return true;
}

bool WmfPlayer::PlayBitmap(quint16 function, platform::ByteReader& parameters) {
    BitmapDrawing drawing;
    bool hasOwnColours = true;
    switch (function) {
        case SetDibToDeviceFunction:
            hasOwnColours = parameters.Read<quint16>() == 0;
            parameters.Skip(4);
            [[fallthrough]];
        case DibBitBltFunction:
            if (function == DibBitBltFunction) {
                drawing.rasterOperation = parameters.Read<quint32>();
            }
            drawing.source.moveTopLeft(ReadPointBackwards(parameters));
            drawing.target = ReadRectangleBackwards(parameters);
            drawing.source.setSize(drawing.target.size());
            break;
        case DibStretchBltFunction:
        case StretchDibFunction:
            drawing.rasterOperation = parameters.Read<quint32>();
            if (function == StretchDibFunction) {
                hasOwnColours = parameters.Read<quint16>() == 0;
            }
            drawing.source = ReadRectangleBackwards(parameters);
            drawing.target = ReadRectangleBackwards(parameters);
            break;
        default:
            return false;
    }
    drawing.bitmap = SplitPackedBitmap(parameters.Take(parameters.Remaining()));
    drawing.bitmap.hasOwnColours = hasOwnColours;
    if (function == SetDibToDeviceFunction || function == StretchDibFunction) {
        drawing.source = CountedFromTop(drawing.source, drawing.bitmap.information);
    }
    canvas_.Draw(drawing);
    return true;
}

}  // namespace kadrona::imaging
