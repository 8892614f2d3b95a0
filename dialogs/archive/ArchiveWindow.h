#pragma once

#include <QDate>
#include <QDialog>
#include <functional>
#include <memory>
#include <optional>

#include "controls/cards/CardGrid.h"
#include "controls/messages/ModalResult.h"
#include "dialogs/archive/ArchiveUpkeep.h"

class QAction;
class QTimer;

namespace kadrona::controls {
class FindPanel;
}  // namespace kadrona::controls

namespace kadrona::core {
struct ArchiveRecord;
class TData;
}  // namespace kadrona::core

namespace kadrona::dialogs {

class ArchiveCards;
class ArchiveFilterBar;
class TfmImageTagEdit;

/// "Bild Archiv": every archived photo as a card, newest first, with a search over all that the
/// cards show. Lets the user change the tags of a photo, delete photos and choose one to print.
/// Records that never got a photo are counted by themselves, and may be hidden.
class TfmImgSearch : public QDialog {
    Q_OBJECT

 public:
    /// `data` and `tagEditor` outlive the window.
    TfmImgSearch(core::TData& data, TfmImageTagEdit& tagEditor, QWidget* parent = nullptr);
    ~TfmImgSearch() override;

    /// Shows the whole archive modally. Ok where a photo was chosen: the current record of the data
    /// module. Throws platform::Error where the archive cannot be read.
    controls::ModalResult ShowEx(const QString& archiveFolder);

    /// What the chosen photo was chosen for.
    enum class Choice {
        Open,   ///< a sheet of it, ready to be printed
        Print,  ///< the same, printed at once
        Recut,  ///< its original, to be cut anew
    };
    Choice Chosen() const { return choice_; }

 protected:
    void done(int result) override;

 private:
    void BuildActions();
    void BuildArchiveMenu();
    void BuildLayout();
    QSize StartSize() const;
    QAction* AddAction(const QString& name, const QString& caption, const QString& icon);
    void FinishDeletion();
    bool WaitedFor(const std::function<void()>& reading);
    bool ListAll();
    void Search(const QString& text);
    void ListAgain();
    void ShowCards(std::vector<qint64> ids, controls::CardGrid::Position position);
    void ShowState();
    void ShowChanges();
    bool ReplaceTags(const core::ArchiveRecord& edited);
    void Choose(Choice choice);
    void acEditTagsExecute();
    void acDeleteExecute();
    void acDeleteBlankExecute();
    void acHideBlankExecute();
    void acDeleteFoundExecute();
    void acExportExecute();
    void acExportFoundExecute();
    void acBackUpExecute();
    void acCheckExecute();
    void acDueExecute();
    void acKeepUntilExecute();
    void acRetentionExecute();
    bool IsNarrowed() const;
    void FindWaitingPhotos();
    ChosenPhotos Found() const;
    QDate Today() const;
    bool HasOriginal(qint64 id) const;
    void UpdateActions();

    core::TData& data_;
    TfmImageTagEdit& tagEditor_;
    QString archiveFolder_;
    std::unique_ptr<ArchiveCards> cards_;
    ArchiveUpkeep upkeep_;
    Choice choice_ = Choice::Open;
    size_t recordCount_ = 0;
    /// The photos that wait for the archive's server and would be listed, by name.
    QStringList waiting_;
    /// The records without a photo, in ascending order.
    std::vector<qint64> blank_;
    controls::FindPanel* findPanel_;
    ArchiveFilterBar* filterBar_;
    controls::CardGrid* grid_;
    /// When to look for what other programs have changed.
    QTimer* look_;
    QAction* acPrintImg_ = nullptr;
    QAction* acPrintNow_ = nullptr;
    QAction* acRecut_ = nullptr;
    QAction* acEditTags_ = nullptr;
    QAction* acDelete_ = nullptr;
    QAction* acArchive_ = nullptr;
    QAction* acDeleteBlank_ = nullptr;
    QAction* acHideBlank_ = nullptr;
    QAction* acDue_ = nullptr;
    QAction* acKeepUntil_ = nullptr;
    QAction* acDeleteFound_ = nullptr;
    QAction* acExport_ = nullptr;
    QAction* acExportFound_ = nullptr;
    QAction* acClose_ = nullptr;
};

}  // namespace kadrona::dialogs
