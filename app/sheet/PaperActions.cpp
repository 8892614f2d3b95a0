#include "app/sheet/PaperActions.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QSignalBlocker>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/base/ViewActions.h"
#include "app/printing/PrintFlow.h"
#include "app/sheet/PaperPicture.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/sheet/PaperCanvas.h"
#include "core/sheet/PaperSize.h"
#include "dialogs/printing/PaperView.h"
#include "dialogs/settings/SettingsDialog.h"
#include "dialogs/side/PaperFields.h"
#include "dialogs/side/SheetSection.h"
#include "dialogs/side/SidePanel.h"
#include "dialogs/side/TraySection.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/pixels/Resampling.h"
#include "platform/CountedText.h"
#include "platform/Paths.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString SheetShownValue = u"SheetShown"_s;
constexpr QSize ThumbnailSize(72, 88);
constexpr int PreviewHeight = 270;
/// Of the cut in the preview, pixels.
constexpr int PreviewCut = 300;
constexpr imaging::DotsPerInch PreviewTextResolution{150};
/// The photo in the preview follows once the template rests; where it lies follows at once.
constexpr int CutDelayMilliseconds = 200;

/// Nothing where there is no template.
QSize PhotoSize(const core::TData& data) {
    return core::PrintedSize(data.TemplateCanvasSize());
}

QString PicturesText(qsizetype count) {
    return platform::CountedText(count, u"Bild"_s, u"Bilder"_s);
}

}  // namespace

PaperActions::PaperActions(PhotoSession& session, const Surroundings& around)
    : session_(session),
      around_(around),
      tray_(platform::JoinPath(around.data.DataFolder(), u"Sammelblatt"_s)) {
    around_.actions.Connect(Action::ShowSheet, this, [this] {
        const bool shown = around_.actions.IsChecked(Action::ShowSheet);
        platform::WriteRegistryInteger(SheetShownValue, shown ? 1 : 0);
        ShowSections(shown);
        around_.panel.Reveal(&around_.section);
    });
    around_.actions.Connect(Action::AddToSheet, this, [this] { acAddToSheetExecute(); });
    connect(&session, &PhotoSession::Changed, this, [this] { Update(); });
    connect(&around_.printFlow, &PrintFlow::Printed, this, [this] { TakeOutPrinted(); });
    preview_ = new dialogs::PaperView;
    preview_->setObjectName(u"SheetPreview"_s);
    preview_->setFixedHeight(PreviewHeight);
    around_.section.SetPreview(preview_);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this] { FollowTray(); });
    cutting_.setSingleShot(true);
    connect(&cutting_, &QTimer::timeout, this, [this] {
        CutPreview();
        UpdatePreview();
    });
    ConnectSections();
    controls::Guarded(&around_.window, [this] {
        const bool shown = platform::ReadRegistryInteger(SheetShownValue) != 0;
        around_.actions.SetChecked(Action::ShowSheet, shown);
        ShowSections(shown);
    });
}

void PaperActions::ConnectSections() {
    using dialogs::PaperFields;
    using dialogs::TraySection;
    PaperFields& shown = around_.section.Fields();
    PaperFields& kept = around_.settings.SheetFields();
    shown.CopyFrom(kept);
    connect(&shown, &PaperFields::Changed, this, [this, &shown, &kept] {
        kept.CopyFrom(shown);
        // At once: the next photo that is opened restores what its profile has stored.
        controls::Guarded(&around_.window, [this] { around_.settings.StoreAdditions(); });
        Update();
    });
    connect(&kept, &PaperFields::Changed, this, [this, &shown, &kept] {
        const QSignalBlocker quiet(shown);  // what comes from the settings is stored there
        shown.CopyFrom(kept);
        Update();
    });
    around_.section.AddAction(around_.actions[Action::AddToSheet]);
    connect(&around_.tray, &TraySection::CountChosen, this, [this](int row, int count) {
        ChangeTray([=, this] { tray_.SetCount(static_cast<size_t>(row), count); });
    });
    connect(&around_.tray, &TraySection::MoveAsked, this, [this](int row, int to) {
        ChangeTray([=, this] { tray_.Move(static_cast<size_t>(row), static_cast<size_t>(to)); });
        around_.tray.Select(to);
    });
    connect(&around_.tray, &TraySection::RemoveAsked, this,
            [this](int row) { ChangeTray([=, this] { tray_.Remove(static_cast<size_t>(row)); }); });
    connect(&around_.tray, &TraySection::EmptyAsked, this, [this] {
        ChangeTray([this] {
            if (around_.ui.AskYesNo(u"Alle Bilder aus dem Sammelblatt nehmen?"_s)) {
                tray_.Clear();
            }
        });
    });
    connect(&around_.tray, &TraySection::SheetAsked, this, [this] {
        controls::Guarded(&around_.window, [this] { MakeCollectedSheet(); });
        Q_EMIT around_.actions.Handled();
    });
}

template <typename Change>
void PaperActions::ChangeTray(Change change) {
    controls::Guarded(&around_.window, change);
    Update();
}

void PaperActions::ShowSections(bool shown) {
    if (shown) {
        LoadTray();
    }
    around_.panel.ShowSection(&around_.section, shown);
    if (!shown) {
        around_.panel.ShowSection(&around_.tray, false);
    }
    Update();
}

/// Each time: another program may have changed it.
void PaperActions::LoadTray() {
    controls::Guarded(&around_.window, [this] {
        tray_.Load();
        if (!tray_.UnreadPicture().isEmpty()) {
            throw platform::Error(tray_.UnreadPicture());
        }
    });
}

/// Whoever comes back to this window sees what another program made of the tray. What cannot be
/// read is said when the tray is changed.
void PaperActions::FollowTray() {
    if (!around_.actions.IsChecked(Action::ShowSheet)) {
        return;
    }
    try {
        tray_.Follow();
        UpdateTray();
    } catch (const std::exception&) {
        // A message each time the window is come back to would help nobody.
    }
}

void PaperActions::Update() {
    if (around_.actions.IsChecked(Action::ShowSheet)) {
        UpdateSummary();
        UpdatePreview();
        UpdateTray();
    }
}

void PaperActions::UpdatePreview() {
    const core::PaperChoice choice = Choice();
    const QSize photo = PhotoSize(around_.data);
    preview_->setVisible(choice.paper && !photo.isEmpty());
    if (!choice.paper || photo.isEmpty()) {
        return;
    }
    try {
        const core::PaperLayout layout =
            core::LayOutOnPaper(core::RequestOf(choice, photo, session_.LayoutIndex()));
        const auto line =
            core::TextBeside(layout.photos, *choice.paper, choice.text, PreviewTextResolution);
        preview_->ShowSheet(
            PaperPicture(layout.photos, choice, line ? std::optional(line->place) : std::nullopt),
            {layout.turned ? lying_ : upright_, line ? line->picture : QImage()});
    } catch (const platform::Error&) {
        preview_->ShowText(u"Keine Vorschau"_s);
        return;
    }
    const imaging::LayeredImage& image = session_.Image();
    if (session_.HasTemplate() &&
        (image.Photo().Key() != cutPhoto_ || image.LayerAt(1).rectangle != cut_)) {
        cutting_.start(CutDelayMilliseconds);
    }
}

void PaperActions::CutPreview() {
    const imaging::LayeredImage& image = session_.Image();
    if (!session_.HasTemplate()) {
        return;
    }
    cutPhoto_ = image.Photo().Key();
    cut_ = image.LayerAt(1).rectangle;
    controls::Guarded(&around_.window, [&] {
        const QSize size = cut_.size().scaled(PreviewCut, PreviewCut, Qt::KeepAspectRatio);
        const auto cut = imaging::Resampled(imaging::Cropped(image.Photo(), cut_), size);
        upright_ = cut.ToImage();
        lying_ = imaging::Turned(cut, imaging::QuarterTurn::CounterClockwise).ToImage();
    });
}

/// "8 Bilder, gedreht, auf 101,6 x 152,4 mm".
QString PaperActions::Summary() const {
    const core::PaperChoice choice = core::PaperChoiceOf(around_.settings);
    const QSize photo = PhotoSize(around_.data);
    if (!choice.paper) {
        return tray_.Items().empty()
                   ? u"Das Blatt richtet sich nach der Anzahl."_s
                   : u"Das Blatt richtet sich nach der Anzahl; das Sammelblatt hat ohne "
                     u"gewähltes Papier %1."_s.arg(core::SizeText(core::CollectedPaper(choice)));
    }
    if (photo.isEmpty()) {
        return u"Papier %1. Öffnen Sie ein Foto und wählen Sie eine Schablone."_s.arg(
            core::SizeText(*choice.paper));
    }
    const auto request = core::RequestOf(choice, photo, session_.LayoutIndex());
    const core::PaperLayout layout = core::LayOutOnPaper(request);
    QString text = PicturesText(static_cast<qsizetype>(layout.photos.size()));
    if (request.count && layout.room < *request.count) {
        text += u" statt %1"_s.arg(*request.count);
    }
    if (layout.turned) {
        text += u", gedreht,"_s;
    }
    return text + u" auf %1"_s.arg(core::SizeText(*choice.paper));
}

void PaperActions::UpdateSummary() {
    try {
        around_.section.SetSummary(Summary(), false);
    } catch (const platform::Error& error) {
        around_.section.SetSummary(error.Text(), true);
    }
}

QImage PaperActions::Thumbnail(const core::CollectedItem& item) {
    const qint64 key = item.picture.Key();
    if (!thumbnails_.contains(key)) {
        thumbnails_.insert(key, item.picture.ToImage().scaled(ThumbnailSize, Qt::KeepAspectRatio,
                                                              Qt::SmoothTransformation));
    }
    return thumbnails_.value(key);
}

void PaperActions::UpdateTray() {
    const auto& items = tray_.Items();
    const core::PaperChoice choice = core::PaperChoiceOf(around_.settings);
    QString summary = u"Legen Sie Bilder mit „Zum Blatt hinzufügen“ hierher."_s;
    core::CollectedLayout layout;
    layout.missing.resize(items.size());
    if (!items.empty()) {
        try {
            layout = core::LayOutCollected(items, choice);
            // The line below each takes room that a plain sheet does not need.
            summary = u"%1 mit Beschriftung auf %2"_s.arg(
                PicturesText(static_cast<qsizetype>(layout.copies.size())),
                core::SizeText(core::CollectedPaper(choice)));
        } catch (const platform::Error& error) {
            summary = error.Text();
        }
    }
    if (const int missing = layout.MissingCount()) {
        summary += u", %1 ohne Platz"_s.arg(missing);
    }
    std::vector<dialogs::TraySection::Row> rows;
    for (size_t i = 0; i < items.size(); ++i) {
        const bool isNamed = !items[i].name.isEmpty();
        rows.push_back({Thumbnail(items[i]), isNamed ? items[i].name : items[i].document,
                        isNamed ? items[i].document : QString(), items[i].count,
                        layout.missing[i]});
    }
    // Before its buttons are greyed, which would hand the focus to whatever comes next.
    around_.panel.ShowSection(&around_.tray,
                              around_.actions.IsChecked(Action::ShowSheet) && !items.empty());
    around_.tray.SetRows(rows, summary);
}

/// What the settings choose, with the line of text of this photo.
core::PaperChoice PaperActions::Choice() const {
    core::PaperChoice choice = core::PaperChoiceOf(around_.settings);
    if (around_.settings.SheetText()) {
        choice.text = core::SheetText(around_.data.CurrentFile(), session_.TemplateName());
    }
    return choice;
}

bool PaperActions::PreparePaper() {
    const auto choice = PaperFor([this] { return PhotoSize(around_.data); });
    if (choice) {
        around_.data.SetPaper(*choice);
    }
    return choice.has_value();
}

std::optional<core::PaperChoice> PaperActions::PaperFor(const std::function<QSize()>& photoSize) {
    core::PaperChoice choice = Choice();
    const QSize photo = choice.paper ? photoSize() : QSize();
    if (photo.isEmpty()) {
        return choice;
    }
    const auto request = core::RequestOf(choice, photo, session_.LayoutIndex());
    const core::PaperLayout layout = core::LayOutOnPaper(request);
    if (request.count && layout.room < *request.count) {
        if (!around_.ui.AskYesNo(core::RoomQuestion(request, layout.room))) {
            return std::nullopt;
        }
        choice.count = layout.room;
    }
    return choice;
}

void PaperActions::acAddToSheetExecute() {
    imaging::LayeredImage& image = session_.Image();
    if (!session_.HasTemplate() || around_.actions.IsChecked(Action::Beauty) ||
        (confirm_ && !confirm_())) {
        return;
    }
    LoadTray();
    const controls::WaitCursor wait;
    const imaging::Pixels cut = imaging::Cropped(image.Photo(), image.LayerAt(1).rectangle);
    const auto layout = core::SheetLayoutAt(session_.LayoutIndex());
    const int count = layout ? layout->columns * layout->rows : 1;
    tray_.Add({cut, PhotoSize(around_.data), session_.TemplateName(),
               QFileInfo(around_.data.CurrentFile()).completeBaseName(), count});
    if (!around_.actions.IsChecked(Action::ShowSheet)) {
        around_.actions[Action::ShowSheet]->trigger();
    }
    Update();
    around_.panel.Reveal(&around_.tray);
    around_.tray.Select(static_cast<int>(tray_.Items().size()) - 1);
    Q_EMIT around_.actions.Succeeded(u"Zum Sammelblatt gelegt: "_s + PicturesText(count));
}

/// What has no room stays in the tray for the next sheet.
void PaperActions::MakeCollectedSheet() {
    tray_.Load();
    UpdateTray();
    if (tray_.Items().empty()) {
        throw platform::Error(u"Im Sammelblatt ist kein Bild mehr."_s);
    }
    const core::PaperChoice choice = core::PaperChoiceOf(around_.settings);
    const core::CollectedLayout layout = core::LayOutCollected(tray_.Items(), choice);
    if (layout.copies.empty()) {
        throw platform::Error(u"Auf das Papier (%1) passt keines der Bilder."_s.arg(
            core::SizeText(core::CollectedPaper(choice))));
    }
    {
        const controls::WaitCursor wait;
        imaging::Pixels sheet = core::MakeCollectedSheet(tray_.Items(), layout, choice);
        madeSheet_ = sheet.Key();
        made_ = tray_.CopiesOn(layout);
        around_.actions.LeaveModes();
        around_.actions.SetChecked(Action::ShowLayer, false);
        session_.Image().Open(std::move(sheet), core::CollectedResolution(tray_.Items(), choice));
        around_.data.SetCurrentFileName(u"Sammelblatt"_s);
        session_.SetFileName(u"Sammelblatt"_s);
        session_.SetTemplateName({});
        session_.SetStage(PhotoSession::Stage::SheetMade);
        around_.viewActions.StartAnew();
    }
    if (const int missing = layout.MissingCount()) {
        around_.ui.ShowMessage(
            (missing == 1 ? u"%1 hat auf dem Blatt keinen Platz und bleibt im Sammelblatt."_s
                          : u"%1 haben auf dem Blatt keinen Platz und bleiben im Sammelblatt."_s)
                .arg(PicturesText(missing)));
    }
    if (around_.settings.PrintAfterCrop()) {
        around_.printFlow.acPrintImageExecute();
    }
}

void PaperActions::TakeOutPrinted() {
    if (madeSheet_ == 0 || session_.Image().Photo().Key() != madeSheet_) {
        return;
    }
    madeSheet_ = 0;  // a second print of the sheet takes nothing more out
    ChangeTray([this] { tray_.TakeOut(made_); });
}

}  // namespace kadrona::app
