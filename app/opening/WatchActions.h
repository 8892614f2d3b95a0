#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>

class QTimer;

namespace kadrona::controls {
class PhotoStrip;
}

namespace kadrona::core {
class Settings;
}

namespace kadrona::platform {
class FolderWatch;
}

namespace kadrona::app {

class MainActions;

/// Follows the folder that the user had watched: its newest photos stand in the strip as soon as
/// they are complete, a click opens one, and where the profile wants it the newest opens by itself.
/// All that is given outlives the object.
class WatchActions : public QObject {
    Q_OBJECT

 public:
    using Open = std::function<void(const QString& path)>;

    WatchActions(controls::PhotoStrip& strip, const core::Settings& settings, MainActions& actions,
                 Open open);
    ~WatchActions() override;

 private:
    void FollowSettings();
    void Look();
    void ShowFiles();
    void MakeOnePicture();
    void OpenNewest();

    controls::PhotoStrip& strip_;
    const core::Settings& settings_;
    MainActions& actions_;
    Open open_;
    QTimer* timer_;
    std::unique_ptr<platform::FolderWatch> watch_;
    bool unreadable_ = false;  ///< where the folder is kept
};

}  // namespace kadrona::app
