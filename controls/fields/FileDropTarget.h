#pragma once

#include <QObject>
#include <QStringList>
#include <optional>

#include "controls/fields/Offer.h"

class QDropEvent;
class QMimeData;
class QWidget;

namespace kadrona::controls {

/// Makes a widget take files and pictures that are dropped onto it or onto its children. The widget
/// is framed while such a drag is over it.
class FileDropTarget : public QObject {
    Q_OBJECT

 public:
    /// Belongs to `widget`.
    explicit FileDropTarget(QWidget* widget);

 Q_SIGNALS:
    /// The paths of the dropped local files, at least one, in the order of the drag, sent once the
    /// drop has been answered.
    void FilesDropped(const QStringList& paths);
    /// The bytes of an image file, where the drag holds a picture and names no file, as one from a
    /// browser or a mail does. Empty where they did not come.
    void PictureDropped(const QByteArray& file);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void ShowFrame(bool show);
    void Take(const Offer& offer, const QMimeData& data);

    QWidget* widget_;
    QWidget* frame_;
    /// What the drag over the widget holds: another program is asked for its data only once.
    std::optional<Offer> offer_;
};

/// Answers a drag that moves over a place where it may be dropped: copy where possible, else link.
/// A drag that can only move is let on too, but answered with "nothing" instead of "move".
void AnswerDrag(QDropEvent& event);

/// Answers a drop: a copy or link as it is, but a move with "nothing was done", so that the source
/// never deletes the file.
void AnswerDrop(QDropEvent& event);

}  // namespace kadrona::controls
