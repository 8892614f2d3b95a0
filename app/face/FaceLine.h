#pragma once

#include <QWidget>
#include <vector>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace kadrona::app {

/// How a sentence about the face ends that offers the template's place.
inline const QString OfferQuestion = QStringLiteral("Schablone daran ausrichten?");

/// Why the template stays where it is while another tool has hidden it.
inline const QString EndStampFirst = QStringLiteral("Beenden Sie zuerst den Retuschier Stempel.");

/// The quiet line under a photo that says something of its face, or offers it a place. Keeps the
/// room of an offer while it says nothing, so that the photo does not jump.
class FaceLine : public QWidget {
    Q_OBJECT

 public:
    FaceLine();

    /// An empty text says nothing.
    void Say(const QString& text);
    /// The same with buttons that answer.
    void Ask(const QString& text);
    bool HasFocus() const;
    /// As narrow as the widest button: the rest finds its place below.
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void Accepted();
    void Refused();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void Show(const QString& text, bool asks);
    void LayOut();

    QWidget* content_;
    QLabel* text_;
    QBoxLayout* row_;
    QBoxLayout* choice_;  ///< the buttons
    std::vector<QPushButton*> buttons_;
};

}  // namespace kadrona::app
