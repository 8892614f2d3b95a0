#include "dialogs/archive/ArchiveCheckDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

#include "controls/messages/ActionGuard.h"
#include "controls/theme/Tone.h"
#include "dialogs/archive/ArchiveUpkeep.h"
#include "dialogs/base/WindowPlacement.h"
#include "platform/CountedText.h"
#include "platform/HarmlessText.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

/// A tree of more lines helps nobody; the command line names more.
constexpr int MostShownOfAKind = 500;

QString CountOf(qint64 count) {
    return QLocale(QLocale::German).toString(count);
}

QString Summary(const core::ArchiveReport& report) {
    const QString counts = u"%1, %2 unverändert, %3 zum ersten Mal aufgenommen."_s.arg(
        platform::CountedText(report.records, u"Datensatz"_s, u"Datensätze"_s),
        platform::CountedText(report.sound, u"Datei"_s, u"Dateien"_s), CountOf(report.adopted));
    if (report.findings.empty()) {
        return u"Das Archiv ist in Ordnung. "_s + counts;
    }
    const auto found = static_cast<qint64>(report.findings.size());
    return (found == 1 ? u"Ein Befund. "_s : u"%1 Befunde. "_s.arg(CountOf(found))) + counts;
}

}  // namespace

ArchiveCheckDialog::ArchiveCheckDialog(ArchiveUpkeep& upkeep, core::ArchiveReport report,
                                       QString archiveFolder, QWidget* parent)
    : QDialog(parent),
      upkeep_(upkeep),
      report_(std::move(report)),
      archiveFolder_(std::move(archiveFolder)),
      summary_(new QLabel),
      findings_(new QTreeWidget),
      advice_(new QLabel),
      btnRemedy_(new QPushButton) {
    setObjectName(u"ArchiveCheckDialog"_s);
    setWindowTitle(u"Archiv prüfen"_s);
    BuildLayout();
    connect(findings_, &QTreeWidget::currentItemChanged, this, [this] { ShowCurrent(); });
    connect(btnRemedy_, &QPushButton::clicked, this,
            [this] { controls::Guarded(this, [this] { Remedy(); }); });
    List();
}

void ArchiveCheckDialog::BuildLayout() {
    constexpr QSize CheckDialogSize(620, 420);
    summary_->setObjectName(u"Summary"_s);
    summary_->setWordWrap(true);
    findings_->setObjectName(u"Findings"_s);
    findings_->setAccessibleName(u"Befunde"_s);
    findings_->setHeaderHidden(true);
    findings_->setUniformRowHeights(true);
    findings_->setTextElideMode(Qt::ElideMiddle);
    advice_->setObjectName(u"Advice"_s);
    advice_->setWordWrap(true);
    advice_->setMinimumHeight(2 * fontMetrics().lineSpacing());
    advice_->setAlignment(Qt::AlignTop);
    btnRemedy_->setObjectName(u"btnRemedy"_s);
    // Return must not delete anything.
    btnRemedy_->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(btnRemedy_, QDialogButtonBox::ActionRole);
    auto* close = buttons->addButton(u"&Schließen"_s, QDialogButtonBox::RejectRole);
    close->setObjectName(u"btnClose"_s);
    close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->setSpacing(10);
    layout->addWidget(summary_);
    layout->addWidget(findings_, 1);
    layout->addWidget(advice_);
    layout->addWidget(buttons);
    resize(WithinScreen(*this, CheckDialogSize));
}

void ArchiveCheckDialog::List() {
    findings_->clear();
    std::map<core::ArchiveFault, std::vector<const core::ArchiveFinding*>> kinds;
    for (const core::ArchiveFinding& finding : report_.findings) {
        kinds[finding.fault].push_back(&finding);
    }
    const QDir root(archiveFolder_);
    for (const auto& [fault, found] : kinds) {
        auto* kind = new QTreeWidgetItem(
            findings_, {u"%1 (%2)"_s.arg(core::TextOf(fault).heading,
                                         CountOf(static_cast<qint64>(found.size())))});
        kind->setData(0, Qt::UserRole, static_cast<int>(fault));
        for (const core::ArchiveFinding* finding : found) {
            if (kind->childCount() == MostShownOfAKind) {
                new QTreeWidgetItem(
                    kind, {u"… und %1 weitere"_s.arg(
                              CountOf(static_cast<qint64>(found.size()) - MostShownOfAKind))});
                break;
            }
            const QString text = finding->path.isEmpty() ? u"Datensatz %1"_s.arg(finding->id)
                                                         : root.relativeFilePath(finding->path);
            new QTreeWidgetItem(kind, {platform::HarmlessLine(text)});
        }
        kind->setExpanded(true);
    }
    const bool isSound = report_.findings.empty();
    summary_->setText((isSound ? u"✓ "_s : QString()) + Summary(report_));
    controls::SetTone(*summary_, isSound ? controls::Tone::Good : controls::Tone::Plain);
    findings_->setVisible(!isSound);
    advice_->setVisible(!isSound);
    if (findings_->topLevelItemCount() > 0) {
        findings_->setCurrentItem(findings_->topLevelItem(0));
    }
    ShowCurrent();
    if (isSound) {
        resize(width(), layout()->heightForWidth(width()));  // one sentence and a button
    }
}

core::ArchiveFault ArchiveCheckDialog::CurrentFault() const {
    const QTreeWidgetItem* item = findings_->currentItem();
    item = item->parent() != nullptr ? item->parent() : item;
    return static_cast<core::ArchiveFault>(item->data(0, Qt::UserRole).toInt());
}

void ArchiveCheckDialog::ShowCurrent() {
    const bool any = findings_->currentItem() != nullptr;
    const QString remedy = any ? ArchiveUpkeep::RemedyOf(CurrentFault()) : QString();
    advice_->setText(any ? core::TextOf(CurrentFault()).advice : QString());
    btnRemedy_->setVisible(!remedy.isEmpty());
    btnRemedy_->setText(remedy);
}

void ArchiveCheckDialog::Remedy() {
    const core::ArchiveFault fault = CurrentFault();
    if (upkeep_.Remedy(fault, report_)) {
        std::erase_if(report_.findings,
                      [=](const core::ArchiveFinding& finding) { return finding.fault == fault; });
        List();
    }
}

controls::ModalResult ArchiveCheckDialog::ShowEx() {
    CentreOnParent(*this);
    return controls::ShowModal(*this);
}

}  // namespace kadrona::dialogs
