#pragma once

#include <QString>
#include <functional>

namespace kadrona::controls {
class StatusPanels;
}

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::dialogs {
class TfmImgSearch;
}

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

/// "Bild Archiv" of the main window: lets the user choose an archived photo and makes a sheet of
/// it that is ready to be printed.
class ArchiveActions {
 public:
    /// What of the main window the actions work on; all of it outlives them.
    struct Window {
        core::UserInterface& ui;
        core::TData& data;
        const core::Settings& settings;
        imaging::view::ImageView& view;
        controls::StatusPanels& statusPanels;
        dialogs::TfmImgSearch& archive;
        /// The print action, which is hidden and so cannot be triggered while it runs by itself.
        std::function<void()> print;
        std::function<int()> layoutIndex;
        /// The view shows a finished sheet now or, where `created` is false, nothing any more.
        std::function<void(bool created)> photoReplaced;
    };

    explicit ArchiveActions(Window window) : window_(std::move(window)) {}

    void acSearchArchivExecute();

 private:
    void OpenForPrinting(const QString& path);
    void MakeSheet(const QString& path);

    Window window_;
};

}  // namespace kadrona::app
