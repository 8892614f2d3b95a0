#include <QAction>
#include <QMenu>

#include "controls/fields/FindPanel.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "core/Data.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveRetention.h"
#include "core/archive/WaitingSearch.h"
#include "dialogs/archive/ArchiveCheckDialog.h"
#include "dialogs/archive/ArchiveFilterBar.h"
#include "dialogs/archive/ArchiveWindow.h"
#include "dialogs/archive/LimitDialog.h"
#include "platform/Error.h"
#include "platform/UserRegistry.h"

/// What the archive's window does with several photos and with the whole archive.
namespace kadrona::dialogs {

using namespace Qt::StringLiterals;

namespace {

/// Of the registry: whether cards without a photo are left out.
const QString HideBlankValue = u"ArchiveHideBlank"_s;

}  // namespace

void TfmImgSearch::BuildArchiveMenu() {
    acArchive_ = AddAction(u"acArchive"_s, u"Archiv"_s, u"archive"_s);
    auto* menu = new QMenu(this);
    acArchive_->setMenu(menu);
    const auto add = [&](const QString& name, const QString& caption,
                         void (TfmImgSearch::*execute)()) {
        QAction* action = AddAction(name, caption, {});
        connect(action, &QAction::triggered, this,
                [this, execute] { controls::Guarded(this, [&] { (this->*execute)(); }); });
        menu->addAction(action);
        return action;
    };
    acExport_ = add(u"acExport"_s, u"Ausgewählte &exportieren …"_s, &TfmImgSearch::acExportExecute);
    acExportFound_ = add(u"acExportFound"_s, u"Alle &gefundenen exportieren …"_s,
                         &TfmImgSearch::acExportFoundExecute);
    acDeleteFound_ = add(u"acDeleteFound"_s, u"Alle ge&fundenen löschen …"_s,
                         &TfmImgSearch::acDeleteFoundExecute);
    menu->addSeparator();
    acDue_ = add(u"acDue"_s, u"Fäll&ige Bilder"_s, &TfmImgSearch::acDueExecute);
    acDue_->setCheckable(true);
    acKeepUntil_ = add(u"acKeepUntil"_s, u"Lösch&datum …"_s, &TfmImgSearch::acKeepUntilExecute);
    add(u"acRetention"_s, u"Auf&bewahrung …"_s, &TfmImgSearch::acRetentionExecute);
    menu->addSeparator();
    add(u"acBackUp"_s, u"Archiv &sichern …"_s, &TfmImgSearch::acBackUpExecute);
    add(u"acCheck"_s, u"Archiv &prüfen …"_s, &TfmImgSearch::acCheckExecute);
    menu->addSeparator();
    acHideBlank_ =
        add(u"acHideBlank"_s, u"Leere Karten a&usblenden"_s, &TfmImgSearch::acHideBlankExecute);
    acHideBlank_->setCheckable(true);
    acHideBlank_->setChecked(platform::ReadRegistryInteger(HideBlankValue) != 0);
    acDeleteBlank_ = add(u"acDeleteBlank"_s, u"&Leere Datensätze löschen …"_s,
                         &TfmImgSearch::acDeleteBlankExecute);
}

/// A database that is gone is told by whoever does something with it.
bool TfmImgSearch::HasOriginal(qint64 id) const {
    try {
        return core::ReadOriginal(data_.ArchiveDatabase(), id).has_value();
    } catch (const platform::Error&) {
        return false;
    }
}

void TfmImgSearch::UpdateActions() {
    const bool one = grid_->Current().has_value();
    acPrintImg_->setEnabled(one);
    acPrintNow_->setEnabled(one);
    acEditTags_->setEnabled(one);
    acRecut_->setEnabled(one && HasOriginal(*grid_->Current()));
    const bool some = !grid_->Selected().empty();
    acDelete_->setEnabled(some);
    acExport_->setEnabled(some);
    acKeepUntil_->setEnabled(some);
}

void TfmImgSearch::acDeleteExecute() {
    if (upkeep_.Delete({grid_->Selected()})) {
        ListAgain();
    }
}

void TfmImgSearch::acHideBlankExecute() {
    platform::WriteRegistryInteger(HideBlankValue, acHideBlank_->isChecked() ? 1 : 0);
    ListAgain();
}

void TfmImgSearch::acDeleteBlankExecute() {
    if (upkeep_.DeleteBlank(blank_)) {
        ListAgain();
    }
}

ChosenPhotos TfmImgSearch::Found() const {
    return {.ids = grid_->Cards(), .waiting = waiting_};
}

/// What waits on this computer is found as if it were filed: it is data of persons, too.
void TfmImgSearch::FindWaitingPhotos() {
    core::WaitingFilter filter{.text = findPanel_->Text(), .period = filterBar_->Period()};
    if (acDue_->isChecked()) {
        store::Database& database = data_.ArchiveDatabase();
        filter.dueOn = Today();
        filter.retentionMonths = core::RetentionMonths(database);
        filter.newestFiled = core::FindDuePhotos(database, Today()).newestFiled;
    }
    waiting_ = core::FindWaiting(data_.Archiving().Queue(), filter);
}

void TfmImgSearch::acDeleteFoundExecute() {
    if (upkeep_.Delete(Found())) {
        ListAgain();
    }
}

void TfmImgSearch::acExportExecute() {
    upkeep_.Export({grid_->Selected()}, u"Export"_s);
}

void TfmImgSearch::acExportFoundExecute() {
    upkeep_.Export(Found(), u"Export "_s + findPanel_->Text());
}

void TfmImgSearch::acBackUpExecute() {
    upkeep_.BackUp();
}

void TfmImgSearch::acCheckExecute() {
    if (auto report = upkeep_.Check()) {
        ArchiveCheckDialog(upkeep_, *std::move(report), archiveFolder_, this).ShowEx();
        ListAgain();
    }
}

QDate TfmImgSearch::Today() const {
    return data_.NameSources().now().date();
}

void TfmImgSearch::acDueExecute() {
    if (acDue_->isChecked()) {
        core::DuePhotos due;
        const bool known =
            WaitedFor([&] { due = core::FindDuePhotos(data_.ArchiveDatabase(), Today()); });
        acDue_->setChecked(known && due.refusal.isEmpty());
        if (!known) {
            return;
        }
        for (const QString& text : {due.refusal, due.remark}) {
            if (!text.isEmpty()) {
                controls::ShowInformation(this, text);
            }
        }
    }
    ListAgain();
}

void TfmImgSearch::acKeepUntilExecute() {
    store::Database& database = data_.ArchiveDatabase();
    const std::vector<qint64> ids = grid_->Selected();
    const auto day =
        AskForDay(this, core::KeepUntil(database, grid_->Current().value_or(0)), Today());
    if (day) {
        core::SetKeepUntil(database, ids, *day, Today());
        ListAgain();
    }
}

void TfmImgSearch::acRetentionExecute() {
    store::Database& database = data_.ArchiveDatabase();
    if (const auto months = AskForPeriod(this, core::RetentionMonths(database))) {
        core::SetRetentionMonths(database, *months);
        ListAgain();
    }
}

}  // namespace kadrona::dialogs
