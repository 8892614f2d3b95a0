#include "app/MainActions.h"

#include <array>
#include <stdexcept>

#include "controls/theme/Icons.h"
#include "core/settings/Settings.h"
#include "core/sheet/SheetLayout.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr std::array Definitions = {
    ActionDefinition{u"acOpen", u"Öffnen", u"Bild öffnen", u"Ctrl+N", u"open", -1,
                     UpdateRule::None},
    ActionDefinition{u"acOpenWithProfile", u"Mit Einstellungen öffnen",
                     u"Wendet Einstellungen automatisch an", u"", u"open-with-profile", -1,
                     UpdateRule::None},
    ActionDefinition{u"acClose", u"Beenden", u"Beenden", u"Ctrl+Q", u"quit", -1, UpdateRule::None},
    ActionDefinition{u"acCrop", u"Passbilder erstellen", u"Passbilder erstellen", u"Ctrl+P",
                     u"create-photos", 5, UpdateRule::Editing},
    ActionDefinition{u"acPrintImage", u"Drucken", u"Drucken", u"", u"print", -1, UpdateRule::Sheet},
    ActionDefinition{u"acPrinSetup", u"Drucker Einstellung", u"Drucker Einstellung", u"",
                     u"printer-setup", -1, UpdateRule::None},
    ActionDefinition{u"acZoomFull", u"Volle Bildgröße", u"Volle Bildgröße", u"", u"zoom-full", -1,
                     UpdateRule::None},
    ActionDefinition{u"acZoomFit", u"Bildgröße anpassen", u"Bildgröße anpassen", u"", u"zoom-fit",
                     -1, UpdateRule::None},
    ActionDefinition{u"acRotateLeft", u"Nach Links drehen", u"Nach Links drehen", u"",
                     u"rotate-left", -1, UpdateRule::None},
    ActionDefinition{u"acRotateRight", u"Nach Rechts drehen", u"Nach Rechts drehen", u"",
                     u"rotate-right", -1, UpdateRule::None},
    ActionDefinition{u"acAbout", u"Über", u"Info", u"", u"about", -1, UpdateRule::None},
    ActionDefinition{u"acSave", u"Speichern", u"Speichern", u"Ctrl+S", u"save", -1,
                     UpdateRule::Sheet},
    ActionDefinition{u"acUndo", u"Rückgängig", u"Rückgängig", u"Ctrl+Z", u"undo", -1,
                     UpdateRule::Undo},
    ActionDefinition{u"acRotateDlg", u"Bild drehen", u"Bild stufenweise drehen", u"",
                     u"rotate-free", 3, UpdateRule::Editing},
    ActionDefinition{u"acSetWhitePoint", u"Weißpunkt", u"Weißpunkt setzen", u"", u"white-point", 4,
                     UpdateRule::Editing, true},
    ActionDefinition{u"acGradation", u"Gradation", u"Gradationskurve", u"Ctrl+G", u"gradation", 1,
                     UpdateRule::Editing},
    ActionDefinition{u"acShowLayer", u"Schablone an/aus", u"Schablone an/aus", u"Ctrl+L",
                     u"template-shown", 7, UpdateRule::Editing, true},
    ActionDefinition{u"acPrinterProfilDlg", u"Druck Profile", u"Druck Profile", u"",
                     u"printer-profiles", -1, UpdateRule::None},
    ActionDefinition{u"acSchwarzweiss", u"Schwarz Weiß", u"Schwarz Weiß Bild", u"", u"black-white",
                     2, UpdateRule::Editing},
    ActionDefinition{u"acShowConfig", u"Einstellungen", u"Einstellungen", u"", u"settings", -1,
                     UpdateRule::None},
    ActionDefinition{u"acBeauty", u"Retuschier Stempel", u"Retuschier Stempel", u"", u"retouch", 0,
                     UpdateRule::Editing, true},
    ActionDefinition{u"acSearchArchiv", u"Bild Archiv", u"Bild Archiv öffnen", u"Ctrl+F",
                     u"archive", -1, UpdateRule::None},
    ActionDefinition{u"acColorConfig", u"Farben anpassen", u"", u"", u"colors", 6,
                     UpdateRule::Editing},
    ActionDefinition{u"acSaveImageFast", u"Speichern", u"", u"", u"save-fast", -1,
                     UpdateRule::SaveFast},
};

/// acCrop's tag; it also needs a template to cut by.
constexpr int CropTag = 5;

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
            return {
                .enabled = editable && (definition.tag != CropTag || circumstances.templateLoaded),
                .visible = !ToolSwitchedOff(definition.tag, settings)};
        case UpdateRule::Sheet:
            return {.enabled = circumstances.sheetCreated, .visible = !settings.PrintAfterCrop()};
        case UpdateRule::Undo:
            return {.enabled = circumstances.canUndo};
        case UpdateRule::SaveFast:
            return {.enabled = circumstances.sheetCreated &&
                               circumstances.layoutIndex == core::SinglePhotoLayout,
                    .visible = !settings.PrintAfterCrop()};
        case UpdateRule::None:
            break;
    }
    return {};
}

MainActions::MainActions(QObject* parent) : QObject(parent) {
    for (const ActionDefinition& definition : Definitions) {
        auto* action = new QAction(controls::Icon(QString::fromUtf16(definition.icon)),
                                   QString::fromUtf16(definition.caption), this);
        action->setObjectName(QString::fromUtf16(definition.name));
        action->setToolTip(QString::fromUtf16(definition.hint));
        action->setShortcut(QKeySequence(QString::fromUtf16(definition.shortcut)));
        action->setCheckable(definition.checkable);
        actions_.insert(action->objectName(), action);
    }
    QAction* showLayer = (*this)[u"acShowLayer"_s];
    connect(showLayer, &QAction::toggled, showLayer, [showLayer](bool hidden) {
        showLayer->setIcon(controls::Icon(hidden ? u"template-hidden"_s : u"template-shown"_s));
    });
}

QAction* MainActions::operator[](const QString& name) const {
    QAction* action = actions_.value(name);
    if (action == nullptr) {
        throw std::out_of_range("no such action: " + name.toStdString());
    }
    return action;
}

void MainActions::SetChecked(const QString& name, bool checked) {
    if (checked) {
        for (const QString& other : {u"acSetWhitePoint"_s, u"acShowLayer"_s, u"acBeauty"_s}) {
            (*this)[other]->setChecked(false);
        }
    }
    (*this)[name]->setChecked(checked);
}

void MainActions::Update(const ActionCircumstances& circumstances, const core::Settings& settings) {
    for (const ActionDefinition& definition : Definitions) {
        const ActionState state = StateOf(definition, circumstances, settings);
        QAction* action = (*this)[QString::fromUtf16(definition.name)];
        action->setEnabled(state.enabled);
        action->setVisible(state.visible);
    }
}

}  // namespace kadrona::app
