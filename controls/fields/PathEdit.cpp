#include "controls/fields/PathEdit.h"

#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QStyle>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "controls/fields/FileDropTarget.h"
#include "controls/fields/Offer.h"
#include "platform/FolderProbe.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

/// The first dropped folder; null if there is none. A share that does not answer ends the search.
QString DroppedFolder(const QMimeData& data) {
    constexpr int MostLookedAt = 20;
    const QStringList paths = ReadOffer(data).files;
    for (const QString& path : paths.first(std::min<qsizetype>(paths.size(), MostLookedAt))) {
        const platform::FolderState state = platform::LookAtFolder(path);
        if (state == platform::FolderState::Silent) {
            break;
        }
        if (state == platform::FolderState::There) {
            return QDir::toNativeSeparators(path);
        }
    }
    return {};
}

}  // namespace

PathEdit::PathEdit(QWidget* parent) : QLineEdit(parent), button_(new QToolButton(this)) {
    button_->setText(u"..."_s);
    button_->setToolTip(u"Ordner wählen"_s);
    button_->setAccessibleName(button_->toolTip());
    button_->setCursor(Qt::ArrowCursor);
    button_->setFocusPolicy(Qt::TabFocus);
    button_->setAutoRaise(true);
    button_->setProperty("inField", true);  // for the style sheet
    connect(button_, &QToolButton::clicked, this, &PathEdit::BrowseRequested);
    connect(this, &QObject::objectNameChanged, button_,
            [this](const QString& name) { button_->setObjectName(name + u"Button"_s); });
    PlaceButton();
}

void PathEdit::PlaceButton() {
    constexpr int Inset = 2;
    const int buttonWidth = button_->sizeHint().width();
    button_->setGeometry(width() - buttonWidth - Inset, Inset, buttonWidth, height() - 2 * Inset);
    const QMargins margins(0, 0, buttonWidth, 0);
    if (textMargins() != margins) {
        setTextMargins(margins);
    }
}

void PathEdit::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    PlaceButton();
}

void PathEdit::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        PlaceButton();
    }
}

void PathEdit::dragEnterEvent(QDragEnterEvent* event) {
    dragged_.reset();
    dragMoveEvent(event);
}

void PathEdit::dragMoveEvent(QDragMoveEvent* event) {
    if (!event->mimeData()->hasUrls()) {
        QLineEdit::dragMoveEvent(event);
        return;
    }
    if (!dragged_) {
        dragged_ = DroppedFolder(*event->mimeData());
    }
    if (dragged_->isNull()) {
        event->ignore();
    } else {
        AnswerDrag(*event);
    }
}

void PathEdit::dropEvent(QDropEvent* event) {
    const QString folder = std::exchange(dragged_, {}).value_or(QString());
    if (folder.isNull()) {
        QLineEdit::dropEvent(event);
        return;
    }
    AnswerDrop(*event);
    setText(folder);
    Q_EMIT textEdited(folder);
}

std::optional<QString> ChooseFolder(QWidget* parent, const QString& start) {
    const QString from = !start.isEmpty() && QFileInfo(start).isDir() ? start : QString();
    const QString chosen = QFileDialog::getExistingDirectory(parent, u"Ordner wählen"_s, from);
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    return QDir::toNativeSeparators(chosen);
}

}  // namespace kadrona::controls
