#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "controls/messages/ModalResult.h"

class QAction;
class QTimer;

namespace kadrona::controls {
class CardGrid;
class FindPanel;
}  // namespace kadrona::controls

namespace kadrona::core {
struct ArchiveRecord;
class TData;
}  // namespace kadrona::core

namespace kadrona::dialogs {

class ArchiveCards;
class TfmImageTagEdit;

/// "Bild Archiv": every archived photo as a card, newest first, with a search over all that the
/// cards show. Lets the user change the tags of a photo and choose one to print.
class TfmImgSearch : public QDialog {
    Q_OBJECT

 public:
    /// `data` and `tagEditor` outlive the window.
    TfmImgSearch(core::TData& data, TfmImageTagEdit& tagEditor, QWidget* parent = nullptr);
    ~TfmImgSearch() override;

    /// Shows the whole archive modally. Ok where a photo was chosen: the current record of the data
    /// module. Throws platform::Error where the archive cannot be read.
    controls::ModalResult ShowEx(const QString& archiveFolder);

 protected:
    void done(int result) override;

 private:
    void BuildActions();
    void BuildLayout();
    QSize StartSize() const;
    QAction* AddAction(const QString& name, const QString& caption, const QString& icon);
    void ListAll();
    void Search(const QString& text);
    void ShowState();
    void ShowChanges();
    bool ReplaceTags(const core::ArchiveRecord& edited);
    void acEditTagsExecute();

    core::TData& data_;
    TfmImageTagEdit& tagEditor_;
    QString archiveFolder_;
    std::unique_ptr<ArchiveCards> cards_;
    size_t recordCount_ = 0;
    controls::FindPanel* findPanel_;
    controls::CardGrid* grid_;
    /// When to look for what other programs have changed.
    QTimer* look_;
    QAction* acPrintImg_ = nullptr;
    QAction* acEditTags_ = nullptr;
    QAction* acClose_ = nullptr;
};

}  // namespace kadrona::dialogs
