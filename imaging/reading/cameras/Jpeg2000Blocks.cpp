#include "imaging/reading/cameras/Jpeg2000Blocks.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

enum Marker : quint16 {
    Size = 0xff51,
    CodingStyle = 0xff52,
    CodingStyleOfChannel = 0xff53,
    StartOfTilePart = 0xff90,
    StartOfData = 0xff93,
    EndOfCodestream = 0xffd9,
};

bool IsOtherKnown(quint16 marker) {
    constexpr std::array<quint16, 18> Known{0xff50, 0xff55, 0xff57, 0xff58, 0xff59, 0xff5c,
                                            0xff5d, 0xff5e, 0xff5f, 0xff60, 0xff61, 0xff63,
                                            0xff64, 0xff74, 0xff75, 0xff77, 0xff78, 0xff79};
    return std::find(Known.begin(), Known.end(), marker) != Known.end();
}

/// The headers of one codestream, from marker to marker.
class Headers {
 public:
    Headers(QIODevice& device, qint64 codestream, QSize tile)
        : device_(device), position_(codestream + 2), tile_(tile) {}

    /// False where something stands there that no reader knows.
    bool Walk() {
        // More parts than tiles times 255 no file may have.
        constexpr int MostMarkers = 1'000'000;
        for (int i = 0; i < MostMarkers; ++i) {
            const qint64 rest = device_.size() - position_;
            if (rest < 4) {
                return i > 0;  // cut short, which the decoder says
            }
            device_.seek(position_);
            const QByteArray start = device_.read(4);
            platform::ByteReader reader(start, platform::ByteOrder::BigEndian);
            const auto marker = reader.Read<quint16>();
            if (marker == EndOfCodestream) {
                return true;
            }
            const qint64 length = marker == StartOfData ? 0 : reader.Read<quint16>();
            if (!Enter(marker, length)) {
                return false;
            }
        }
        return false;
    }
    Jpeg2000Work Work(int channels) const {
        return {smallest_, layers_ * resolutions_ * precincts_ * channels};
    }

 private:
    /// Takes in what the segment says, and goes behind it.
    bool Enter(quint16 marker, qint64 length) {
        const qint64 begin = position_;
        position_ += 2 + length;
        switch (marker) {
            case Size:
                return !std::exchange(hasSize_, true);
            case CodingStyle:
                return TakeIn(begin + 4, length - 2, 0, true);
            case CodingStyleOfChannel:
                return TakeIn(begin + 4, length - 2, 1, false);  // of one of four channels
            case StartOfTilePart: {
                constexpr qint64 PartLength = 6;
                device_.seek(begin + PartLength);
                const QByteArray bytes = device_.read(4);
                const qint64 part =
                    platform::ByteReader(bytes, platform::ByteOrder::BigEndian).Read<quint32>();
                partEnd_ = part == 0 ? device_.size() : begin + part;
                return true;
            }
            case StartOfData:
                position_ = std::max(position_, partEnd_);
                return true;
            default:
                return IsOtherKnown(marker);
        }
    }

    /// Of a coding style, `before` bytes behind the segment's start; that of all channels says
    /// more.
    bool TakeIn(qint64 position, qint64 length, int before, bool isOfAll) {
        constexpr qint64 Longest = 60;
        constexpr int MostLevels = 32;
        device_.seek(position + before);
        const QByteArray bytes = device_.read(std::clamp<qint64>(length - before, 0, Longest));
        platform::ByteReader reader(bytes, platform::ByteOrder::BigEndian);
        const bool hasPrecincts = (reader.Read<quint8>() & 1) != 0;
        if (isOfAll) {
            reader.Skip(1);
            layers_ = std::max<qint64>(layers_, reader.Read<quint16>());
            reader.Skip(1);
        }
        const int levels = std::min<int>(reader.Read<quint8>(), MostLevels);
        resolutions_ = std::max<qint64>(resolutions_, levels + 1);
        const int width = (reader.Read<quint8>() & 15) + 2;
        const int height = (reader.Read<quint8>() & 15) + 2;
        reader.Skip(2);
        Note(width, height);
        for (int level = 0; hasPrecincts && level <= levels; ++level) {
            const int precinct = reader.Read<quint8>();
            NotePrecincts(levels - level, precinct & 15, precinct >> 4);
            // Of all but the coarsest level each of three bands has a quarter.
            const int halved = level > 0 ? 1 : 0;
            Note(std::min(width, (precinct & 15) - halved),
                 std::min(height, (precinct >> 4) - halved));
        }
        return true;
    }

    void Note(int width, int height) {
        // Of four bits each: a header may name sizes that no number holds.
        const int bits = std::max(width, 0) + std::max(height, 0);
        constexpr int UsualBits = 12;
        static_assert(1 << UsualBits == UsualJpeg2000Block);
        smallest_ = std::min(smallest_, 1 << std::min(bits, UsualBits));
    }

    /// Of a resolution that is the tile's halved so often; at its edges two may be cut.
    void NotePrecincts(int halvings, int width, int height) {
        const auto count = [halvings](qint64 length, int exponent) {
            return (length >> halvings >> exponent) + 2;
        };
        precincts_ =
            std::max(precincts_, count(tile_.width(), width) * count(tile_.height(), height));
    }

    QIODevice& device_;
    qint64 position_;
    QSize tile_;
    qint64 partEnd_ = 0;
    bool hasSize_ = false;
    int smallest_ = UsualJpeg2000Block;
    qint64 layers_ = 1;
    qint64 resolutions_ = 1;
    qint64 precincts_ = 4;  // where nothing is said: each as large as a tile, but not in its place
};

}  // namespace

std::optional<Jpeg2000Work> WorkOfJpeg2000Tile(QIODevice& device, qint64 codestream, QSize tile,
                                               int channels) try {
    Headers headers(device, codestream, tile);
    if (!headers.Walk()) {
        return {};
    }
    return headers.Work(channels);
} catch (const platform::OutOfBytes&) {
    return {};
}

}  // namespace kadrona::imaging
