#pragma once

// What the tests of windows have in common.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "tests/support/Errors.h"
#include "tests/support/Input.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::testing {

/// The texts of a list or of a combo box, joined by bars.
inline QString Items(const QAbstractItemModel& model) {
    QStringList items;
    for (int row = 0; row < model.rowCount(); ++row) {
        items.append(model.index(row, 0).data().toString());
    }
    return items.join(u'|');
}
inline QString Items(const QAbstractItemView& list) {
    return Items(*list.model());
}
inline QString Items(const QComboBox& box) {
    return Items(*box.model());
}

inline void ClickButton(const QObject& window, QAnyStringView name) {
    Child<QAbstractButton>(window, name).click();
}

}  // namespace kadrona::testing
