#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <initializer_list>

namespace kadrona::testing {

// The mouse as a person uses it. Positions are in the widget's coordinates and may have fractions
// and lie outside, which QTest's do not.

/// MouseButtonPress, MouseButtonDblClick, MouseMove with the button held, or MouseButtonRelease.
inline void SendMouse(QWidget& widget, QEvent::Type type, QPointF at,
                      Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = {}) {
    QMouseEvent event(type, at, widget.mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, modifiers);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Presses at the first place of the way, moves along it and releases at its end; with one place a
/// click.
inline void Drag(QWidget& widget, std::initializer_list<QPointF> way,
                 Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {}) {
    SendMouse(widget, QEvent::MouseButtonPress, *way.begin(), button, modifiers);
    for (const QPointF* to = way.begin() + 1; to != way.end(); ++to) {
        SendMouse(widget, QEvent::MouseMove, *to, button, modifiers);
    }
    SendMouse(widget, QEvent::MouseButtonRelease, *(way.end() - 1), button, modifiers);
}

/// `angle` is in eighths of a degree: a notch is 120. Whether the widget took it.
inline bool SendWheel(QWidget& widget, QPointF at, int angle,
                      Qt::KeyboardModifiers modifiers = {}) {
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

inline QImage Grabbed(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace kadrona::testing
