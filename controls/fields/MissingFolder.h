#pragma once

#include <QWidget>

class QTimer;

namespace kadrona::controls {

class PathEdit;

/// A line below the field of a folder that says so while there is no such folder; hidden otherwise,
/// and where the folder is on a share or disk that does not answer. Looks while the field is shown.
/// Object names: the field's + "Missing", and the same + "Create" for the button.
class MissingFolder : public QWidget {
    Q_OBJECT

 public:
    /// Whether a button makes the folder. Not where it may be the mount point of a share, which
    /// would be filled in the share's place.
    enum class Creation { Offered, None };

    /// `field` lives as long as the line.
    explicit MissingFolder(PathEdit& field, Creation creation = Creation::None);

 protected:
    /// A folder may come or go between two showings of the field.
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void AddCreateButton();
    void Look();
    void Create();

    PathEdit& field_;
    QTimer* delay_;
};

}  // namespace kadrona::controls
