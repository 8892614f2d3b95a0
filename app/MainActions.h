#pragma once

#include <QAction>
#include <QObject>
#include <QString>
#include <span>

namespace kadrona::core {
class Settings;
}

namespace kadrona::app {

/// What decides whether an action can be used, besides the settings.
struct ActionCircumstances {
    bool imageLoaded = false;
    bool sheetCreated = false;
    bool templateLoaded = false;
    bool canUndo = false;
    /// Item index of the picture count box.
    int layoutIndex = -1;
};

/// Which rule enables and shows an action.
enum class UpdateRule {
    None,      ///< always usable
    Editing,   ///< acUpdate: while a photo is open and no sheet made
    Sheet,     ///< acPrintImageUpdate: once a sheet is made
    Undo,      ///< acUndoUpdate: while something can be undone
    SaveFast,  ///< acSaveImageFastUpdate: a sheet of one photo
};

/// One row of the list of actions.
struct ActionDefinition {
    const char16_t* name;
    const char16_t* caption;
    const char16_t* hint;      ///< may be empty
    const char16_t* shortcut;  ///< may be empty
    const char16_t* icon;
    int tag;  ///< what acUpdate tells the editing tools apart by; -1 none
    UpdateRule rule;
    bool checkable = false;
};

/// Every action of the main window, in the order of the action list.
std::span<const ActionDefinition> ActionDefinitions();

/// Whether an action is enabled and visible.
struct ActionState {
    bool enabled = true;
    bool visible = true;
    bool operator==(const ActionState&) const = default;
};

/// The update rules as one pure function of an action's definition.
ActionState StateOf(const ActionDefinition& definition, const ActionCircumstances& circumstances,
                    const core::Settings& settings);

/// The main window's actions, each with its name as object name. What they do is connected by the
/// main window.
class MainActions : public QObject {
    Q_OBJECT

 public:
    explicit MainActions(QObject* parent = nullptr);

    /// The action of a name. Throws std::out_of_range for an unknown one.
    QAction* operator[](const QString& name) const;

    bool IsChecked(const QString& name) const { return (*this)[name]->isChecked(); }

    /// Checks or unchecks a check action. Checking one unchecks the others of the exclusive group
    /// (acSetWhitePoint, acShowLayer, acBeauty). Triggers nothing.
    void SetChecked(const QString& name, bool checked);

    /// Runs the update handlers of all actions.
    void Update(const ActionCircumstances& circumstances, const core::Settings& settings);

 private:
    QHash<QString, QAction*> actions_;
};

}  // namespace kadrona::app
