#pragma once

#include <QObject>

namespace kadrona::controls {

/// Greys the label of a field that is disabled: a label follows its buddy. Install it as an event
/// filter of the application.
class LabelsFollowFields : public QObject {
    Q_OBJECT

 public:
    using QObject::QObject;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kadrona::controls
