#pragma once

#include <QIODevice>
#include <vector>

#include "platform/ByteReader.h"

namespace kadrona::imaging {

/// A field of a TIFF directory.
struct TiffField {
    quint16 tag = 0;
    quint16 type = 0;
    quint32 count = 0;
    /// Where its values stand in the file.
    qint64 position = 0;
};

/// Bytes of one value of a field's type, those of BigTIFF included; 0 for types that nobody knows.
qint64 TiffValueSize(quint16 type);

/// The directories of an untrusted TIFF file with offsets of 32 bits, or of an EXIF block, which is
/// one (TIFF 6.0, section 2). All of it moves the device and throws platform::OutOfBytes where the
/// file does not hold what is asked for.
class TiffFields {
 public:
    /// Whether a file is to be read as well that says a number of its maker's instead of 42, as
    /// raw files of some cameras do.
    enum class Kind { Tiff, AnyMakers };

    /// The device outlives the object.
    explicit TiffFields(QIODevice& device, Kind kind = Kind::Tiff);

    /// Where the first directory stands.
    quint32 First() const { return first_; }
    std::vector<TiffField> Directory(quint32 position) const;
    /// Where the one behind it stands; 0 behind the last.
    quint32 Following(quint32 position) const;

    /// One of a field's short numbers, or long ones where it has not such.
    quint32 Number(const TiffField& field, quint32 index = 0) const;
    /// The first of its unsigned fractions; 0 where that is divided by 0.
    double Fraction(const TiffField& field) const;

 private:
    platform::ByteReader ReaderOf(const QByteArray& bytes) const {
        return platform::ByteReader(bytes, order_);
    }

    QIODevice& device_;
    platform::ByteOrder order_;
    quint32 first_;
};

}  // namespace kadrona::imaging
