#include "dialogs/archive/ArchiveWindow.h"

#include <QAction>
#include <QApplication>
#include <QLocale>
#include <QMenu>
#include <QScopeGuard>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "controls/commands/CommandBar.h"
#include "controls/fields/FindPanel.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/theme/Icons.h"
#include "core/Data.h"
#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveRetention.h"
#include "dialogs/archive/ArchiveCards.h"
#include "dialogs/archive/ArchiveFilterBar.h"
#include "dialogs/archive/ArchiveProgress.h"
#include "dialogs/archive/ImageTags.h"
#include "dialogs/base/WindowPlacement.h"
#include "platform/CountedText.h"
#include "platform/Progress.h"
#include "platform/SilenceWatch.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize ArchiveWindowSize(1000, 740);
constexpr QSize LeastSize(420, 420);
constexpr std::chrono::milliseconds BetweenLooks(1000);
/// The window's section of the layout file.
const QString LayoutSection = u"fmImgSearch"_s;

QString CountText(size_t found, size_t all, bool searching) {
    const QLocale german(QLocale::German);
    const auto number = [&](size_t count) {
        return german.toString(static_cast<qulonglong>(count));
    };
    if (searching) {
        return u"%1 von %2"_s.arg(number(found), number(all));
    }
    return platform::CountedText(static_cast<qint64>(all), u"Bild"_s, u"Bilder"_s);
}

}  // namespace

TfmImgSearch::TfmImgSearch(core::TData& data, TfmImageTagEdit& tagEditor, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      data_(data),
      tagEditor_(tagEditor),
      cards_(std::make_unique<ArchiveCards>(data)),
      upkeep_(data, *this),
      findPanel_(new controls::FindPanel(this)),
      filterBar_(new ArchiveFilterBar(this)),
      grid_(new controls::CardGrid(this)),
      look_(new QTimer(this)) {
    setObjectName(LayoutSection);
    setWindowTitle(u"Bild Archiv"_s);
    BuildActions();
    BuildLayout();
    connect(findPanel_, &controls::FindPanel::Searched, this,
            [this](const QString& text) { controls::Guarded(this, [&] { Search(text); }); });
    connect(filterBar_, &ArchiveFilterBar::Changed, this,
            [this] { controls::Guarded(this, [this] { ListAgain(); }); });
    connect(findPanel_, &controls::FindPanel::Left, grid_, [this] {
        if (!grid_->Cards()
                 .empty()) {  // else Escape, which shows all again, would close the window
            grid_->setFocus(Qt::OtherFocusReason);
        }
    });
    connect(grid_, &controls::CardGrid::CurrentChanged, this, [this] {
        data_.SetCurrentRecord(grid_->Current().value_or(0));
        UpdateActions();
    });
    connect(grid_, &controls::CardGrid::SelectionChanged, this, [this] { UpdateActions(); });
    connect(grid_, &controls::CardGrid::CardOpened, acPrintImg_, &QAction::trigger);
    look_->setInterval(BetweenLooks);
    connect(look_, &QTimer::timeout, this, [this] {
        if (!controls::Guarded(this, [this] { ShowChanges(); })) {
            look_->stop();  // an archive that is gone is said once
        }
    });
}

TfmImgSearch::~TfmImgSearch() = default;

QAction* TfmImgSearch::AddAction(const QString& name, const QString& caption, const QString& icon) {
    auto* action = new QAction(controls::Icon(icon), caption, this);
    action->setObjectName(name);
    addAction(action);
    return action;
}

void TfmImgSearch::BuildActions() {
    acPrintImg_ = AddAction(u"acPrintImg"_s, u"zum Druck öffnen"_s, u"print"_s);
    connect(acPrintImg_, &QAction::triggered, this, [this] { Choose(Choice::Open); });
    acPrintNow_ = AddAction(u"acPrintNow"_s, u"Sofort drucken"_s, {});
    acPrintNow_->setShortcut(QKeySequence::Print);
    connect(acPrintNow_, &QAction::triggered, this, [this] { Choose(Choice::Print); });
    acRecut_ = AddAction(u"acRecut"_s, u"Neu zuschneiden"_s, u"create-photos"_s);
    connect(acRecut_, &QAction::triggered, this, [this] { Choose(Choice::Recut); });
    acEditTags_ = AddAction(u"acEditTags"_s, u"Tags bearbeiten"_s, u"tags"_s);
    connect(acEditTags_, &QAction::triggered, this,
            [this] { controls::Guarded(this, [this] { acEditTagsExecute(); }); });
    acDelete_ = AddAction(u"acDelete"_s, u"Löschen …"_s, u"delete"_s);
    acDelete_->setShortcut(Qt::Key_Delete);
    // In the search field the key deletes a letter.
    acDelete_->setShortcutContext(Qt::WidgetShortcut);
    connect(acDelete_, &QAction::triggered, this,
            [this] { controls::Guarded(this, [this] { acDeleteExecute(); }); });
    BuildArchiveMenu();
    acClose_ = AddAction(u"acClose"_s, u"Fenster schließen"_s, u"quit"_s);
    acClose_->setShortcut(Qt::CTRL | Qt::Key_Q);
    connect(acClose_, &QAction::triggered, this, &QDialog::reject);
    QAction* search = AddAction(u"acSearchImg"_s, u"Suche"_s, u"search"_s);
    search->setShortcut(Qt::CTRL | Qt::Key_F);
    connect(search, &QAction::triggered, findPanel_, &controls::FindPanel::TakeFocus);
    QAction* clear = AddAction(u"acClearSearch"_s, u"Abbruch"_s, u"clear"_s);
    connect(clear, &QAction::triggered, findPanel_, &controls::FindPanel::Clear);
}

void TfmImgSearch::Choose(Choice choice) {
    choice_ = choice;
    accept();
}

void TfmImgSearch::BuildLayout() {
    auto* bar = new controls::CommandBar(u"Bild Archiv"_s, this);
    for (QAction* action : {acPrintImg_, acEditTags_, acRecut_, acDelete_, acArchive_, acClose_}) {
        controls::CommandButton* button = bar->AddAction(action, controls::Caption::Shown);
        if (action == acArchive_) {
            button->setPopupMode(QToolButton::InstantPopup);
            button->style()->unpolish(button);
            button->style()->polish(button);  // leaves room for the arrow
            connect(action, &QAction::triggered, button, &QToolButton::showMenu);  // by a key
            // The mouse leaves the button unseen where an entry opens a dialog.
            connect(action->menu(), &QMenu::aboutToHide, button, [button] {
                button->setAttribute(Qt::WA_UnderMouse, false);
                button->update();
            });
        }
    }
    findPanel_->setObjectName(u"FindPanel"_s);
    findPanel_->SetSyntaxTip(
        u"Suche"_s,
        u"In Datum, Dateiname, Schablone und Schlüsselworten; alle Wörter müssen vorkommen.\n\n"
        u"Ber*n: * steht für beliebige Zeichen\n"
        u"\"Anna Berg\": die Wörter stehen nebeneinander\n"
        u"-Berlin: das Wort kommt nicht vor"_s);
    grid_->setObjectName(u"CardGrid"_s);
    grid_->setAccessibleName(u"Archivierte Bilder"_s);
    grid_->addActions({acPrintImg_, acPrintNow_, acEditTags_, acRecut_, acKeepUntil_, acDelete_});
    grid_->setContextMenuPolicy(Qt::ActionsContextMenu);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(findPanel_);
    layout->addWidget(filterBar_);
    layout->addWidget(grid_, 1);
    setMinimumSize(WithinScreen(*this, LeastSize));
    resize(WithinScreen(*this, StartSize()));
}

/// The size of the last time. A layout file that cannot be read must not keep the program from
/// starting: it only knows places of windows.
QSize TfmImgSearch::StartSize() const {
    try {
        const QSize remembered = data_.ReadLayerPosFromIni(LayoutSection).size();
        return remembered.isEmpty() ? ArchiveWindowSize : remembered;
    } catch (const platform::Error&) {
        return ArchiveWindowSize;
    }
}

controls::ModalResult TfmImgSearch::ShowEx(const QString& archiveFolder) {
    archiveFolder_ = archiveFolder;
    upkeep_.SetFolder(archiveFolder);
    if (!ListAll()) {
        return controls::ModalResult::Cancel;
    }
    FinishDeletion();
    findPanel_->TakeFocus();
    if (!isMaximized()) {
        CentreOnParent(*this);
    }
    look_->start();
    const controls::ModalResult result = controls::ShowModal(*this);
    look_->stop();
    return result;
}

/// What a crash has left of deleted photos goes; where it cannot, they are shown all the same.
void TfmImgSearch::FinishDeletion() {
    try {
        core::FinishDeletion(data_.ArchiveDatabase(), archiveFolder_);
    } catch (const platform::Error&) {
        return;
    }
}

/// A server far away may need long for what is read of all records. False where the user gives it
/// up; what is shown stays then.
bool TfmImgSearch::WaitedFor(const std::function<void()>& reading) {
    const ArchiveProgress progress(data_, *this, isVisible() ? this : parentWidget(),
                                   windowTitle());
    try {
        reading();
        return true;
    } catch (const platform::Cancelled&) {
        return false;
    }
}

/// All records, read anew: others may have archived meanwhile.
bool TfmImgSearch::ListAll() {
    return WaitedFor([this] {
        core::ArchiveTable& table = OpenArchive(data_);
        table.SetFilter({});
        grid_->SetSource(cards_.get());
        findPanel_->Clear();
        filterBar_->Reset();
        acDue_->setChecked(false);
        ShowCards(table.Ids(), controls::CardGrid::Position::Start);
    });
}

void TfmImgSearch::Search(const QString& text) {
    using Position = controls::CardGrid::Position;
    WaitedFor([&] {
        ShowCards(OpenArchive(data_).Find(text), text.isEmpty() ? Position::Keep : Position::Start);
    });
}

/// What is shown may be gone, or other photos than before.
void TfmImgSearch::ListAgain() {
    WaitedFor([this] {
        ShowCards(OpenArchive(data_).Find(findPanel_->Text()), controls::CardGrid::Position::Keep);
    });
}

void TfmImgSearch::ShowCards(std::vector<qint64> ids, controls::CardGrid::Position position) {
    store::Database& database = data_.ArchiveDatabase();
    blank_ = core::BlankRecords(database);
    if (acHideBlank_->isChecked()) {
        std::erase_if(
            ids, [&](qint64 id) { return std::binary_search(blank_.begin(), blank_.end(), id); });
    }
    if (acDue_->isChecked()) {
        const std::vector<qint64> due = core::FindDuePhotos(database, Today()).ids;
        std::erase_if(ids,
                      [&](qint64 id) { return !std::binary_search(due.begin(), due.end(), id); });
    }
    if (cards_->SetKeptUntil(core::AllKeptUntil(database))) {
        grid_->ReloadAll();
    }
    grid_->SetCards(
        core::Arranged(database, std::move(ids), filterBar_->Period(), filterBar_->Order()),
        position);
    recordCount_ = OpenArchive(data_).Ids().size() - blank_.size();
    FindWaitingPhotos();
    ShowState();
}

bool TfmImgSearch::IsNarrowed() const {
    const core::ArchivePeriod period = filterBar_->Period();
    return !findPanel_->Text().isEmpty() || period.from || period.to || acDue_->isChecked();
}

/// What another program has filed or changed, without leaving the place that the user looks at. Not
/// while something is asked over the window: what was asked about must stay.
void TfmImgSearch::ShowChanges() {
    if (QApplication::activeModalWidget() != this || !OpenArchive(data_).HasChanged()) {
        return;
    }
    const int place = grid_->verticalScrollBar()->value();
    grid_->ReloadAll();
    ListAgain();
    grid_->verticalScrollBar()->setValue(place);
}

void TfmImgSearch::ShowState() {
    const bool narrowed = IsNarrowed();
    QString hits = CountText(grid_->Cards().size(), recordCount_, narrowed);
    if (!narrowed && !blank_.empty()) {
        hits += blank_.size() == 1 ? u", 1 leerer Datensatz"_s
                                   : u", %1 leere Datensätze"_s.arg(blank_.size());
    }
    if (!waiting_.empty()) {
        hits += waiting_.size() == 1 ? u", 1 wartet"_s : u", %1 warten"_s.arg(waiting_.size());
    }
    findPanel_->SetHits(hits);
    acDeleteBlank_->setEnabled(!blank_.empty());
    acExportFound_->setEnabled(narrowed && !Found().IsEmpty());
    acDeleteFound_->setEnabled(narrowed && !Found().IsEmpty());
    if (acDue_->isChecked()) {
        const bool searched =
            !findPanel_->Text().isEmpty() || filterBar_->Period().from || filterBar_->Period().to;
        grid_->SetEmptyText(searched ? u"Unter den gesuchten Bildern ist keines fällig."_s
                                     : u"Kein Bild ist fällig."_s,
                            u"„Archiv“, „Fällige Bilder“ zeigt wieder alle."_s);
    } else if (narrowed && recordCount_ > 0) {
        grid_->SetEmptyText(u"Nichts gefunden."_s, u"Esc im Suchfeld zeigt wieder alle Bilder."_s);
    } else {
        grid_->SetEmptyText(
            u"Das Archiv ist noch leer."_s,
            u"Neue Passbilder kommen hierher, wenn in den Einstellungen „Automatisch im "
            u"Bildarchiv speichern“ eingeschaltet ist."_s);
    }
}

/// Another program may have changed the tags while the editor was open, or while the user was
/// asked. What was typed is not lost by a "no".
bool TfmImgSearch::ReplaceTags(const core::ArchiveRecord& edited) {
    QString expected = edited.tags;
    while (!OpenArchive(data_).ReplaceTags(edited.id, expected, tagEditor_.Tags())) {
        expected = ExistingRecord(OpenArchive(data_), edited.id).tags;
        if (!controls::AskYesNo(
                this,
                u"Die Schlüsselworte dieses Bildes wurden inzwischen an anderer Stelle geändert:"
                u"\n\n%1\nSollen sie ersetzt werden? Bei „Nein“ können Sie Ihre Eingabe ändern."_s
                    .arg(QString(expected).remove(u'\r')),
                controls::Severity::Warning)) {
            tagEditor_.SetPicture(grid_->Picture(edited.id));
            if (tagEditor_.ShowEx(tagEditor_.Lines().join(u'\n')) != controls::ModalResult::Ok) {
                return false;
            }
        }
    }
    return true;
}

/// The record first, so that the tags are kept even where the photo's file is gone.
void TfmImgSearch::acEditTagsExecute() {
    const qint64 id = grid_->Current().value();
    const core::ArchiveRecord record = ExistingRecord(OpenArchive(data_), id);
    tagEditor_.SetPicture(grid_->Picture(id));
    if (tagEditor_.ShowEx(record.tags) != controls::ModalResult::Ok) {
        return;
    }
    const bool replaced = ReplaceTags(record);
    grid_->Reload(id);  // with the other program's tags where they stay
    if (!replaced) {
        return;
    }
    if (!archiveFolder_.isEmpty()) {
        // A search that was still due has made another record current meanwhile.
        data_.SetCurrentRecord(id);
        const auto back =
            qScopeGuard([this] { data_.SetCurrentRecord(grid_->Current().value_or(0)); });
        const QString path = data_.GetFileNameFromRecord(archiveFolder_);
        const platform::SilenceWatch watch(core::AwaitedArchive(archiveFolder_));
        data_.RewriteIptcToImage(path, tagEditor_.FirstLine(), tagEditor_.Tags());
        core::KeepDigest(data_.ArchiveDatabase(), id, path);
    }
}

/// The size that the window has now is the one that it is opened with the next time.
void TfmImgSearch::done(int result) {
    controls::Guarded(this, [&] {
        data_.SaveLayerPosToIni(LayoutSection, isMaximized() ? normalGeometry() : geometry());
    });
    QDialog::done(result);
}

}  // namespace kadrona::dialogs
