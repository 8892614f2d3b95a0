#include "imaging/metafile/WmfPlayer.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "imaging/metafile/MetafilePoints.h"

namespace kadrona::imaging {

namespace {

constexpr double DotsPerInchOfDevice = 96;
constexpr double MillimetresPerInch = 25.4;
constexpr quint16 EndOfFileFunction = 0;
constexpr quint16 SetWindowOriginFunction = 0x020b;
constexpr quint16 SetWindowExtentFunction = 0x020c;

struct Header {
    bool placeable = false;
    QRectF window;
    double unitsPerInch = 0;
    qsizetype recordsStart = 0;
};

Header ReadHeader(QByteArrayView file) {
    constexpr quint32 PlaceableKey = 0x9ac6cdd7;
    constexpr qsizetype PlaceableSize = 22;
    constexpr qsizetype MetaHeaderSize = 18;
    Header header;
    platform::ByteReader reader(file);
    if (reader.Read<quint32>() == PlaceableKey) {
        header.placeable = true;
        reader.Skip(2);
        header.window = ReadCorners<qint16>(reader);
        header.unitsPerInch = reader.Read<quint16>();
        header.recordsStart = PlaceableSize;
    }
    header.recordsStart += MetaHeaderSize;
    return header;
}

/// Calls `play(function, parameters)` for each record until it returns false or the end record.
template <typename Play>
void ForEachRecord(QByteArrayView file, qsizetype position, Play play) {
    constexpr qint64 RecordHeaderSize = 6;
    while (file.size() - position >= RecordHeaderSize) {
        platform::ByteReader reader(file.sliced(position));
        const qint64 size = qint64{reader.Read<quint32>()} * 2;
        const auto function = reader.Read<quint16>();
        if (size < RecordHeaderSize) {
            throw MetafileFault::Damaged;
        }
        if (size > file.size() - position) {
            throw MetafileFault::Incomplete;
        }
        platform::ByteReader parameters(
            file.sliced(position + RecordHeaderSize, size - RecordHeaderSize));
        if (function == EndOfFileFunction || !play(function, parameters)) {
            return;
        }
        position += size;
    }
    throw MetafileFault::Incomplete;
}

/// The window that the records set first.
QRectF FirstWindow(QByteArrayView file, qsizetype recordsStart) {
    QRectF window;
    ForEachRecord(file, recordsStart, [&](quint16 function, platform::ByteReader& parameters) {
        if (function == SetWindowOriginFunction) {
            window.moveTopLeft(ReadPointBackwards(parameters));
        } else if (function == SetWindowExtentFunction) {
            window.setSize(ReadSizeBackwards(parameters));
        }
        return window.width() == 0 || window.height() == 0;
    });
    return window;
}

}  // namespace

bool IsWmf(QByteArrayView start) {
    if (start.startsWith("\xd7\xcd\xc6\x9a")) {
        return true;
    }
    const QByteArrayView memory("\1\0\x9\0\0", 5);
    const QByteArrayView disk("\2\0\x9\0\0", 5);
    return start.size() >= 18 && (start.startsWith(memory) || start.startsWith(disk)) &&
           (start[5] == 1 || start[5] == 3);
}

MetafilePicture ReadWmfHeader(QByteArrayView file) {
    const Header header = ReadHeader(file);
    MetafilePicture picture;
    picture.dotsPerMillimetre =
        QSizeF(DotsPerInchOfDevice, DotsPerInchOfDevice) / MillimetresPerInch;
    picture.window = header.placeable ? header.window : FirstWindow(file, header.recordsStart);
    QSizeF size(std::abs(picture.window.width()), std::abs(picture.window.height()));
    if (size.isEmpty()) {
        throw MetafileFault::Damaged;
    }
    if (header.unitsPerInch > 0) {
        picture.widthInInches = size.width() / header.unitsPerInch;
        size *= DotsPerInchOfDevice / header.unitsPerInch;
    } else {
        // Units of an unknown length: a screenful.
        constexpr double LongestSide = 1024;
        size.scale(LongestSide, LongestSide, Qt::KeepAspectRatio);
    }
    picture.frame = {QPointF(), size};
    return picture;
}

void WmfPlayer::Play() {
    const MetafilePicture picture = ReadWmfHeader(file_);
    MetafileMapping& mapping = canvas_.State().mapping;
    mapping.mode = MetafileMapping::Anisotropic;
    mapping.windowOrigin = picture.window.topLeft();
    mapping.windowExtent = picture.window.size();
    mapping.viewportExtent = picture.frame.size();
    ForEachRecord(file_, ReadHeader(file_).recordsStart,
                  [this](quint16 function, platform::ByteReader& parameters) {
                      PlayRecord(function, parameters);
                      return true;
                  });
}

void WmfPlayer::PlayRecord(quint16 function, platform::ByteReader& parameters) {
    PlayState(function, parameters) || PlayObject(function, parameters) ||
        PlayFigure(function, parameters) || PlayPoints(function, parameters) ||
        PlayFill(function, parameters) || PlayBitmap(function, parameters);
}

// A table. The viewport and the mapping mode are ours: the window always fills the picture.
bool WmfPlayer::PlayState(quint16 function, platform::ByteReader& parameters) {
    MetafileState& state = canvas_.State();
    switch (function) {
        case 0x001e:  // SAVEDC
            canvas_.Save();
            return true;
        case 0x0102:  // SETBKMODE
            state.opaqueBackground = parameters.Read<quint16>() == 2;
            return true;
        case 0x0104:  // SETROP2
            state.rasterOperation = parameters.Read<quint16>();
            return true;
        case 0x0106:  // SETPOLYFILLMODE
            state.fillRule = parameters.Read<quint16>() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
            return true;
        case 0x0127:  // RESTOREDC
            canvas_.Restore(parameters.Read<qint16>());
            return true;
        case 0x012e:  // SETTEXTALIGN
            state.textAlignment = parameters.Read<quint16>();
            return true;
        case 0x0201:  // SETBKCOLOR
            state.backgroundColour = ColourFrom(parameters.Read<quint32>());
            return true;
        case 0x0209:  // SETTEXTCOLOR
            state.textColour = ColourFrom(parameters.Read<quint32>());
            return true;
        case SetWindowOriginFunction:
            state.mapping.windowOrigin = ReadPointBackwards(parameters);
            return true;
        case SetWindowExtentFunction:
            state.mapping.windowExtent = ReadSizeBackwards(parameters);
            return true;
        case 0x020f:  // OFFSETWINDOWORG
            state.mapping.windowOrigin += ReadPointBackwards(parameters);
            return true;
        case 0x0415:  // EXCLUDECLIPRECT
            canvas_.ClipOut(ReadCornersBackwards(parameters));
            return true;
        case 0x0416:  // INTERSECTCLIPRECT
            canvas_.ClipTo(ReadCornersBackwards(parameters));
            return true;
        default:
            return false;
    }
}

bool WmfPlayer::PlayObject(quint16 function, platform::ByteReader& parameters) {
    switch (function) {
        case 0x00f7:  // CREATEPALETTE
        case 0x01f9:  // CREATEPATTERNBRUSH, of a bitmap whose kind only the device knows
        case 0x06ff:  // CREATEREGION
            AddObject(QBrush(Qt::NoBrush));
            return true;
        case 0x012d:  // SELECTOBJECT
            if (const auto index = parameters.Read<quint16>();
                index < objects_.size() && !freePlaces_.contains(index)) {
                canvas_.Select(objects_[index]);
            }
            return true;
        case 0x0142:  // DIBCREATEPATTERNBRUSH
            CreatePatternBrush(parameters);
            return true;
        case 0x01f0:  // DELETEOBJECT
            DeleteObject(parameters.Read<quint16>());
            return true;
        case 0x02fa: {  // CREATEPENINDIRECT
            const auto style = parameters.Read<quint16>();
            const double width = ReadPoint<qint16>(parameters).x();
            AddObject(PenFrom(style, width, ColourFrom(parameters.Read<quint32>())));
            return true;
        }
        case 0x02fb:  // CREATEFONTINDIRECT
            CreateFont(parameters);
            return true;
        case 0x02fc: {  // CREATEBRUSHINDIRECT
            const auto style = parameters.Read<quint16>();
            const QColor colour = ColourFrom(parameters.Read<quint32>());
            AddObject(BrushFrom(style, colour, parameters.Read<quint16>()));
            return true;
        }
        default:
            return false;
    }
}

void WmfPlayer::AddObject(Object object) {
    if (!freePlaces_.empty()) {
        const quint16 place = *freePlaces_.begin();
        freePlaces_.erase(freePlaces_.begin());
        objects_[place] = std::move(object);
    } else if (objects_.size() < std::numeric_limits<quint16>::max()) {
        objects_.push_back(std::move(object));
    }
}

void WmfPlayer::DeleteObject(quint16 index) {
    if (index >= objects_.size()) {
        return;
    }
    objects_[index] = QBrush(Qt::NoBrush);
    freePlaces_.insert(index);
}

void WmfPlayer::CreateFont(platform::ByteReader& parameters) {
    constexpr qint64 LongestName = 32;
    MetafileFont font;
    font.height = parameters.Read<qint16>();
    parameters.Skip(2);
    font.escapementDegrees = parameters.Read<qint16>() / 10.0;
    parameters.Skip(2);
    font.weight = parameters.Read<qint16>();
    font.italic = parameters.Read<quint8>() != 0;
    font.underlined = parameters.Read<quint8>() != 0;
    font.struckOut = parameters.Read<quint8>() != 0;
    parameters.Skip(5);
    const QByteArrayView name =
        parameters.Take(std::min<qint64>(LongestName, parameters.Remaining()));
    font.family = QString::fromLatin1(name.first(qstrnlen(name.data(), size_t(name.size()))));
    AddObject(font);
}

}  // namespace kadrona::imaging
