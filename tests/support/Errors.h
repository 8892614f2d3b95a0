#pragma once

#include <QObject>
#include <QString>
#include <stdexcept>

#include "platform/Error.h"

namespace kadrona::testing {

/// The text of the `Error` that a step throws; empty where it throws nothing. An error of another
/// kind passes through and fails the test.
template <typename Error = platform::Error, typename Step>
QString TextOf(const Step& step) {
    try {
        step();
    } catch (const Error& error) {
        return error.Text();
    }
    return {};
}

/// The widget, action or other object of a window that bears this name, or the only one of its type
/// where none is given. Where there is none the test fails with its name.
template <typename T>
T& Child(const QObject& window, QAnyStringView name = {}) {
    const QString wanted = name.isNull() ? QString() : name.toString();
    if (auto* found = window.findChild<T*>(wanted)) {
        return *found;
    }
    throw std::runtime_error("There is no " + wanted.toStdString() + " of type " +
                             T::staticMetaObject.className());
}

}  // namespace kadrona::testing
