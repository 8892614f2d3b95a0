#pragma once

#include <QImage>
#include <QWidget>
#include <vector>

class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;
class QToolButton;

namespace kadrona::dialogs {

/// The section "Sammelblatt": the pictures that wait for a sheet that they share. Shows what it is
/// given; every change is asked for by a signal.
class TraySection : public QWidget {
    Q_OBJECT

 public:
    struct Row {
        QImage picture;
        QString title;
        QString detail;  ///< below the title; may be empty
        int count;
        int missing;  ///< of the count, what has no room
    };

    explicit TraySection(QWidget* parent = nullptr);

    /// The selection stays at its place.
    void SetRows(const std::vector<Row>& rows, const QString& summary);
    void Select(int row);

 Q_SIGNALS:
    void CountChosen(int row, int count);
    void MoveAsked(int row, int to);
    void RemoveAsked(int row);
    void EmptyAsked();
    void SheetAsked();

 private:
    void BuildControls();
    void Connect();
    void ShowSelected();

    QListWidget* list_;
    QSpinBox* count_;
    QLabel* summary_;
    QToolButton* up_;
    QToolButton* down_;
    QPushButton* remove_;
    QPushButton* empty_;
    QPushButton* make_;
};

}  // namespace kadrona::dialogs
