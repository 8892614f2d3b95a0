#pragma once

#include <QAction>
#include <QObject>
#include <array>
#include <functional>
#include <span>
#include <vector>

namespace kadrona::core {
class Settings;
}

namespace kadrona::app {

/// Every action of the main window, in the order of the action list. The object name of each is its
/// name here behind "ac".
enum class Action {
    Open,
    OpenWithProfile,
    Close,
    Crop,
    PrintImage,
    PrinSetup,
    ZoomFull,
    ZoomFit,
    RotateLeft,
    RotateRight,
    About,
    Save,
    Undo,
    RotateDlg,
    SetWhitePoint,
    Gradation,
    ShowLayer,
    PrinterProfilDlg,
    Schwarzweiss,
    ShowConfig,
    Beauty,
    SearchArchiv,
    ColorConfig,
    SaveImageFast,
    AlignToFace,
    LevelHead,
    LevelByLine,
    ShowCheck,
    UploadFile,
    PrintAgain,
    Paste,
    ShowSheet,
    AddToSheet,
    Manual,
    ArchivePhoto,
};

/// The modes that the mouse can be in on the photo, one at a time.
inline constexpr std::array MouseModes{Action::SetWhitePoint, Action::Beauty, Action::LevelByLine};

/// What decides whether an action can be used, besides the settings.
struct ActionCircumstances {
    bool imageLoaded = false;
    bool sheetCreated = false;
    bool templateLoaded = false;
    bool canUndo = false;
    /// There is something in the view: not after a photo that could not be read.
    bool pictureShown = false;
    /// The photo as it was cut is still there.
    bool cutKnown = false;
    /// A sheet was made of the open photo, which is not in the archive yet.
    bool archivable = false;
    bool sheetPrinted = false;
    /// Item index of the picture count box.
    int layoutIndex = -1;
};

/// Which rule enables and shows an action.
enum class UpdateRule {
    None,        ///< always usable
    Editing,     ///< acUpdate: while a photo is open and no sheet made
    Sheet,       ///< acPrintImageUpdate: once a sheet is made
    Undo,        ///< acUndoUpdate: while something can be undone
    PrintAgain,  ///< once a sheet was printed
    SaveFast,    ///< acSaveImageFastUpdate: a sheet of one photo
    Cut,         ///< while there is a cut photo, or a template to cut it by
    Archivable,  ///< once a sheet is made whose photo is not in the archive yet
};

/// One row of the list of actions.
struct ActionDefinition {
    Action action;
    const char16_t* name;
    const char16_t* caption;
    const char16_t* hint;      ///< may be empty
    const char16_t* shortcut;  ///< may be empty
    const char16_t* icon;
    int tag;  ///< what acUpdate tells the editing tools apart by; -1 none
    UpdateRule rule;
    bool checkable = false;
};

/// In the order of Action.
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

/// The main window's actions, each with its name as object name. What each does is said by the
/// class that has the group it belongs to.
class MainActions : public QObject {
    Q_OBJECT

 public:
    /// `window` is where a handler's failure is shown; may be null.
    explicit MainActions(QWidget* window = nullptr);

    QAction* operator[](Action action) const { return actions_.at(static_cast<size_t>(action)); }

    /// Calls `handler` whenever the action is triggered, as long as `owner` lives. What it throws
    /// becomes a message.
    void Connect(Action action, QObject* owner, std::function<void()> handler);

    bool IsChecked(Action action) const { return (*this)[action]->isChecked(); }

    /// Checks or unchecks a check action. Checking one unchecks the others of the exclusive group
    /// (MouseModes and ShowLayer). Triggers nothing.
    void SetChecked(Action action, bool checked);

    /// Ends the modes that the mouse is in.
    void LeaveModes();

    /// Runs the update handlers of all actions.
    void Update(const ActionCircumstances& circumstances, const core::Settings& settings);

 Q_SIGNALS:
    /// A handler has run, whether or not it failed.
    void Handled();
    /// What an action has done where nothing else shows it, e.g. written a file: a short text for
    /// the status bar.
    void Succeeded(const QString& what);

 private:
    QWidget* window_;
    std::vector<QAction*> actions_;
};

}  // namespace kadrona::app
