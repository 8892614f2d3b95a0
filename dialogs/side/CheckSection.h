#pragma once

#include <QWidget>
#include <vector>

#include "core/check/PhotoCheck.h"

class QAction;
class QGridLayout;
class QLabel;
class QPushButton;

namespace kadrona::dialogs {

/// The section "Prüfung": the lines of a check with value, band and state, and what can be done
/// about them. Shows what it is given and keeps nothing else.
class CheckSection : public QWidget {
    Q_OBJECT

 public:
    explicit CheckSection(QWidget* parent = nullptr);

    /// Whether the face's points can be moved: not once the photo is cut.
    enum class Points { Movable, Fixed };

    /// The lines, and a sentence above them, e.g. that there is no face.
    void SetLines(const std::vector<core::CheckLine>& lines, const QString& summary, Points points);
    /// A button that triggers an action of the window, pressed as long as that is checked.
    /// The panel is narrow: `text` is short, the action's own stands in the tip.
    void AddAction(QAction* action, const QString& text);

    /// Presses or releases the button that lets the face's points be moved.
    void SetPointsMovable(bool movable);

 Q_SIGNALS:
    void PointsToggled(bool movable);
    void SaveReportAsked();
    void PrintReportAsked();

 private:
    struct Row {
        QLabel* sign;
        QLabel* label;
        QLabel* number;
        QLabel* unit;
        QLabel* judgement;
    };

    Row& RowAt(size_t index);

    QLabel* summary_;
    QGridLayout* grid_;
    QGridLayout* buttons_;
    QPushButton* points_;
    QPushButton* report_;
    std::vector<Row> rows_;
};

}  // namespace kadrona::dialogs
