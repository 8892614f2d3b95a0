#pragma once

#include <QByteArray>
#include <QString>

namespace kadrona::controls {

/// The texts of one card in the order in which they stand on it; the picture stands between the
/// first two. All are plain text.
struct Card {
    QString heading;
    QString title;
    QString detail;
    QString text;  ///< on as many lines as the card has room for
};

/// Where a card grid takes what it shows. A card is read when it comes into view, and again when
/// it was out of view for long. What a member throws stands on the card in place of its content.
class CardSource {
 public:
    virtual ~CardSource() = default;

    virtual Card ReadCard(qint64 key) = 0;
    /// The card's picture as the bytes of a JPEG file; empty where it has none.
    virtual QByteArray ReadPicture(qint64 key) = 0;
};

}  // namespace kadrona::controls
