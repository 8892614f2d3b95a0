#pragma once

#include <QCache>
#include <QPixmap>
#include <QSize>

#include "controls/cards/CardSource.h"

namespace kadrona::controls {

/// A card as it is painted.
struct LoadedCard {
    Card card;
    QPixmap picture;  ///< null where there is none that can be shown
    QString failure;  ///< why the card could not be read; empty when it could
};

/// The cards that were shown last, read and decoded once.
class CardCache {
 public:
    /// Without a source every card is empty.
    void SetSource(CardSource* source);

    /// How many cards are kept; at least as many as are visible at once.
    void SetCapacity(int cards) { cards_.setMaxCost(cards); }

    /// The largest picture in logical pixels and the screen's pixels for one of them. A change
    /// forgets what was decoded for another size.
    void SetPictureBox(QSize box, double pixelRatio);

    /// Null when the card is not loaded. Valid until the next call of a member.
    const LoadedCard* Find(qint64 key) const { return cards_.object(key); }

    /// Reads the card where it is not loaded yet. Valid until the next call of a member. Never
    /// throws for what the source throws.
    const LoadedCard& Load(qint64 key);

    void Forget(qint64 key) { cards_.remove(key); }
    void Clear() { cards_.clear(); }

 private:
    QPixmap Decoded(const QByteArray& jpeg) const;

    CardSource* source_ = nullptr;
    QCache<qint64, LoadedCard> cards_{256};
    QSize box_;
    double pixelRatio_ = 1;
};

}  // namespace kadrona::controls
