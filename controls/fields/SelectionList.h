#pragma once

#include <QListWidget>

namespace kadrona::controls {

/// A list of texts of which one or none is selected. The toolkit's own makes its first row current,
/// without selecting it, as soon as it gets the focus, and the next key then passes that row over;
/// in this one only a selected row is current. Its rows' data of Qt::UserRole is its own.
class SelectionList : public QListWidget {
    Q_OBJECT

 public:
    /// `name` is the object name, `accessibleName` what a screen reader calls the list.
    SelectionList(const QString& name, const QString& accessibleName, QWidget* parent = nullptr);

    /// Replaces the texts; nothing is selected then. Each text is its row's tip as well, because
    /// a long one is cut off.
    void SetTexts(const QStringList& texts);
    void AddText(const QString& text);

    /// What stands at the right end of a row beside its text.
    void SetDetail(int row, const QString& detail);

    /// Shows only the rows whose text holds all words, whatever their case and accents. A selected
    /// row that is hidden by it gives the selection to the first one that is left.
    void Filter(const QString& words);

    /// Said in the list's place while it shows no row.
    void SetEmptyText(const QString& text) { emptyText_ = text; }

    /// -1 none.
    int SelectedRow() const;
    /// Selects nothing where there is no such row.
    void SelectRow(int row);
    /// Empty where nothing is selected.
    QString SelectedText() const;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    QString emptyText_;
};

}  // namespace kadrona::controls
