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

constexpr qint64 Countless = 1LL << 30;  // that of two no product overflows

void Note(CodedPictures& found, qint64 pixels, bool isDeep, int chroma) {
    found.pixels = std::max(found.pixels, pixels);
    found.isDeep = found.isDeep || isDeep;
    found.chroma = std::max(found.chroma, chroma);
}

/// A sequence parameter set (ITU-T H.265, 7.3.2.2 and 7.3.3).
void NoteHevcSequence(QByteArrayView unit, CodedPictures& found) {
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
    const quint32 chroma = bits.ReadExponential();
    bits.Skip(chroma == EachColourWhole ? 1 : 0);
    const qint64 width = std::min<qint64>(bits.ReadExponential(), Countless);
    const qint64 height = std::min<qint64>(bits.ReadExponential(), Countless);
    for (int left = bits.ReadFlag() ? 4 : 0; left > 0; --left) {  // what is cut off
        bits.ReadExponential();
    }
    const bool isDeep = bits.ReadExponential() > 0 || bits.ReadExponential() > 0;
    Note(found, width * height, isDeep, chroma == EachColourWhole ? 4 : chroma == 2 ? 2 : 1);
}

void CountHevcUnit(QByteArrayView unit, CodedPictures& found) {
    constexpr int FirstThatIsNoPicture = 32;
    constexpr int SequenceParameters = 33;
    ++found.units;
    if (unit.size() < 3) {
        return;
    }
    const int type = static_cast<uchar>(unit[0]) >> 1 & 63;
    const bool beginsPicture = (static_cast<uchar>(unit[2]) & 0x80) != 0;
    if (type == SequenceParameters) {
        NoteHevcSequence(unit, found);
    } else if (type < FirstThatIsNoPicture && beginsPicture) {
        ++found.pictures;
    }
}

/// Of a sequence header (AV1, 5.5) what a frame's header cannot be read without.
struct Av1Sequence {
    qint64 Pixels() const { return (width + 1) * (height + 1); }
    /// Of the largest frame whose size its own header may say.
    qint64 MostPixels() const { return qint64{1} << (widthBits + heightBits); }

    bool isReduced = false;
    bool hasModel = false;
    bool hasEqualTimes = false;
    int timeBits = 0;
    int widthBits = 1;
    int heightBits = 1;
    qint64 width = 0;  // less one, as the height
    qint64 height = 0;
    int numberBits = 0;
    int orderBits = 0;
    quint32 screenTools = 2;  // 2: each frame says it
    quint32 wholeVectors = 2;
    bool isDeep = false;
    int chroma = 1;  // as CodedPictures has it
};

/// What says when a picture is to be shown, up to the operating points (AV1, 5.5.1).
void ReadTimes(BitReader& bits, Av1Sequence& sequence) {
    const bool hasTimes = bits.ReadFlag();
    int delayBits = 0;
    if (hasTimes) {
        bits.Skip(64);
        sequence.hasEqualTimes = bits.ReadFlag();
        if (sequence.hasEqualTimes) {
            bits.ReadExponential();
        }
        sequence.hasModel = bits.ReadFlag();
        if (sequence.hasModel) {
            delayBits = static_cast<int>(bits.Read(5)) + 1;
            bits.Skip(37);
            sequence.timeBits = static_cast<int>(bits.Read(5)) + 1;
        }
    }
    const bool hasDelays = bits.ReadFlag();
    for (quint32 left = bits.Read(5) + 1; left > 0; --left) {
        constexpr quint32 LastLevelWithoutTier = 7;
        bits.Skip(12);
        bits.Skip(bits.Read(5) > LastLevelWithoutTier ? 1 : 0);
        bits.Skip(sequence.hasModel && bits.ReadFlag() ? 2 * delayBits + 1 : 0);
        bits.Skip(hasDelays && bits.ReadFlag() ? 4 : 0);
    }
}

/// The tools of what is no reduced header.
void ReadTools(BitReader& bits, Av1Sequence& sequence) {
    bits.Skip(4);
    const bool hasOrder = bits.ReadFlag();
    bits.Skip(hasOrder ? 2 : 0);
    sequence.screenTools = bits.ReadFlag() ? 2 : bits.Read(1);
    if (sequence.screenTools > 0) {
        sequence.wholeVectors = bits.ReadFlag() ? 2 : bits.Read(1);
    }
    sequence.orderBits = hasOrder ? static_cast<int>(bits.Read(3)) + 1 : 0;
}

/// AV1, 5.5.2.
void ReadColours(BitReader& bits, quint32 profile, Av1Sequence& sequence) {
    constexpr quint32 Fine = 1;
    constexpr quint32 Professional = 2;
    sequence.isDeep = bits.ReadFlag();
    const bool isTwelve = profile == Professional && sequence.isDeep && bits.ReadFlag();
    if (profile != Fine && bits.ReadFlag()) {  // grey
        return;
    }
    constexpr quint32 Identity = 0;
    quint32 matrix = 2;
    if (bits.ReadFlag()) {
        bits.Skip(16);
        matrix = bits.Read(8);
    }
    if (isTwelve && matrix != Identity) {
        bits.Skip(1);
        const bool isHalfAsWide = bits.ReadFlag();
        sequence.chroma = !isHalfAsWide ? 4 : bits.ReadFlag() ? 1 : 2;
    } else {
        sequence.chroma = profile == Fine || isTwelve ? 4 : profile == Professional ? 2 : 1;
    }
}

Av1Sequence ReadAv1Sequence(QByteArrayView header) {
    Av1Sequence sequence;
    BitReader bits(header);
    const quint32 profile = bits.Read(3);
    bits.Skip(1);
    sequence.isReduced = bits.ReadFlag();
    if (sequence.isReduced) {
        bits.Skip(5);
    } else {
        ReadTimes(bits, sequence);
    }
    sequence.widthBits = static_cast<int>(bits.Read(4)) + 1;
    sequence.heightBits = static_cast<int>(bits.Read(4)) + 1;
    sequence.width = bits.Read(sequence.widthBits);
    sequence.height = bits.Read(sequence.heightBits);
    if (!sequence.isReduced && bits.ReadFlag()) {
        const int difference = static_cast<int>(bits.Read(4)) + 2;
        sequence.numberBits = difference + static_cast<int>(bits.Read(3)) + 1;
    }
    bits.Skip(3);
    if (!sequence.isReduced) {
        ReadTools(bits, sequence);
    }
    bits.Skip(3);
    ReadColours(bits, profile, sequence);
    return sequence;
}

/// Of a frame's header (AV1, 5.9.2): its own size where it says one. Only that of a key frame that
/// is shown is read; of others it counts as the largest one.
qint64 PixelsOfAv1Frame(QByteArrayView header, const Av1Sequence& sequence) {
    BitReader bits(header);
    if (sequence.isReduced || bits.ReadFlag()) {  // or one that is there is shown
        return 0;
    }
    constexpr quint32 KeyFrame = 0;
    constexpr quint32 SwitchFrame = 3;
    const quint32 type = bits.Read(2);
    const bool isShown = bits.ReadFlag();
    bits.Skip(isShown && sequence.hasModel && !sequence.hasEqualTimes ? sequence.timeBits : 0);
    const bool isShownKey = type == KeyFrame && isShown;
    bits.Skip((isShown ? 0 : 1) + (isShownKey || type == SwitchFrame ? 0 : 1) + 1);
    const bool hasScreenTools =
        sequence.screenTools == 2 ? bits.ReadFlag() : sequence.screenTools != 0;
    bits.Skip((hasScreenTools && sequence.wholeVectors == 2 ? 1 : 0) + sequence.numberBits);
    if (type != SwitchFrame && !bits.ReadFlag()) {
        return 0;
    }
    if (!isShownKey || sequence.hasModel) {
        return sequence.MostPixels();
    }
    bits.Skip(sequence.orderBits);
    const qint64 width = qint64{bits.Read(sequence.widthBits)} + 1;
    return width * (qint64{bits.Read(sequence.heightBits)} + 1);
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

/// The open bitstream units of `bytes` (AV1, 5.3), which `sequence` goes on with. What is cut short
/// the decoder says.
void CountAv1Units(QByteArrayView bytes, Av1Sequence& sequence, CodedPictures& found) {
    constexpr int SequenceHeader = 1;
    constexpr int FrameHeader = 3;
    constexpr int Frame = 6;
    constexpr int RedundantFrameHeader = 7;  // which decoders take where there was none yet
    platform::ByteReader reader(bytes, platform::ByteOrder::BigEndian);
    while (reader.Remaining() > 0) {
        ++found.units;
        const auto header = reader.Read<quint8>();
        const int type = header >> 3 & 15;
        reader.Skip((header & 4) != 0 ? 1 : 0);
        const qint64 length =
            (header & 2) != 0 && reader.Remaining() > 0 ? ReadLeb128(reader) : reader.Remaining();
        const QByteArrayView content = reader.Take(std::min<qint64>(length, reader.Remaining()));
        if (type == SequenceHeader) {
            sequence = ReadAv1Sequence(content);
            Note(found, sequence.Pixels(), sequence.isDeep, sequence.chroma);
        } else if (type == FrameHeader || type == Frame || type == RedundantFrameHeader) {
            found.pixels = std::max(found.pixels, PixelsOfAv1Frame(content, sequence));
            ++found.pictures;
        }
    }
}

}  // namespace

CodedPictures CodedHevcPictures(QByteArrayView configuration, QByteArrayView data) {
    constexpr int BeforeLengthSize = 21;
    constexpr int LengthSize = sizeof(quint32);
    CodedPictures found;
    platform::ByteReader reader(configuration, platform::ByteOrder::BigEndian);
    reader.Skip(BeforeLengthSize);
    if ((reader.Read<quint8>() & 3) + 1 != LengthSize) {
        throw platform::OutOfBytes();  // libheif would read them as if it said four
    }
    for (int arrays = reader.Read<quint8>(); arrays > 0; --arrays) {
        reader.Skip(1);
        for (int units = reader.Read<quint16>(); units > 0; --units) {
            CountHevcUnit(reader.Take(reader.Read<quint16>()), found);
        }
    }
    platform::ByteReader units(data, platform::ByteOrder::BigEndian);
    while (units.Remaining() >= LengthSize) {
        const auto length = units.Read<quint32>();
        CountHevcUnit(units.Take(std::min<qint64>(length, units.Remaining())), found);
    }
    return found;
}

CodedPictures CodedAv1Pictures(QByteArrayView configuration, QByteArrayView data) {
    constexpr qsizetype BeforeUnits = 4;
    CodedPictures found;
    Av1Sequence sequence;
    if (configuration.size() > BeforeUnits) {
        CountAv1Units(configuration.sliced(BeforeUnits), sequence, found);
    }
    CountAv1Units(data, sequence, found);
    return found;
}

}  // namespace kadrona::imaging
