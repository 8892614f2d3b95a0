#pragma once

#include <QLineEdit>
#include <optional>

class QToolButton;

namespace kadrona::controls {

/// A line edit for a folder with a "..." button inside its right end. A folder dropped onto it
/// becomes its text. Object names: the edit's own, and the same + "Button" for the button.
class PathEdit : public QLineEdit {
    Q_OBJECT

 public:
    explicit PathEdit(QWidget* parent = nullptr);

 Q_SIGNALS:
    /// The "..." button was clicked.
    void BrowseRequested();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

 private:
    void PlaceButton();

    QToolButton* button_;
    /// The folder of the drag over the field, null where it holds none: asked for only once.
    std::optional<QString> dragged_;
};

/// Lets the user choose a folder, starting at `start` if that is an existing folder; the path has
/// the system's separators. Nothing when cancelled.
std::optional<QString> ChooseFolder(QWidget* parent, const QString& start);

}  // namespace kadrona::controls
