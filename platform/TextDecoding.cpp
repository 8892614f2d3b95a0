#include "platform/TextDecoding.h"

#include <array>

namespace kadrona::platform {
namespace {

// Windows-1252 from 0x80 to 0x9F; the five codes it leaves open stand for the control character of
// the same number. Every other byte is the Latin-1 character.
constexpr std::array<char16_t, 32> Windows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Number of bytes of the valid UTF-8 sequence that starts at `position`, 0 where there is none.
qsizetype SequenceLength(QByteArrayView bytes, qsizetype position) {
    const auto lead = uchar(bytes[position]);
    if (lead < 0x80) {
        return 1;
    }
    const qsizetype length = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
    if (length == 0 || position + length > bytes.size()) {
        return 0;
    }
    // Overlong forms, surrogates and code points above U+10FFFF are all ruled out by Qt.
    return bytes.sliced(position, length).isValidUtf8() ? length : 0;
}

}  // namespace

QChar FromWindows1252(uchar byte) {
    return byte >= 0x80 && byte < 0xA0 ? QChar(Windows1252[byte - 0x80]) : QChar(ushort(byte));
}

QString DecodeText(QByteArrayView bytes) {
    QString text;
    qsizetype runStart = 0;
    const auto flushRun = [&](qsizetype end) {
        text += QString::fromUtf8(bytes.sliced(runStart, end - runStart));
    };
    // The common case, a file that is UTF-8 throughout, is one run.
    qsizetype position = bytes.isValidUtf8() ? bytes.size() : 0;
    while (position < bytes.size()) {
        const qsizetype length = SequenceLength(bytes, position);
        if (length == 0) {
            flushRun(position);
            text += FromWindows1252(uchar(bytes[position]));
            runStart = position + 1;
        }
        position += qMax(length, qsizetype(1));
    }
    flushRun(position);

    text.remove(QChar::Null);
    while (text.startsWith(QChar::ByteOrderMark)) {
        text.remove(0, 1);
    }
    return text;
}

}  // namespace kadrona::platform
