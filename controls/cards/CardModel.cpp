#include "controls/cards/CardModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::controls {

void CardModel::SetSource(CardSource* source) {
    beginResetModel();
    cache_.SetSource(source);
    endResetModel();
}

void CardModel::SetKeys(std::vector<qint64> keys) {
    beginResetModel();
    keys_ = std::move(keys);
    endResetModel();
}

QModelIndex CardModel::IndexOf(qint64 key) const {
    const auto found = std::ranges::find(keys_, key);
    return found == keys_.end() ? QModelIndex() : index(static_cast<int>(found - keys_.begin()));
}

void CardModel::Reload(qint64 key) {
    cache_.Forget(key);
    const QModelIndex changed = IndexOf(key);
    Q_EMIT dataChanged(changed, changed);
}

const LoadedCard* CardModel::Painted(const QModelIndex& index) const {
    const qint64 key = KeyOf(index);
    const LoadedCard* loaded = cache_.Find(key);
    if (loaded == nullptr && mayRead_) {
        loaded = &cache_.Load(key);
        mayRead_ = Clock::now() < deadline_;
    }
    incomplete_ = incomplete_ || loaded == nullptr;
    return loaded;
}

void CardModel::StartFrame(std::chrono::microseconds budget) {
    deadline_ = Clock::now() + budget;
    mayRead_ = true;
    incomplete_ = false;
}

int CardModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(keys_.size());
}

QVariant CardModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
        return {};
    }
    const LoadedCard& loaded = cache_.Load(KeyOf(index));
    if (!loaded.failure.isEmpty()) {
        return loaded.failure;
    }
    QStringList texts{loaded.card.title, loaded.card.heading, loaded.card.detail, loaded.card.text};
    texts.removeAll(QString());
    return texts.join(u", "_s);
}

}  // namespace kadrona::controls
