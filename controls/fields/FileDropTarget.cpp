#include "controls/fields/FileDropTarget.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QWidget>

#include "controls/theme/Theme.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

// The frame laid over the target while files hover; lets every event through.
class DropFrame : public QWidget {
 public:
    explicit DropFrame(QWidget* parent) : QWidget(parent) {
        setObjectName(u"DropFrame"_s);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

 protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        constexpr double Thickness = 3;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor veil = Colors().accent;
        veil.setAlphaF(0.06F);
        painter.setBrush(veil);
        painter.setPen(QPen(Colors().accent, Thickness));
        const double inset = Thickness / 2 + 3;
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 6, 6);
    }
};

}  // namespace

void AnswerDrag(QDropEvent& event) {
    if (event.proposedAction() == Qt::MoveAction) {
        const Qt::DropActions possible = event.possibleActions();
        event.setDropAction(possible.testFlag(Qt::CopyAction)   ? Qt::CopyAction
                            : possible.testFlag(Qt::LinkAction) ? Qt::LinkAction
                                                                : Qt::IgnoreAction);
        // Accepted all the same. An X11 source goes by this answer and not by that to the drop.
        event.accept();
        return;
    }
    event.acceptProposedAction();
}

void AnswerDrop(QDropEvent& event) {
    event.setDropAction(event.proposedAction() == Qt::MoveAction ? Qt::IgnoreAction
                                                                 : event.proposedAction());
    event.accept();
}

FileDropTarget::FileDropTarget(QWidget* widget)
    : QObject(widget), widget_(widget), frame_(new DropFrame(widget)) {
    widget->setAcceptDrops(true);
    widget->installEventFilter(this);
}

bool FileDropTarget::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto& drag = static_cast<QDropEvent&>(*event);
            if (event->type() == QEvent::DragEnter || !offer_) {
                offer_ = ReadOffer(*drag.mimeData());
            }
            if (offer_->IsEmpty()) {
                drag.ignore();
                return true;
            }
            AnswerDrag(drag);
            ShowFrame(true);
            return true;
        }
        case QEvent::DragLeave:
            offer_.reset();
            ShowFrame(false);
            return true;
        case QEvent::Drop: {
            ShowFrame(false);
            auto& drop = static_cast<QDropEvent&>(*event);
            const Offer offer = offer_ ? *offer_ : ReadOffer(*drop.mimeData());
            offer_.reset();
            if (offer.IsEmpty()) {
                drop.ignore();
                return true;
            }
            Take(offer, *drop.mimeData());
            AnswerDrop(drop);
            return true;
        }
        default:
            return QObject::eventFilter(watched, event);
    }
}

/// A receiver may open dialogs. Until the event is over the source of the drag waits, so it is
/// answered first.
void FileDropTarget::Take(const Offer& offer, const QMimeData& data) {
    const QStringList& paths = offer.files;
    const QByteArray picture = paths.isEmpty() ? PictureIn(offer, data) : QByteArray();
    QMetaObject::invokeMethod(
        this,
        [this, paths, picture] {
            if (paths.isEmpty()) {
                Q_EMIT PictureDropped(picture);
            } else {
                Q_EMIT FilesDropped(paths);
            }
        },
        Qt::QueuedConnection);
}

void FileDropTarget::ShowFrame(bool show) {
    frame_->setGeometry(widget_->rect());
    frame_->raise();
    frame_->setVisible(show);
}

}  // namespace kadrona::controls
