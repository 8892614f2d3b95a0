#include "app/face/CheckPanel.h"

#include <QFileInfo>

#include "app/base/MainActions.h"
#include "app/base/PhotoSession.h"
#include "app/face/CheckReport.h"
#include "app/face/PhotoFace.h"
#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/WaitCursor.h"
#include "core/Data.h"
#include "core/base/UserInterface.h"
#include "core/check/FacePlacement.h"
#include "core/check/TemplateTable.h"
#include "core/check/WhiteCorners.h"
#include "core/settings/Settings.h"
#include "dialogs/side/CheckSection.h"
#include "dialogs/side/SidePanel.h"
#include "imaging/face/Cascades.h"
#include "platform/Error.h"
#include "platform/UserRegistry.h"
#include "printing/PrinterLayer.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString CheckShownValue = u"CheckShown"_s;

}  // namespace

CheckPanel::CheckPanel(PhotoSession& session, PhotoFace& face, QWidget& window, core::TData& data,
                       const core::Settings& settings, core::UserInterface& ui,
                       MainActions& actions, dialogs::SidePanel& panel,
                       dialogs::CheckSection& section)
    : session_(session),
      face_(face),
      window_(window),
      data_(data),
      settings_(settings),
      ui_(ui),
      actions_(actions),
      panel_(panel),
      section_(section) {
    using dialogs::CheckSection;
    actions.Connect(Action::ShowCheck, this, [this] { acShowCheckExecute(); });
    connect(&session, &PhotoSession::Changed, this, &CheckPanel::FollowSession);
    connect(&face, &PhotoFace::Looked, this, &CheckPanel::ShowLines);
    connect(&face, &PhotoFace::PointMoved, this, &CheckPanel::ShowLines);
    connect(&section, &CheckSection::SaveReportAsked, this,
            [this] { controls::Guarded(&window_, [this] { SaveReport(); }); });
    connect(&section, &CheckSection::PrintReportAsked, this,
            [this] { controls::Guarded(&window_, [this] { PrintReport(); }); });
    section.AddAction(actions[Action::AlignToFace], u"Ausrichten"_s);
    section.AddAction(actions[Action::LevelHead], u"Gerade richten"_s);
    section.AddAction(actions[Action::LevelByLine], u"Linie ziehen"_s);
    controls::Guarded(&window, [this] {
        actions_.SetChecked(Action::ShowCheck, platform::ReadRegistryInteger(CheckShownValue) != 0);
        panel_.ShowSection(&section_, actions_.IsChecked(Action::ShowCheck));
    });
    ShowLines();
}

void CheckPanel::acShowCheckExecute() {
    const bool shown = actions_.IsChecked(Action::ShowCheck);
    panel_.ShowSection(&section_, shown);
    panel_.Reveal(&section_);
    if (!shown) {
        section_.SetPointsMovable(false);
    }
    platform::WriteRegistryInteger(CheckShownValue, int{shown});
    FollowSession();
}

void CheckPanel::FollowSession() {
    ForgetOtherPhoto();
    if (actions_.IsChecked(Action::ShowCheck) && session_.IsEditing()) {
        face_.FindSoon();
    }
    ShowLines();
}

std::vector<core::CheckLine> CheckPanel::Lines() const {
    core::CheckedPhoto checked;
    checked.face = face_.Search().face;
    checked.wasFaceLookedFor = face_.WasLookedFor();
    checked.measures = face_.Measures();
    checked.rectangle = session_.TemplateRectangle();
    if (checked.face) {
        checked.background =
            imaging::MeasureBackground(session_.Image().Photo(), *checked.face, checked.rectangle);
    }
    checked.figures = figures_;
    checked.printedWidth = {data_.TemplateCanvasSize().width()};
    checked.edits = session_.Image().Edits();
    checked.whiteCorners = core::HasWhiteCorners(session_.Image().Photo(), checked.rectangle,
                                                 checked.edits.turnedFreely);
    return core::CheckPhoto(checked);
}

void CheckPanel::LoadFigures() {
    // A table that cannot be read is said once, not at every frame of a drag.
    if (figuresOf_ != data_.TemplateName()) {
        figuresOf_ = data_.TemplateName();
        figures_.reset();
        controls::Guarded(&window_, [this] { figures_ = data_.LoadedFigures(); });
        Q_EMIT CrownMeasured(MeasuredCrown());
    }
}

void CheckPanel::ShowLines() {
    if (!actions_.IsChecked(Action::ShowCheck)) {
        return;
    }
    if (!IsChecking()) {
        ShowKept();
        return;
    }
    LoadFigures();
    QString summary = u"%1. Ohne Gewähr."_s.arg(session_.TemplateName());
    for (const QString& more :
         {core::SeveralFacesText(face_.Search().faceCount), face_.Missing()}) {
        if (!more.isEmpty()) {
            summary += u' ' + more;
        }
    }
    KeepReport();
    section_.SetLines(last_->lines, summary, dialogs::CheckSection::Points::Movable);
}

bool CheckPanel::IsChecking() const {
    return session_.IsEditing() && session_.HasTemplate();
}

/// Customers ask when the sheet is there, on which nothing can be measured.
void CheckPanel::ShowKept() {
    constexpr auto Fixed = dialogs::CheckSection::Points::Fixed;
    const bool made = session_.CurrentStage() == PhotoSession::Stage::SheetMade;
    if (made && last_) {
        section_.SetLines(last_->lines,
                          u"So geprüft, bevor das Blatt gemacht wurde: %1. Ohne Gewähr."_s.arg(
                              last_->templateName),
                          Fixed);
    } else if (made) {
        section_.SetLines({}, u"Zu diesem Blatt gibt es keine Prüfung."_s, Fixed);
    } else {
        section_.SetLines({}, u"Öffnen Sie ein Foto und wählen Sie eine Schablone."_s, Fixed);
    }
}

/// Without the photo until it is cut: a move of the stamp copies all pixels that are shared.
void CheckPanel::KeepReport() {
    const bool beingCut = last_ && last_->photo.SharesPixelsWith(session_.Image().Photo());
    last_ = {beingCut ? last_->photo : imaging::Pixels(),
             session_.TemplateRectangle(),
             session_.TemplateName(),
             face_.Search().face,
             Lines(),
             MeasuredCrown()};
    lastName_ = session_.FileName();
}

core::Crown CheckPanel::MeasuredCrown() const {
    return figures_ ? figures_->crown : core::Crown::Hair;
}

/// Measures now what is measured when the pointer rests.
void CheckPanel::Refresh() {
    try {
        face_.Find();
    } catch (const imaging::CascadesMissing&) {
        // The lines say so.
    }
    LoadFigures();
    KeepReport();
}

CheckReport CheckPanel::Report() {
    if (!IsChecking()) {
        return last_.value();
    }
    Refresh();
    CheckReport report = *last_;
    report.photo = session_.Image().Photo();
    return report;
}

/// At once, so that no two photos are held in memory while the next one is read.
void CheckPanel::ForgetOtherPhoto() {
    if (session_.Image().IsEmpty() || session_.FileName() != lastName_) {
        last_.reset();
    }
}

bool CheckPanel::ConfirmCut() {
    const bool confirmed = MayCut();
    if (confirmed && last_ && IsChecking()) {
        last_->photo = session_.Image().Photo();
    }
    return confirmed;
}

bool CheckPanel::MayCut() {
    const bool shown = actions_.IsChecked(Action::ShowCheck);
    faceless_ = false;
    if (!IsChecking()) {
        return true;
    }
    if (!shown) {
        last_.reset();  // does not follow the template then
    }
    if (!settings_.AskBeforeCut()) {
        return true;
    }
    try {
        Refresh();
    } catch (const platform::Error&) {
        return true;  // what cannot be checked, for want of memory, is not asked about
    }
    faceless_ = !shown && face_.WasLookedFor() && !face_.Search().face;
    QStringList missed;
    for (const core::CheckLine& line : last_->lines) {
        const bool isTold = faceless_ && line.name == u"face";  // by CutRemark()
        if (line.state == core::CheckState::Missed && !isTold) {
            const QString joint = line.value && line.fault.isEmpty()
                                      ? u" "_s
                                      : u": "_s;  // a word, not a figure, follows
            missed << line.label + joint + core::FigureText(line) + u'.';
        }
    }
    return missed.isEmpty() ||
           controls::AskYesNo(&window_, missed.join(u'\n') + u" Trotzdem erstellen?"_s,
                              controls::Severity::Warning);
}

QString CheckPanel::CutRemark() const {
    return faceless_ ? u"Auf dem Foto wurde kein Gesicht gefunden."_s : QString();
}

void CheckPanel::SaveReport() {
    core::SaveDialog dialog;
    dialog.title = u"Bericht speichern"_s;
    dialog.filter = u"PDF (*.pdf)|*.pdf"_s;
    dialog.defaultExtension = u"pdf"_s;
    dialog.initialFolder = data_.CurrentFileFolder();
    dialog.fileName = QFileInfo(data_.CurrentFile()).completeBaseName() + u"_pruefung"_s;
    if (const auto path = ui_.AskForSaveFile(dialog)) {
        const controls::WaitCursor wait;
        WriteCheckReport(Report(), *path);
        Q_EMIT actions_.Succeeded(u"Gespeichert: "_s + QFileInfo(*path).fileName());
    }
}

/// On the paper of the printer that the user chooses; the page's margins keep it readable.
void CheckPanel::PrintReport() {
    if (!data_.Printer().ShowSetupDialog(window_.windowHandle())) {
        return;
    }
    const controls::WaitCursor wait;
    const QSizeF paper = data_.Printer().Paper().geometry.page;
    data_.Printer().Print(CheckReportPage(Report(), paper));
}

}  // namespace kadrona::app
