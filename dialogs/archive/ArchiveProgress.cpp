#include "dialogs/archive/ArchiveProgress.h"

#include <QScopeGuard>
#include <QWidget>
#include <utility>

#include "core/Data.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

ArchiveProgress::ArchiveProgress(core::TData& data, QWidget& archive, QWidget* over, QString title)
    : data_(data),
      archive_(archive),
      over_(over),
      title_(std::move(title)),
      what_(u"Auf den Server des Bildarchivs wird gewartet …"_s) {
    data_.Archiving().WhileWaiting([this] { ShowWaiting(); });
}

ArchiveProgress::~ArchiveProgress() {
    data_.Archiving().WhileWaiting({});
}

platform::Progress ArchiveProgress::Reporter() {
    return [this](const QString& what, qint64 done, qint64 total) {
        what_ = what;
        done_ = done;
        total_ = total;
        Show();
    };
}

void ArchiveProgress::Show() {
    if (!box_) {
        show_ = box_.emplace(over_, title_).Reporter();
    }
    show_(what_, done_, total_);
}

/// The server answers one question at a time: cards are not read now.
void ArchiveProgress::ShowWaiting() {
    archive_.setUpdatesEnabled(false);
    const auto paintAgain = qScopeGuard([this] { archive_.setUpdatesEnabled(true); });
    Show();
}

}  // namespace kadrona::dialogs
