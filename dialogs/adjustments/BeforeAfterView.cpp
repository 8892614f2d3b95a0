#include "dialogs/adjustments/BeforeAfterView.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include "controls/theme/Icons.h"
#include "imaging/view/ImageView.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

using imaging::view::ImageView;

BeforeAfterView::BeforeAfterView(QWidget* parent) : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins({});
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);
    grid->setRowStretch(1, 1);
    before_ = AddSide(0, u"Vorher"_s, u"Before"_s);
    after_ = AddSide(1, u"Nachher"_s, u"After"_s);
    connect(before_, &ImageView::PartChanged, this, [this] { Follow(*before_, *after_); });
    connect(after_, &ImageView::PartChanged, this, [this] { Follow(*after_, *before_); });
    AddZoomButtons();
}

/// The sides go before the photo that they show.
BeforeAfterView::~BeforeAfterView() {
    delete before_;
    delete after_;
}

ImageView* BeforeAfterView::AddSide(int column, const QString& title, const QString& name) {
    auto* view = new ImageView(photo_);
    view->setObjectName(name);
    view->setAccessibleName(title);
    view->setMinimumSize(120, 120);
    auto* grid = qobject_cast<QGridLayout*>(layout());
    grid->addWidget(new QLabel(title), 0, column);
    grid->addWidget(view, 1, column);
    grid->setColumnStretch(column, 1);
    return view;
}

void BeforeAfterView::AddZoomButtons() {
    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    row->addStretch();
    const auto add = [&](const QString& icon, const QString& text) {
        auto* button = new QToolButton;
        button->setIcon(controls::Icon(icon));
        button->setToolTip(text);
        button->setAccessibleName(text);
        button->setAutoRaise(true);
        row->addWidget(button);
        return button;
    };
    connect(add(u"zoom-fit"_s, u"Bildgröße anpassen"_s), &QToolButton::clicked, this,
            [this] { after_->SetAutomaticFit(true); });
    connect(add(u"zoom-full"_s, u"Volle Bildgröße"_s), &QToolButton::clicked, this, [this] {
        after_->SetAutomaticFit(false);
        after_->SetZoomPercent(100);
    });
    qobject_cast<QGridLayout*>(layout())->addLayout(row, 0, 1);
}

void BeforeAfterView::SetPhoto(const imaging::Pixels& photo) {
    for (ImageView* view : {before_, after_}) {
        view->SetAutomaticFit(true);
    }
    photo_.Open(photo, {});
}

void BeforeAfterView::SetFilter(imaging::PixelFilterPointer filter) {
    after_->SetPreviewFilter(std::move(filter));
}

void BeforeAfterView::Follow(const ImageView& leader, ImageView& follower) {
    if (isFollowing_) {
        return;
    }
    isFollowing_ = true;
    if (leader.AutomaticFit() != follower.AutomaticFit()) {
        follower.SetAutomaticFit(leader.AutomaticFit());
    }
    if (!leader.AutomaticFit()) {
        follower.ShowPart(leader.ZoomPercent(), leader.Middle());
    }
    isFollowing_ = false;
}

}  // namespace kadrona::dialogs
