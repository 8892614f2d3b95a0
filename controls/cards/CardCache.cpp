#include "controls/cards/CardCache.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>

#include "platform/FailureText.h"
#include "platform/HarmlessText.h"

namespace kadrona::controls {
namespace {

/// No card has room for more, and a tip with more cannot be read.
constexpr qsizetype LongestText = 1000;
/// A thumbnail that claims to be larger than this is none.
constexpr int LargestSide = 4096;

}  // namespace

void CardCache::SetSource(CardSource* source) {
    source_ = source;
    Clear();
}

void CardCache::SetPictureBox(QSize box, double pixelRatio) {
    if (box_ != box || pixelRatio_ != pixelRatio) {
        box_ = box;
        pixelRatio_ = pixelRatio;
        Clear();
    }
}

const LoadedCard& CardCache::Load(qint64 key) {
    if (const LoadedCard* loaded = Find(key)) {
        return *loaded;
    }
    auto* loaded = new LoadedCard;  // owned by the cache
    cards_.insert(key, loaded);
    if (source_ == nullptr) {
        return *loaded;
    }
    try {
        loaded->card = source_->ReadCard(key);
        loaded->card.text.truncate(LongestText);
        for (QString Card::*text : {&Card::heading, &Card::title, &Card::detail, &Card::text}) {
            loaded->card.*text = platform::HarmlessLine(loaded->card.*text);
        }
        loaded->picture = Decoded(source_->ReadPicture(key));
    } catch (...) {
        loaded->failure = platform::HarmlessText(platform::FailureText(std::current_exception()));
    }
    return *loaded;
}

/// Scaled to the screen's pixels at once, so that painting is copying.
QPixmap CardCache::Decoded(const QByteArray& jpeg) const {
    if (jpeg.isEmpty()) {
        return {};
    }
    QBuffer buffer;
    buffer.setData(jpeg);
    QImageReader reader(&buffer, "jpeg");
    const QSize size = reader.size();
    if (size.isEmpty() || std::max(size.width(), size.height()) > LargestSide) {
        return {};
    }
    const QSizeF room = QSizeF(box_) * pixelRatio_;
    const QSize scaled = size.scaled(room.toSize(), Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (scaled.width() < size.width()) {
        reader.setScaledSize(scaled);
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return {};
    }
    if (image.size() != scaled) {
        image = image.scaled(scaled, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    QPixmap picture = QPixmap::fromImage(std::move(image));
    picture.setDevicePixelRatio(pixelRatio_);
    return picture;
}

}  // namespace kadrona::controls
