#pragma once

#include <QObject>
#include <functional>
#include <memory>

class QMenu;

namespace kadrona::controls {
class PhotoStrip;
}

namespace kadrona::core {
class RecentPhotos;
}

namespace kadrona::app {

class PhotoSession;

/// The photos opened last: in a menu, and with their pictures in the empty window. Both can be
/// cleared and switched off there. All that is given outlives the object.
class RecentActions : public QObject {
    Q_OBJECT

 public:
    using Open = std::function<void(const QString& path)>;

    RecentActions(QMenu& menu, controls::PhotoStrip& strip, const PhotoSession& session, Open open);
    ~RecentActions() override;

    /// The session's photo was read from this file. Where that cannot be kept nothing is said: the
    /// photo is open all the same.
    void Remember(const QString& path);

 private:
    void Read();
    void FillMenu();
    void FillStrip();
    void SetKeeps(bool keeps);
    void Change(const std::function<void()>& change);

    QMenu& menu_;
    controls::PhotoStrip& strip_;
    const PhotoSession& session_;
    Open open_;
    std::unique_ptr<core::RecentPhotos> photos_;
};

}  // namespace kadrona::app
