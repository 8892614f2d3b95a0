#pragma once

#include <QWidget>

class QTimer;

namespace kadrona::controls {

class PathEdit;

/// A line below the field of a folder that says so while there is no such folder, with a button
/// that makes it; hidden otherwise. Object names: the field's + "Missing", and the same + "Create"
/// for the button.
class MissingFolder : public QWidget {
    Q_OBJECT

 public:
    /// `field` lives as long as the line.
    explicit MissingFolder(const PathEdit& field);

 private:
    void Look();
    void Create();

    const PathEdit& field_;
    QTimer* delay_;
};

}  // namespace kadrona::controls
