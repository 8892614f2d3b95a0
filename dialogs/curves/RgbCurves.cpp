#include "dialogs/curves/RgbCurves.h"

#include <QCollator>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QShowEvent>
#include <algorithm>

#include "controls/commands/ScreenTip.h"
#include "controls/fields/SelectionList.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "dialogs/base/Buttons.h"
#include "dialogs/base/WindowPlacement.h"
#include "dialogs/curves/CurveEditor.h"
#include "dialogs/curves/FacePreview.h"
#include "imaging/tone/CurveFile.h"
#include "imaging/view/PaintingSuspension.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr int ItemHeight = 16;
constexpr int FewestRows = 5;  // in sight
constexpr int ButtonSpacing = 8;
constexpr int FileRole = Qt::UserRole + 1;  // the one before is the list's own
const QString Extension = u".acv"_s;

/// Choosing by the keyboard counts as a click, as in every list of this program; Space and Enter
/// choose what is selected already.
class PresetList : public controls::SelectionList {
 public:
    using SelectionList::SelectionList;

 protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int before = currentRow();
        const bool chooses = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
                             event->key() == Qt::Key_Enter;
        if (!chooses) {
            SelectionList::keyPressEvent(event);
        }
        if (currentItem() != nullptr && (chooses || currentRow() != before)) {
            Q_EMIT itemClicked(currentItem());
        }
    }
};

/// Of a file in the curves folder; other programs write the extension in capitals as well.
QString PresetName(const QString& fileName) {
    return fileName.chopped(Extension.size());
}

/// An entry shows the preset's name and keeps its file name as data.
void AddItem(QListWidget& list, const QString& fileName) {
    const QString name = PresetName(fileName);
    auto* item = new QListWidgetItem(name, &list);
    item->setData(FileRole, fileName);
    item->setSizeHint({0, std::max(ItemHeight, list.fontMetrics().height())});
    item->setToolTip(controls::PlainTip(name));
}

}  // namespace

TfmRGBKurve::TfmRGBKurve(QString curvesFolder, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
                          Qt::WindowStaysOnTopHint),
      curvesFolder_(std::move(curvesFolder)) {
    setObjectName(u"fmRGBKurve"_s);
    setWindowTitle(u"RGB Kurve"_s);
    editor_ = new CurveEditor;
    editor_->setObjectName(u"CurveEditor"_s);
    connect(editor_, &CurveEditor::CurvesChanged, this, [this] { ShowHint(false); });
    connect(editor_, &CurveEditor::PointRefused, this, [this] { ShowHint(true); });
    hint_ = new QLabel;
    hint_->setObjectName(u"labHint"_s);
    hint_->setWordWrap(true);
    hint_->setMinimumHeight(2 * hint_->fontMetrics().lineSpacing());
    hint_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    ShowHint(false);
    BuildPresets();
    BuildChannel();
    BuildConfirmation();
    SetTabOrder();
    FillPresets();
}

/// The list's label.
QLabel* TfmRGBKurve::BuildPresetList() {
    auto* labPreset = new QLabel(u"&Vorlagen"_s);
    labPreset->setObjectName(u"labPreset"_s);
    auto* list = new PresetList(u"cbPreset2"_s, u"Vorlagen"_s);
    list->SetEmptyText(u"Noch keine Vorlage. „Neu“ legt die gezeigte Kurve als eine an."_s);
    cbPreset2_ = list;
    cbPreset2_->setStyleSheet(u"QListView::item { padding: 0 4px; border-radius: 0; }"_s);
    cbPreset2_->setMinimumHeight(FewestRows * ItemHeight);
    connect(cbPreset2_, &QListWidget::itemClicked, this,
            [this] { controls::Guarded(this, [this] { cbPreset2Click(); }); });
    labPreset->setBuddy(cbPreset2_);
    return labPreset;
}

void TfmRGBKurve::BuildPresets() {
    QLabel* labPreset = BuildPresetList();
    face_ = new FacePreview;
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(ButtonSpacing);
    buttons->addWidget(Button(u"btnAdd"_s, u"&Neu"_s, &TfmRGBKurve::btnAddClick));
    for (QPushButton* forSelection :
         {Button(u"btnUpdate"_s, u"&Update"_s, &TfmRGBKurve::btnUpdateClick),
          Button(u"btnDelete"_s, u"&Löschen"_s, &TfmRGBKurve::btnDeleteClick)}) {
        buttons->addWidget(forSelection);
        forSelection->setEnabled(false);
        connect(cbPreset2_, &QListWidget::itemSelectionChanged, forSelection,
                [=, this] { forSelection->setEnabled(!cbPreset2_->selectedItems().isEmpty()); });
    }
    auto* column = new QVBoxLayout;
    column->setSpacing(ButtonSpacing);
    column->addWidget(face_);
    column->addWidget(labPreset);
    column->addWidget(cbPreset2_, 1);
    column->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 14);
    layout->setSpacing(10);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    grid_ = new QGridLayout;
    grid_->setHorizontalSpacing(16);
    grid_->setVerticalSpacing(10);
    grid_->addLayout(column, 1, 1);
    layout->addLayout(grid_, 1);
}

void TfmRGBKurve::BuildChannel() {
    cbChannel_ = new QComboBox;
    cbChannel_->setObjectName(u"cbChannel"_s);
    auto* labChannel = new QLabel(u"&Kanal"_s);
    labChannel->setBuddy(cbChannel_);
    cbChannel_->addItems({u"RGB"_s, u"Red"_s, u"Green"_s, u"Blue"_s});
    connect(cbChannel_, &QComboBox::currentIndexChanged, this, &TfmRGBKurve::cbChannelChange);
    auto* btnReset = new QPushButton(u"Kanal &zurücksetzen"_s);
    btnReset->setObjectName(u"btnReset"_s);
    connect(btnReset, &QPushButton::clicked, editor_, &CurveEditor::ResetChannel);
    auto* btnResetAll = new QPushButton(u"&Alles zurücksetzen"_s);
    btnResetAll->setObjectName(u"btnResetAll"_s);
    connect(btnResetAll, &QPushButton::clicked, editor_, &CurveEditor::ResetAll);
    for (QPushButton* button : {btnReset, btnResetAll}) {
        button->setAutoDefault(false);
    }
    auto* channel = new QHBoxLayout;
    channel->setSpacing(ButtonSpacing);
    channel->addWidget(labChannel);
    channel->addWidget(cbChannel_);
    channel->addWidget(btnReset);
    channel->addWidget(btnResetAll);
    channel->addStretch();
    grid_->addLayout(channel, 0, 0, 1, 2);
    grid_->addWidget(editor_, 1, 0);
}

void TfmRGBKurve::BuildConfirmation() {
    const auto [ok, cancel] = MakeAnswerButtons(*this, u"&Ok"_s, u"&Cancel"_s);
    auto* confirm = new QHBoxLayout;
    confirm->setSpacing(ButtonSpacing);
    confirm->addWidget(hint_, 1);
    confirm->addWidget(ok, 0, Qt::AlignBottom);
    confirm->addWidget(cancel, 0, Qt::AlignBottom);
    qobject_cast<QVBoxLayout*>(layout())->addLayout(confirm);
}

/// From the preset to the curve, then to what is done with it.
void TfmRGBKurve::SetTabOrder() {
    QWidget* last = cbPreset2_;
    for (const char* name : {"btnAdd", "btnUpdate", "btnDelete", "cbChannel", "CurveEditor",
                             "btnReset", "btnResetAll", "btnOk", "btnCancel"}) {
        auto* next = findChild<QWidget*>(QLatin1StringView(name));
        setTabOrder(last, next);
        last = next;
    }
}

QPushButton* TfmRGBKurve::Button(const QString& name, const QString& text,
                                 void (TfmRGBKurve::*click)()) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, click] { controls::Guarded(this, [this, click] { (this->*click)(); }); });
    return button;
}

void TfmRGBKurve::FillPresets() {
    const QDir folder(curvesFolder_);
    if (curvesFolder_.isEmpty() || !folder.exists()) {
        return;
    }
    cbPreset2_->clear();
    QStringList files =
        folder.entryList({u'*' + Extension}, QDir::AllEntries | QDir::Hidden | QDir::System);
    QCollator order{QLocale(QLocale::German)};
    order.setCaseSensitivity(Qt::CaseInsensitive);
    std::ranges::stable_sort(files, [&](const QString& a, const QString& b) {
        return order.compare(PresetName(a), PresetName(b)) < 0;
    });
    for (const QString& file : files) {
        AddItem(*cbPreset2_, file);
    }
    if (!files.isEmpty()) {
        cbPreset2_->setCurrentRow(0);
    }
}

controls::ModalResult TfmRGBKurve::ShowEx(imaging::view::ImageView& view) {
    editor_->SetHistogram(imaging::HistogramOf(view.Image().Photo()));
    editor_->ResetAll();
    face_->Show(view.Image());
    const auto preview = connect(editor_, &CurveEditor::CurvesChanged, &view, [this, &view] {
        const bool changes = Curves() != imaging::CurveSet();
        const auto filter = changes ? imaging::CurveFilter(Curves()) : nullptr;
        view.SetPreviewFilter(filter);
        face_->SetFilter(filter);
    });
    const controls::ModalResult result = controls::ShowModal(*this);
    disconnect(preview);
    face_->Clear();
    // The photo changes under the preview, so that it is never seen as it was before.
    const imaging::view::PaintingSuspension suspension(view);
    view.SetPreviewFilter(nullptr);
    if (result == controls::ModalResult::Ok) {
        ApplyTo(view.Image());
    }
    return result;
}

void TfmRGBKurve::ShowSilent(imaging::LayeredImage& image) {
    editor_->SetHistogram(imaging::HistogramOf(image.Photo()));
    ApplyTo(image);
}

void TfmRGBKurve::ApplyTo(imaging::LayeredImage& image) const {
    if (Curves() != imaging::CurveSet() && !image.IsEmpty()) {
        const controls::WaitCursor wait;
        image.ChangePhoto(imaging::Filtered(image.Photo(), *imaging::CurveFilter(Curves())),
                          imaging::PhotoEdit::Tone);
    }
}

const imaging::CurveSet& TfmRGBKurve::Curves() const {
    return editor_->Curves();
}

void TfmRGBKurve::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        StandClearOfPhoto(*this);
        editor_->setFocus(Qt::OtherFocusReason);
    }
}

/// Escape and the close button come here as well.
void TfmRGBKurve::reject() {
    editor_->ResetAll();
    QDialog::reject();
}

QString TfmRGBKurve::PresetFile(const QListWidgetItem& item) const {
    return platform::JoinPath(curvesFolder_, item.data(FileRole).toString());
}

QString TfmRGBKurve::NewPresetFile(const QString& name) const {
    const QString file = name + Extension;
    if (file.contains(u'/') || file.contains(QDir::separator()) || file.contains(QChar::Null)) {
        throw imaging::CurveFileError(
            u"Die Vorlage „%1“ konnte nicht gespeichert werden: Eine Datei kann nicht so heißen."_s
                .arg(name));
    }
    return platform::JoinPath(curvesFolder_, file);
}

void TfmRGBKurve::cbPreset2Click() {
    if (const QListWidgetItem* item = cbPreset2_->currentItem()) {
        editor_->ResetAll();
        editor_->SetCurves(imaging::ReadCurveFile(PresetFile(*item)));
    }
}

void TfmRGBKurve::btnAddClick() {
    const QString name =
        controls::AskForLine(this, u"Kurven Name"_s, u"Vergeben Sie einen eindeutigen Namen"_s)
            .value_or(QString());
    if (name.isEmpty()) {
        return;
    }
    const auto known = cbPreset2_->findItems(name, Qt::MatchExactly);
    imaging::WriteCurveFile(known.isEmpty() ? NewPresetFile(name) : PresetFile(*known.first()),
                            Curves());
    if (known.isEmpty()) {
        AddItem(*cbPreset2_, name + Extension);
    }
    cbPreset2_->setCurrentItem(cbPreset2_->findItems(name, Qt::MatchExactly).first());
}

void TfmRGBKurve::btnUpdateClick() {
    if (const QListWidgetItem* item = cbPreset2_->currentItem()) {
        imaging::WriteCurveFile(PresetFile(*item), Curves());
        cbPreset2_->viewport()->update();
    }
}

void TfmRGBKurve::btnDeleteClick() {
    if (cbPreset2_->currentItem() == nullptr ||
        !controls::AskYesNo(this, u"Möchten Sie diese Vorlage löschen?"_s)) {
        return;
    }
    const std::unique_ptr<QListWidgetItem> item(cbPreset2_->takeItem(cbPreset2_->currentRow()));
    const QString file = PresetFile(*item);
    if (!QFile::remove(file) && QFileInfo::exists(file)) {
        throw imaging::CurveFileError(u"%1 konnte nicht gelöscht werden."_s.arg(file));
    }
}

void TfmRGBKurve::cbChannelChange() {
    editor_->SetChannel(static_cast<imaging::CurveChannel>(cbChannel_->currentIndex()));
}

void TfmRGBKurve::ShowHint(bool pointRefused) {
    hint_->setText(pointRefused
                       ? u"Mehr als %1 Punkte fasst eine Vorlage nicht. Entfernen Sie zuerst "
                         u"einen Punkt."_s.arg(imaging::MaximumCurvePoints)
                       : u"Klicken fügt einen Punkt ein, Ziehen aus dem Feld oder ein Rechtsklick "
                         u"entfernt ihn."_s);
}

}  // namespace kadrona::dialogs
