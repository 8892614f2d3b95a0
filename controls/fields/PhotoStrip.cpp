#include "controls/fields/PhotoStrip.h"

#include <QFileInfo>
#include <QLabel>
#include <QScrollBar>

#include "controls/commands/ScreenTip.h"
#include "controls/theme/Tone.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {

namespace {

constexpr int PathRole = Qt::UserRole;
constexpr int HasPictureRole = Qt::UserRole + 1;
constexpr int ItemWidth = PhotoStrip::PictureSide + 16;
constexpr int ItemHeight = PhotoStrip::PictureSide + 28;
constexpr int CaptionInset = 8;

QListWidgetItem* NewItem(const QString& path) {
    auto* item = new QListWidgetItem(QFileInfo(path).fileName());
    item->setData(PathRole, path);
    item->setToolTip(PlainTip(path));
    item->setSizeHint({ItemWidth, ItemHeight});
    QPixmap empty(PhotoStrip::PictureSide, PhotoStrip::PictureSide);
    empty.fill(Qt::transparent);
    item->setIcon(empty);
    return item;
}

}  // namespace

PhotoStrip::PhotoStrip(const QString& caption, QWidget* parent)
    : QListWidget(parent), caption_(new QLabel(caption, this)) {
    setAccessibleName(caption);
    SetTone(*caption_, Tone::Muted);
    setViewportMargins(0, caption_->sizeHint().height() + CaptionInset, 0, 0);
    setViewMode(IconMode);
    setFlow(LeftToRight);
    setWrapping(false);
    setMovement(Static);
    setIconSize({PictureSide, PictureSide});
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideMiddle);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(ScrollPerPixel);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    hide();
    const auto choose = [this](const QListWidgetItem* item) {
        Q_EMIT Chosen(item->data(PathRole).toString());
    };
    connect(this, &QListWidget::itemClicked, this, choose);
    // Return; a style may count a click as that too.
    connect(this, &QListWidget::itemActivated, this, [this, choose](const QListWidgetItem* item) {
        if (style()->styleHint(QStyle::SH_ItemView_ActivateItemOnSingleClick, nullptr, this) == 0) {
            choose(item);
        }
    });
}

void PhotoStrip::SetFiles(const QStringList& paths) {
    QHash<QString, QListWidgetItem*> shown;
    while (count() > 0) {
        QListWidgetItem* item = takeItem(0);
        shown.insert(item->data(PathRole).toString(), item);
    }
    for (const QString& path : paths) {
        QListWidgetItem* item = shown.take(path);
        addItem(item != nullptr ? item : NewItem(path));
    }
    qDeleteAll(shown);
    setVisible(count() > 0);
}

void PhotoStrip::SetPicture(const QString& path, const QImage& picture) {
    for (int i = 0; i < count(); ++i) {
        if (item(i)->data(PathRole).toString() == path) {
            item(i)->setIcon(QPixmap::fromImage(picture));
            item(i)->setData(HasPictureRole, true);
        }
    }
}

void PhotoStrip::SetNoPicture(const QString& path) {
    const QIcon file = style()->standardIcon(QStyle::SP_FileIcon, nullptr, this);
    SetPicture(path, file.pixmap(PictureSide / 2).toImage());
}

QString PhotoStrip::WithoutPicture() const {
    for (int i = 0; i < count(); ++i) {
        if (!item(i)->data(HasPictureRole).toBool()) {
            return item(i)->data(PathRole).toString();
        }
    }
    return {};
}

QSize PhotoStrip::sizeHint() const {
    return {4 * ItemWidth, viewportMargins().top() + ItemHeight + 2 * frameWidth() +
                               horizontalScrollBar()->sizeHint().height()};
}

void PhotoStrip::resizeEvent(QResizeEvent* event) {
    QListWidget::resizeEvent(event);
    caption_->setGeometry(frameWidth() + CaptionInset, frameWidth() + CaptionInset / 2,
                          width() - 2 * (frameWidth() + CaptionInset),
                          caption_->sizeHint().height());
}

}  // namespace kadrona::controls
