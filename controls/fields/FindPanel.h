#pragma once

#include <QTimer>
#include <QWidget>
#include <chrono>

class QLabel;
class QLineEdit;

namespace kadrona::controls {

/// A search field that searches as the user types, with the number of hits beside it. Escape and
/// the field's button clear it; Escape in an empty field is left to the window. Object names:
/// "FindEdit" and "FindHits".
class FindPanel : public QWidget {
    Q_OBJECT

 public:
    explicit FindPanel(QWidget* parent = nullptr);

    QString Text() const;
    /// Searches at once where the text is another one.
    void SetText(const QString& text);
    void Clear() { SetText({}); }

    /// Puts the focus into the field, its text selected.
    void TakeFocus();

    /// What stands beside the field, for example "12 von 500".
    void SetHits(const QString& text);

    /// A tip on what can be searched for.
    void SetSyntaxTip(const QString& header, const QString& text);

    /// From the last key to the search.
    void SetDelay(std::chrono::milliseconds delay) { delay_.setInterval(delay); }

 Q_SIGNALS:
    /// The text changed, or Return was pressed to search for the same text again.
    void Searched(const QString& text);
    /// Return or the down arrow: the user goes on to the hits. They are searched by then.
    void Left();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void Search();
    void SearchAgain();
    bool HandleKey(int key);

    QLineEdit* edit_;
    QLabel* hits_;
    QTimer delay_;
    QString searched_;
};

}  // namespace kadrona::controls
