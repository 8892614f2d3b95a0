#include "imaging/writing/RowSource.h"

#include <algorithm>
#include <cstring>
#include <opencv2/imgproc.hpp>

#include "imaging/pixels/LaidOverWhite.h"

namespace kadrona::imaging {

RowSource::RowSource(const Pixels& pixels, ChannelOrder order)
    : size_(pixels.Size()),
      period_(pixels.Arranged() != nullptr ? size_.height() : pixels.Tile().height()),
      order_(order),
      tile_(LaidOverWhite(pixels.Tile())),
      columns_(pixels.Columns()) {
    if (pixels.Arranged() != nullptr) {
        arranged_ = pixels;
    }
}

void RowSource::CopyPicture(const QImage& picture, int y, uchar* target) const {
    // OpenCV has no type for pixels that must not be written.
    auto* row = const_cast<uchar*>(picture.constScanLine(y));
    const cv::Mat from(1, picture.width(), CV_8UC4, row);
    cv::Mat to(1, picture.width(), CV_8UC3, target);
    cv::cvtColor(from, to,
                 order_ == ChannelOrder::RedFirst ? cv::COLOR_BGRA2RGB : cv::COLOR_BGRA2BGR);
}

void RowSource::CopyRow(int y, uchar* target) const {
    if (const Arrangement* arrangement = arranged_.Arranged()) {
        CopyArrangedRow(*arrangement, y, target);
        return;
    }
    CopyPicture(tile_, y % tile_.height(), target);
    const auto tileBytes = static_cast<size_t>(tile_.width()) * BytesPerPixel;
    for (int column = 1; column < columns_; ++column) {
        std::memcpy(target + column * tileBytes, target, tileBytes);
    }
}

/// Copies beside each other show the same row, which is converted once.
void RowSource::CopyArrangedRow(const Arrangement& arrangement, int y, uchar* target) const {
    constexpr uchar White = 255;
    std::fill_n(target, BytesPerRow(), White);
    const Arrangement::Placed* last = nullptr;
    for (const Arrangement::Placed& placed : arrangement.placed) {
        const QImage& picture = arrangement.pictures[placed.picture];
        const int row = y - placed.at.y();
        if (row < 0 || row >= picture.height()) {
            continue;
        }
        uchar* const to = target + qsizetype{BytesPerPixel} * placed.at.x();
        const bool isRepeated = last != nullptr && last->picture == placed.picture &&
                                last->at.y() == placed.at.y() &&
                                last->at.x() + picture.width() <= placed.at.x();
        if (isRepeated) {
            std::memcpy(to, target + qsizetype{BytesPerPixel} * last->at.x(),
                        static_cast<size_t>(picture.width()) * BytesPerPixel);
        } else {
            CopyPicture(picture, row, to);
        }
        last = &placed;
    }
    for (const Arrangement::Mark& mark : arrangement.marks) {
        if (y >= mark.area.top() && y <= mark.area.bottom()) {
            CopyMark(mark, target);
        }
    }
}

void RowSource::CopyMark(const Arrangement::Mark& mark, uchar* row) const {
    const bool redFirst = order_ == ChannelOrder::RedFirst;
    const auto first = static_cast<uchar>(redFirst ? qRed(mark.colour) : qBlue(mark.colour));
    const auto third = static_cast<uchar>(redFirst ? qBlue(mark.colour) : qRed(mark.colour));
    const int begin = std::max(mark.area.left(), 0);
    const int end = std::min(mark.area.right() + 1, Width());
    for (int x = begin; x < end; ++x) {
        uchar* const pixel = row + qsizetype{BytesPerPixel} * x;
        pixel[0] = first;
        pixel[1] = static_cast<uchar>(qGreen(mark.colour));
        pixel[2] = third;
    }
}

}  // namespace kadrona::imaging
