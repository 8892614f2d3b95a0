#pragma once

#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>
#include <QtEndian>
#include <functional>

#include "imaging/reading/ImageReader.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::imaging::test {

using testing::Filled;
using testing::Painted;
using testing::TestPicture;

template <typename Number>
QByteArray LittleEndian(Number number) {
    QByteArray bytes(sizeof number, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

template <typename Number>
QByteArray BigEndian(Number number) {
    QByteArray bytes(sizeof number, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

/// The numbers one after the other, each as `Number`.
template <typename Number, typename... Numbers>
QByteArray Packed(Numbers... numbers) {
    return (QByteArray() + ... + LittleEndian(static_cast<Number>(numbers)));
}

/// Reads a file's bytes as a file named "probe".
LoadedImage Read(QByteArray bytes, const ReadOptions& options = {});

/// The text of the ReadError that reading ends with; empty where it succeeds.
QString Failure(const QByteArray& bytes, const ReadOptions& options = {});

QString Complaint(const char* reason);
/// What a picture is refused with whose reading would take far more memory than its pixels.
QString TooMuch();

/// "#rrggbb" of a pixel.
std::string Colour(const LoadedImage& loaded, int x, int y);

struct PixelColour {
    int x, y;
    const char* colour;
};
void ExpectColours(const LoadedImage& loaded, std::initializer_list<PixelColour> expected);

/// Expects each channel within `tolerance`.
void ExpectColour(const LoadedImage& loaded, QPoint position, QColor expected, int tolerance);

/// What Qt's plug-in writes.
QByteArray Written(const QImage& image, const char* format);

/// A GIF of 1 by 1 pixel whose frames are colour 0 (black) or 1 (red) of its table.
QByteArray Gif(std::initializer_list<int> frames);

struct JpegContent {
    QSize size{16, 16};
    /// 1: grey, 3: RGB, 4: inks as stored.
    int channels = 3;
    std::function<void(int x, int y, uchar* pixel)> pixel = [](int, int, uchar*) {};
    bool ycck = false;
    bool progressive = false;
    bool adobeMarker = true;
    QByteArray exif;
    QByteArray profile;
    int densityUnit = 0;
    int density = 1;
};
/// A JPEG of quality 100 without chroma subsampling.
QByteArray Jpeg(const JpegContent& content);

struct TiffEntry {
    quint16 tag;
    quint16 type;
    QByteArray value;
};
/// A TIFF with one directory; `pixels` is its only strip. Also an EXIF block where it is empty.
QByteArray Tiff(QList<TiffEntry> entries, const QByteArray& pixels = {});
TiffEntry Short(quint16 tag, quint16 value);
TiffEntry Rational(quint16 tag, quint32 numerator, quint32 denominator = 1);

/// As HEIF and JP2 files consist of; `type` has four letters.
QByteArray Box(const char* type, const QByteArray& content);

/// A PNG with a chunk put in behind its header.
QByteArray WithChunk(const QByteArray& png, const char* type, const QByteArray& content);
QByteArray WithProfile(const QByteArray& png, const QByteArray& profile);

/// A colour profile of tests/imaging/data, which says there what it does.
QByteArray Profile(const char* name);

}  // namespace kadrona::imaging::test
