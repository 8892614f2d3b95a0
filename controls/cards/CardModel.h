#pragma once

#include <QAbstractListModel>
#include <chrono>
#include <vector>

#include "controls/cards/CardCache.h"

namespace kadrona::controls {

/// The cards of a grid, a row each. A card is read only when it is asked for.
class CardModel : public QAbstractListModel {
    Q_OBJECT

 public:
    using QAbstractListModel::QAbstractListModel;

    /// The source outlives the model or its next source; null for none.
    void SetSource(CardSource* source);
    CardCache& Cache() { return cache_; }

    void SetKeys(std::vector<qint64> keys);
    const std::vector<qint64>& Keys() const { return keys_; }
    qint64 KeyOf(const QModelIndex& index) const { return keys_[static_cast<size_t>(index.row())]; }
    /// The row of a key; an invalid index where it is not among the keys.
    QModelIndex IndexOf(qint64 key) const;

    /// Reads a card anew the next time.
    void Reload(qint64 key);
    void ReloadAll() { cache_.Clear(); }

    /// The card for painting. Null when it is not read yet and the time for reading is over, see
    /// StartFrame. Valid until the next card is asked for.
    const LoadedCard* Painted(const QModelIndex& index) const;

    /// From now on cards are read for painting until the time is over, but at least one of them.
    void StartFrame(std::chrono::microseconds budget);
    /// Some card of the frame was not read.
    bool IsFrameIncomplete() const { return incomplete_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    /// The card's texts, for assistive technology. Reads the card.
    QVariant data(const QModelIndex& index, int role) const override;

 private:
    using Clock = std::chrono::steady_clock;

    std::vector<qint64> keys_;
    // Reading a card changes nothing that the model shows.
    mutable CardCache cache_;
    mutable bool mayRead_ = true;
    mutable bool incomplete_ = false;
    Clock::time_point deadline_ = Clock::time_point::max();
};

}  // namespace kadrona::controls
