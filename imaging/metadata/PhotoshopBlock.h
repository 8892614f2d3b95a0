#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <vector>

/// The block of image resources that Photoshop invented and that JPEG files keep their IPTC
/// metadata in. It lies in one or more segments APP13, each with a signature in front:
///
///     "8BIM"  number (2)  name, its length before it, even in all  length (4)  content, even
namespace kadrona::imaging {

/// Marks a segment APP13 as a part of the block.
inline constexpr QByteArrayView PhotoshopSignature{"Photoshop 3.0\0", 14};

/// The IIM stream of a block that may come from anywhere; empty where there is none. The view
/// points into the block.
QByteArrayView IptcStream(QByteArrayView block);

/// The block with `stream` in the place of its IIM stream. The other resources stay as they are; a
/// rest that makes no sense is left out.
QByteArray WithIptcStream(QByteArrayView block, QByteArrayView stream);

/// The contents of the segments that a block takes, signature included; none for an empty block.
std::vector<QByteArray> PhotoshopSegments(QByteArrayView block);

}  // namespace kadrona::imaging
