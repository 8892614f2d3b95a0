#pragma once

#include <functional>

class QStatusBar;

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;

/// What the editing tools use of the main window. All of it outlives them.
struct ToolSurroundings {
    MainActions& actions;
    imaging::view::ImageView& view;
    QStatusBar& statusBar;
    std::function<void(bool show)> showTemplateLayer;
    std::function<void()> zoomFit;
    std::function<void()> zoomFull;
};

}  // namespace kadrona::app
