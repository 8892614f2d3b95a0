#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QtEndian>
#include <exception>
#include <type_traits>

class QIODevice;

namespace kadrona::platform {

/// A ByteReader was asked for more bytes than it holds.
class OutOfBytes : public std::exception {
 public:
    const char* what() const noexcept override { return "data ends early"; }
};

enum class ByteOrder { LittleEndian, BigEndian };

/// Reads numbers from untrusted bytes one after the other. Never reads beyond them: throws
/// OutOfBytes instead. Does not own the bytes.
class ByteReader {
 public:
    explicit ByteReader(QByteArrayView bytes, ByteOrder order = ByteOrder::LittleEndian)
        : bytes_(bytes), order_(order) {}

    qsizetype Remaining() const { return bytes_.size() - position_; }
    qsizetype Position() const { return position_; }

    /// The next integer or IEEE float.
    template <typename Number>
    Number Read() {
        static_assert(std::is_arithmetic_v<Number>);
        const char* source = Take(sizeof(Number)).data();
        return order_ == ByteOrder::LittleEndian ? qFromLittleEndian<Number>(source)
                                                 : qFromBigEndian<Number>(source);
    }

    QByteArrayView Take(qint64 count) {
        if (count < 0 || count > Remaining()) {
            throw OutOfBytes();
        }
        const QByteArrayView taken = bytes_.sliced(position_, count);
        position_ += count;
        return taken;
    }

    void Skip(qint64 count) { Take(count); }

    /// Continues at `position`, counted from the first byte.
    void Seek(qint64 position) {
        if (position < 0 || position > bytes_.size()) {
            throw OutOfBytes();
        }
        position_ = position;
    }

 private:
    QByteArrayView bytes_;
    ByteOrder order_;
    qsizetype position_ = 0;
};

/// Exactly `count` bytes at `position` of a device, which they move. Throws OutOfBytes where it has
/// not as many.
QByteArray BytesAt(QIODevice& device, qint64 position, qint64 count);

}  // namespace kadrona::platform
