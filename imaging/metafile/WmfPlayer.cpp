#include "imaging/metafile/WmfPlayer.h"

#include <algorithm>
#include <array>
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

struct NamedWmfRecord {
    quint16 function;
    const char* name;
};
/// Those that would change the picture.
constexpr auto UnsupportedWmfRecords = std::to_array<NamedWmfRecord>({
    {0x0104, "SETROP2"},
    {0x012a, "INVERTREGION"},
    {0x012b, "PAINTREGION"},
    {0x012c, "SELECTCLIPREGION"},
    {0x0142, "DIBCREATEPATTERNBRUSH"},
    {0x01f9, "CREATEPATTERNBRUSH"},
    {0x0220, "OFFSETCLIPRGN"},
    {0x0228, "FILLREGION"},
    {0x0410, "SCALEWINDOWEXT"},
    {0x0415, "EXCLUDECLIPRECT"},
    {0x0419, "FLOODFILL"},
    {0x0429, "FRAMEREGION"},
    {0x0521, "TEXTOUT"},
    {0x0548, "EXTFLOODFILL"},
    {0x0817, "ARC"},
    {0x081a, "PIE"},
    {0x0830, "CHORD"},
    {0x0922, "BITBLT"},
    {0x0a32, "EXTTEXTOUT"},
    {0x0b23, "STRETCHBLT"},
});

/// Those that alone change nothing: palettes, how text would look, the viewport, escapes.
constexpr auto RecordsWithoutEffect = std::to_array<quint16>({
    0x0035, 0x0037, 0x0102, 0x0103, 0x0105, 0x0107, 0x0108, 0x012e, 0x0139, 0x0149, 0x0201,
    0x0209, 0x020a, 0x020d, 0x020e, 0x0211, 0x0231, 0x0234, 0x0412, 0x0436, 0x0626,
});

void RequireWithoutEffect(quint16 function) {
    const auto* const unsupported = std::find_if(
        std::begin(UnsupportedWmfRecords), std::end(UnsupportedWmfRecords),
        [function](const NamedWmfRecord& record) { return record.function == function; });
    if (unsupported != std::end(UnsupportedWmfRecords)) {
        throw UnsupportedRecord{unsupported->name, function};
    }
    if (std::find(std::begin(RecordsWithoutEffect), std::end(RecordsWithoutEffect), function) ==
        std::end(RecordsWithoutEffect)) {
        throw UnsupportedRecord{nullptr, function};
    }
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
    if (!(PlayState(function, parameters) || PlayObject(function, parameters) ||
          PlayFigure(function, parameters) || PlayPoints(function, parameters) ||
          PlayFill(function, parameters) || PlayBitmap(function, parameters))) {
        RequireWithoutEffect(function);
    }
}

// A table. The viewport and the mapping mode are ours: the window always fills the picture.
bool WmfPlayer::PlayState(quint16 function, platform::ByteReader& parameters) {
    MetafileState& state = canvas_.State();
    switch (function) {
        case 0x001e:  // SAVEDC
            canvas_.Save();
            return true;
        case 0x0104:  // SETROP2
            return parameters.Read<quint16>() == CopyPen;
        case 0x0106:  // SETPOLYFILLMODE
            state.fillRule = parameters.Read<quint16>() == 2 ? Qt::WindingFill : Qt::OddEvenFill;
            return true;
        case 0x0127:  // RESTOREDC
            canvas_.Restore(parameters.Read<qint16>());
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
        case 0x02fb:  // CREATEFONTINDIRECT
        case 0x06ff:  // CREATEREGION
            AddObject({});
            return true;
        case 0x012d:  // SELECTOBJECT
            if (const auto index = parameters.Read<quint16>();
                index < objects_.size() && objects_[index]) {
                canvas_.Select(*objects_[index]);
            }
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

void WmfPlayer::AddObject(std::optional<Object> object) {
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
    objects_[index].reset();
    freePlaces_.insert(index);
}

}  // namespace kadrona::imaging
