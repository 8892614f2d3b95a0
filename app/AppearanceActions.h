#pragma once

#include <QObject>

#include "platform/DesktopAppearance.h"

class QMenu;

namespace kadrona::app {

/// Shows the program light or dark as the user chose, or as the desktop does: its portal's word,
/// else the colours that it gives to every program. Light where neither says anything. What cannot
/// be read counts as not chosen.
void ApplyChosenAppearance();

/// The choice, in a menu that outlives the object.
class AppearanceActions : public QObject {
    Q_OBJECT

 public:
    explicit AppearanceActions(QMenu& menu);

 private:
    platform::DesktopAppearanceWatch desktop_;
};

}  // namespace kadrona::app
