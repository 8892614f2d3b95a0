#include "imaging/reading/cameras/CodedPixels.h"

#include <algorithm>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

namespace {

/// Bits of untrusted bytes, the highest of a byte first. Throws platform::OutOfBytes at their end.
class BitReader {
 public:
    explicit BitReader(QByteArrayView bytes) : bytes_(bytes) {}

    /// Of at most 32 bits.
    quint32 Read(int count) {
        quint32 value = 0;
        for (; count > 0; --count, ++position_) {
            if (position_ / 8 >= bytes_.size()) {
                throw platform::OutOfBytes();
            }
            const auto byte = static_cast<uchar>(bytes_[position_ / 8]);
            value = value << 1 | (byte >> (7 - position_ % 8) & 1);
        }
        return value;
    }
    bool ReadFlag() { return Read(1) != 0; }
    void Skip(int count) { position_ += count; }

    /// As many bits as zeros stand before them (Exp-Golomb, ITU-T H.265, 9.2).
    quint32 ReadExponential() {
        int zeros = 0;
        while (!ReadFlag()) {
            if (++zeros == 32) {
                throw platform::OutOfBytes();
            }
        }
        return (1U << zeros) - 1 + Read(zeros);
    }

 private:
    QByteArrayView bytes_;
    qint64 position_ = 0;
};

/// ITU-T H.265, 7.4.1.1: a three after two zeros is no part of what is said.
QByteArray WithoutPrevention(QByteArrayView bytes) {
    constexpr qsizetype AllThatIsAsked = 400;
    QByteArray plain;
    int zeros = 0;
    for (const char byte : bytes.first(std::min(bytes.size(), AllThatIsAsked))) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        plain.append(byte);
    }
    return plain;
}

/// Of a sequence parameter set (ITU-T H.265, 7.3.2.2 and 7.3.3).
qint64 PixelsOfHevcSequence(QByteArrayView unit) {
    constexpr int UnitHeader = 16;
    constexpr int ProfileAndLevel = 96;
    const QByteArray plain = WithoutPrevention(unit);
    BitReader bits(plain);
    bits.Skip(UnitHeader + 4);
    const quint32 furtherLayers = bits.Read(3);
    bits.Skip(1 + ProfileAndLevel);
    int skipped = 0;
    for (quint32 i = 0; i < furtherLayers; ++i) {
        skipped += bits.ReadFlag() ? 88 : 0;
        skipped += bits.ReadFlag() ? 8 : 0;
    }
    bits.Skip(skipped + (furtherLayers > 0 ? 2 * (8 - static_cast<int>(furtherLayers)) : 0));
    bits.ReadExponential();
    constexpr quint32 EachColourWhole = 3;
    if (bits.ReadExponential() == EachColourWhole) {
        bits.Skip(1);
    }
    constexpr quint32 Countless = 1U << 30;  // that of two no product overflows
    const qint64 width = std::min(bits.ReadExponential(), Countless);
    return width * std::min(bits.ReadExponential(), Countless);
}

void CountHevcUnit(QByteArrayView unit, CodedPictures& found) {
    constexpr int FirstThatIsNoPicture = 32;
    constexpr int SequenceParameters = 33;
    if (unit.size() < 3) {
        return;
    }
    const int type = static_cast<uchar>(unit[0]) >> 1 & 63;
    const bool beginsPicture = (static_cast<uchar>(unit[2]) & 0x80) != 0;
    if (type == SequenceParameters) {
        found.pixels = std::max(found.pixels, PixelsOfHevcSequence(unit));
    } else if (type < FirstThatIsNoPicture && beginsPicture) {
        ++found.pictures;
    }
}

/// What says when a picture is to be shown, up to the operating points (AV1, 5.5.1).
void SkipTimes(BitReader& bits) {
    const bool hasTimes = bits.ReadFlag();
    bool hasModel = false;
    int delayBits = 0;
    if (hasTimes) {
        bits.Skip(64);
        if (bits.ReadFlag()) {
            bits.ReadExponential();
        }
        hasModel = bits.ReadFlag();
        delayBits = hasModel ? static_cast<int>(bits.Read(5)) + 1 : 0;
        bits.Skip(hasModel ? 42 : 0);
    }
    const bool hasDelays = bits.ReadFlag();
    for (quint32 left = bits.Read(5) + 1; left > 0; --left) {
        constexpr quint32 LastLevelWithoutTier = 7;
        bits.Skip(12);
        bits.Skip(bits.Read(5) > LastLevelWithoutTier ? 1 : 0);
        bits.Skip(hasModel && bits.ReadFlag() ? 2 * delayBits + 1 : 0);
        bits.Skip(hasDelays && bits.ReadFlag() ? 4 : 0);
    }
}

/// Of a sequence header (AV1, 5.5.1).
qint64 PixelsOfAv1Sequence(QByteArrayView header) {
    BitReader bits(header);
    bits.Skip(4);
    const bool isReduced = bits.ReadFlag();
    if (isReduced) {
        bits.Skip(5);
    } else {
        SkipTimes(bits);
    }
    const int widthBits = static_cast<int>(bits.Read(4)) + 1;
    const int heightBits = static_cast<int>(bits.Read(4)) + 1;
    const qint64 width = qint64{bits.Read(widthBits)} + 1;
    return width * (qint64{bits.Read(heightBits)} + 1);
}

/// A number of seven bits a byte, the lowest first (AV1, 4.10.5).
qint64 ReadLeb128(platform::ByteReader& reader) {
    qint64 value = 0;
    for (int shift = 0; shift < 56; shift += 7) {
        const auto byte = reader.Read<quint8>();
        value |= qint64{byte & 127} << shift;
        if (byte < 128) {
            return value;
        }
    }
    throw platform::OutOfBytes();
}

/// The open bitstream units of `bytes` (AV1, 5.3). What is cut short the decoder says.
void CountAv1Units(QByteArrayView bytes, CodedPictures& found) {
    constexpr int SequenceHeader = 1;
    constexpr int FrameHeader = 3;
    constexpr int Frame = 6;
    platform::ByteReader reader(bytes, platform::ByteOrder::BigEndian);
    while (reader.Remaining() > 0) {
        const auto header = reader.Read<quint8>();
        const int type = header >> 3 & 15;
        reader.Skip((header & 4) != 0 ? 1 : 0);
        const qint64 length =
            (header & 2) != 0 && reader.Remaining() > 0 ? ReadLeb128(reader) : reader.Remaining();
        const QByteArrayView content = reader.Take(std::min<qint64>(length, reader.Remaining()));
        if (type == SequenceHeader) {
            found.pixels = std::max(found.pixels, PixelsOfAv1Sequence(content));
        } else if (type == FrameHeader || type == Frame) {
            ++found.pictures;
        }
    }
}

}  // namespace

CodedPictures CodedHevcPictures(QByteArrayView configuration, QByteArrayView data) {
    constexpr int BeforeLengthSize = 21;
    CodedPictures found;
    platform::ByteReader reader(configuration, platform::ByteOrder::BigEndian);
    reader.Skip(BeforeLengthSize);
    const int lengthSize = (reader.Read<quint8>() & 3) + 1;
    for (int arrays = reader.Read<quint8>(); arrays > 0; --arrays) {
        reader.Skip(1);
        for (int units = reader.Read<quint16>(); units > 0; --units) {
            CountHevcUnit(reader.Take(reader.Read<quint16>()), found);
        }
    }
    platform::ByteReader units(data, platform::ByteOrder::BigEndian);
    while (units.Remaining() >= lengthSize) {
        qint64 length = 0;
        for (int i = 0; i < lengthSize; ++i) {
            length = length << 8 | units.Read<quint8>();
        }
        CountHevcUnit(units.Take(std::min<qint64>(length, units.Remaining())), found);
    }
    return found;
}

CodedPictures CodedAv1Pictures(QByteArrayView configuration, QByteArrayView data) {
    constexpr qsizetype BeforeUnits = 4;
    CodedPictures found;
    if (configuration.size() > BeforeUnits) {
        CountAv1Units(configuration.sliced(BeforeUnits), found);
    }
    CountAv1Units(data, found);
    return found;
}

}  // namespace kadrona::imaging
