#include "app/base/MainActions.h"

#include <array>

#include "controls/messages/ActionGuard.h"
#include "controls/theme/Icons.h"
#include "core/settings/Settings.h"
#include "core/sheet/SheetLayout.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr std::array Definitions = {
    ActionDefinition{Action::Open, u"acOpen", u"Öffnen", u"Bild öffnen", u"Ctrl+N", u"open", -1,
                     UpdateRule::None},
    ActionDefinition{Action::OpenWithProfile, u"acOpenWithProfile", u"Mit Einstellungen öffnen",
                     u"Wendet Einstellungen automatisch an", u"", u"open-with-profile", -1,
                     UpdateRule::None},
    ActionDefinition{Action::Close, u"acClose", u"Beenden", u"Beenden", u"Ctrl+Q", u"quit", -1,
                     UpdateRule::None},
    ActionDefinition{Action::Crop, u"acCrop", u"Passbilder erstellen", u"Passbilder erstellen",
                     u"Ctrl+P", u"create-photos", 5, UpdateRule::Editing},
    ActionDefinition{Action::PrintImage, u"acPrintImage", u"Drucken", u"Drucken", u"", u"print", -1,
                     UpdateRule::Sheet},
    ActionDefinition{Action::PrinSetup, u"acPrinSetup", u"Drucker Einstellung",
                     u"Drucker Einstellung", u"", u"printer-setup", -1, UpdateRule::None},
    ActionDefinition{Action::ZoomFull, u"acZoomFull", u"Volle Bildgröße", u"Volle Bildgröße", u"",
                     u"zoom-full", -1, UpdateRule::None},
    ActionDefinition{Action::ZoomFit, u"acZoomFit", u"Bildgröße anpassen", u"Bildgröße anpassen",
                     u"", u"zoom-fit", -1, UpdateRule::None},
    ActionDefinition{Action::RotateLeft, u"acRotateLeft", u"Nach Links drehen",
                     u"Nach Links drehen", u"", u"rotate-left", -1, UpdateRule::None},
    ActionDefinition{Action::RotateRight, u"acRotateRight", u"Nach Rechts drehen",
                     u"Nach Rechts drehen", u"", u"rotate-right", -1, UpdateRule::None},
    ActionDefinition{Action::About, u"acAbout", u"Über", u"Info", u"", u"about", -1,
                     UpdateRule::None},
    ActionDefinition{Action::Save, u"acSave", u"Speichern", u"Speichern", u"Ctrl+S", u"save", -1,
                     UpdateRule::Sheet},
    ActionDefinition{Action::Undo, u"acUndo", u"Rückgängig", u"Rückgängig", u"Ctrl+Z", u"undo", -1,
                     UpdateRule::Undo},
    ActionDefinition{Action::RotateDlg, u"acRotateDlg", u"Bild drehen", u"Bild stufenweise drehen",
                     u"", u"rotate-free", 3, UpdateRule::Editing},
    ActionDefinition{Action::SetWhitePoint, u"acSetWhitePoint", u"Weißpunkt", u"Weißpunkt setzen",
                     u"", u"white-point", 4, UpdateRule::Editing, true},
    ActionDefinition{Action::Gradation, u"acGradation", u"Gradation", u"Gradationskurve", u"Ctrl+G",
                     u"gradation", 1, UpdateRule::Editing},
    ActionDefinition{Action::ShowLayer, u"acShowLayer", u"Schablone an/aus", u"Schablone an/aus",
                     u"Ctrl+L", u"template-shown", 7, UpdateRule::Editing, true},
    ActionDefinition{Action::PrinterProfilDlg, u"acPrinterProfilDlg", u"Druck Profile",
                     u"Druck Profile", u"", u"printer-profiles", -1, UpdateRule::None},
    ActionDefinition{Action::Schwarzweiss, u"acSchwarzweiss", u"Schwarz Weiß", u"Schwarz Weiß Bild",
                     u"", u"black-white", 2, UpdateRule::Editing},
    ActionDefinition{Action::ShowConfig, u"acShowConfig", u"Einstellungen", u"Einstellungen", u"",
                     u"settings", -1, UpdateRule::None},
    ActionDefinition{Action::Beauty, u"acBeauty", u"Retuschier Stempel", u"Retuschier Stempel", u"",
                     u"retouch", 0, UpdateRule::Editing, true},
    ActionDefinition{Action::SearchArchiv, u"acSearchArchiv", u"Bild Archiv", u"Bild Archiv öffnen",
                     u"Ctrl+F", u"archive", -1, UpdateRule::None},
    ActionDefinition{Action::ColorConfig, u"acColorConfig", u"Farben anpassen", u"", u"", u"colors",
                     6, UpdateRule::Editing},
    ActionDefinition{Action::SaveImageFast, u"acSaveImageFast", u"Speichern", u"", u"",
                     u"save-fast", -1, UpdateRule::SaveFast},
    ActionDefinition{Action::AlignToFace, u"acAlignToFace", u"Am Gesicht ausrichten",
                     u"Schablone am Gesicht ausrichten", u"Ctrl+E", u"align-face", 8,
                     UpdateRule::Editing},
    ActionDefinition{Action::LevelHead, u"acLevelHead", u"Kopf gerade richten",
                     u"Dreht das Foto, bis die Augen waagerecht liegen", u"", u"rotate-free", 9,
                     UpdateRule::Editing},
    ActionDefinition{Action::LevelByLine, u"acLevelByLine", u"Linie durch die Augen",
                     u"Dreht das Foto nach einer Linie, die durch beide Pupillen gezogen wird", u"",
                     u"rotate-free", 10, UpdateRule::Editing, true},
    ActionDefinition{Action::ShowCheck, u"acShowCheck", u"Prüfung", u"Prüfung an/aus", u"F7",
                     u"align-face", -1, UpdateRule::None, true},
    ActionDefinition{Action::UploadFile, u"acUploadFile", u"Datei für Online-Antrag",
                     u"Macht eine Bilddatei, wie Behörden sie online annehmen", u"", u"save", -1,
                     UpdateRule::Cut},
    ActionDefinition{Action::PrintAgain, u"acPrintAgain", u"Noch einmal drucken",
                     u"Druckt das letzte Blatt noch einmal", u"Ctrl+Shift+P", u"print", -1,
                     UpdateRule::PrintAgain},
    ActionDefinition{Action::Paste, u"acPaste", u"Einfügen", u"Bild aus der Zwischenablage öffnen",
                     u"Ctrl+V", u"paste", -1, UpdateRule::None},
    ActionDefinition{Action::ShowSheet, u"acShowSheet", u"Blatt", u"Blatt an/aus", u"F8",
                     u"create-photos", -1, UpdateRule::None, true},
    ActionDefinition{Action::AddToSheet, u"acAddToSheet", u"Zum Blatt hinzufügen",
                     u"Schneidet das Bild und legt es zum Sammelblatt", u"Ctrl+B", u"add", 5,
                     UpdateRule::Editing},
    ActionDefinition{Action::Manual, u"acManual", u"Handbuch", u"Handbuch öffnen", u"F1", u"about",
                     -1, UpdateRule::None},
    ActionDefinition{Action::ArchivePhoto, u"acArchivePhoto", u"Archivieren",
                     u"Legt das fertige Passbild im Bildarchiv ab", u"", u"archive", -1,
                     UpdateRule::Archivable},
};

/// Tags of acCrop and acAlignToFace, which also need a template.
constexpr int CropTag = 5;
constexpr int AlignTag = 8;

bool NeedsTemplate(int tag) {
    return tag == CropTag || tag == AlignTag;
}

/// Tags of acLevelHead and acLevelByLine.
constexpr int LevelHeadTag = 9;
constexpr int LevelByLineTag = 10;

/// What a photo that could not be read does not enable.
bool NeedsPicture(int tag) {
    return tag == LevelHeadTag || tag == LevelByLineTag;
}

bool ToolSwitchedOff(int tag, const core::Settings& settings) {
    switch (tag) {
        case 1:
            return settings.ShowGradation();
        case 2:
            return settings.ShowBlackWhite();
        case 3:
            return settings.ShowRotate();
        case 4:
            return settings.WhiteBalancePipette();
        default:
            return false;
    }
}

}  // namespace

std::span<const ActionDefinition> ActionDefinitions() {
    return Definitions;
}

ActionState StateOf(const ActionDefinition& definition, const ActionCircumstances& circumstances,
                    const core::Settings& settings) {
    const bool editable = circumstances.imageLoaded && !circumstances.sheetCreated;
    switch (definition.rule) {
        case UpdateRule::Editing:
            return {.enabled = editable &&
                               (!NeedsTemplate(definition.tag) || circumstances.templateLoaded) &&
                               (!NeedsPicture(definition.tag) || circumstances.pictureShown),
                    .visible = !ToolSwitchedOff(definition.tag, settings)};
        case UpdateRule::Sheet:
            return {.enabled = circumstances.sheetCreated, .visible = !settings.PrintAfterCrop()};
        case UpdateRule::Undo:
            return {.enabled = circumstances.canUndo};
        case UpdateRule::PrintAgain:
            return {.enabled = circumstances.sheetPrinted};
        case UpdateRule::SaveFast:
            return {.enabled = circumstances.sheetCreated &&
                               circumstances.layoutIndex == core::SinglePhotoLayout,
                    .visible = !settings.PrintAfterCrop()};
        case UpdateRule::Cut:
            return {.enabled =
                        circumstances.cutKnown || (editable && circumstances.templateLoaded)};
        case UpdateRule::Archivable:
            return {.enabled = circumstances.sheetCreated && circumstances.archivable};
        case UpdateRule::None:
            break;
    }
    return {};
}

MainActions::MainActions(QWidget* window) : window_(window) {
    for (const ActionDefinition& definition : Definitions) {
        auto* action = new QAction(controls::Icon(QString::fromUtf16(definition.icon)),
                                   QString::fromUtf16(definition.caption), this);
        action->setObjectName(QString::fromUtf16(definition.name));
        action->setToolTip(QString::fromUtf16(definition.hint));
        action->setShortcut(QKeySequence(QString::fromUtf16(definition.shortcut)));
        action->setCheckable(definition.checkable);
        actions_.push_back(action);
    }
    QAction* showLayer = (*this)[Action::ShowLayer];
    connect(showLayer, &QAction::toggled, showLayer, [showLayer](bool hidden) {
        showLayer->setIcon(controls::Icon(hidden ? u"template-hidden"_s : u"template-shown"_s));
    });
}

void MainActions::Connect(Action action, QObject* owner, std::function<void()> handler) {
    connect((*this)[action], &QAction::triggered, owner, [this, handler = std::move(handler)] {
        controls::Guarded(window_, handler);
        Q_EMIT Handled();
    });
}

void MainActions::SetChecked(Action action, bool checked) {
    if (checked) {
        LeaveModes();
        (*this)[Action::ShowLayer]->setChecked(false);
    }
    (*this)[action]->setChecked(checked);
}

void MainActions::LeaveModes() {
    for (const Action mode : MouseModes) {
        (*this)[mode]->setChecked(false);
    }
}

void MainActions::Update(const ActionCircumstances& circumstances, const core::Settings& settings) {
    for (const ActionDefinition& definition : Definitions) {
        const ActionState state = StateOf(definition, circumstances, settings);
        QAction* action = (*this)[definition.action];
        action->setEnabled(state.enabled);
        action->setVisible(state.visible);
    }
}

}  // namespace kadrona::app
