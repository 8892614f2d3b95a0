#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <QWidget>
#include <deque>
#include <functional>

#include "tests/support/Errors.h"

namespace kadrona::testing {

/// Answers modal windows one after the other, as a user would: each expected window by its object
/// name and what is done in it. A window that is not expected, or one whose step leaves it open for
/// two seconds, fails the test and is closed, so that no test hangs.
class ModalDriver {
 public:
    ModalDriver() {
        timer_.setInterval(5);
        QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
        timer_.start();
    }

    ~ModalDriver() {
        for (const Step& step : steps_) {
            ADD_FAILURE() << "the window " << step.window.toStdString() << " never appeared";
        }
    }

    ModalDriver& Expect(const QString& window, std::function<void(QWidget&)> answer) {
        steps_.push_back({window, std::move(answer)});
        return *this;
    }

    /// Expects a window and presses one of its buttons.
    ModalDriver& Press(const QString& window, const QString& button) {
        return Expect(window, [button](QWidget& shown) {
            auto* pressed = shown.findChild<QAbstractButton*>(button);
            ASSERT_NE(pressed, nullptr) << button.toStdString();
            pressed->click();
        });
    }

    /// Expects a window, puts a text into one of its lines and presses one of its buttons.
    ModalDriver& Enter(const QString& window, const QString& line, const QString& text,
                       const QString& button = QStringLiteral("OkButton")) {
        return Expect(window, [line, text, button](QWidget& shown) {
            Child<QLineEdit>(shown, line).setText(text);
            Child<QAbstractButton>(shown, button).click();
        });
    }

    ModalDriver& Accept(const QString& window) {
        return Expect(window, [](QWidget& shown) { dynamic_cast<QDialog&>(shown).accept(); });
    }
    ModalDriver& Close(const QString& window) {
        return Expect(window, [](QWidget& shown) { shown.close(); });
    }

    /// Expects a message that contains all of the parts and presses one of its buttons.
    ModalDriver& Answer(const QStringList& parts,
                        const QString& button = QStringLiteral("OkButton")) {
        return Expect(QStringLiteral("MessageBox"), [parts, button](QWidget& shown) {
            // A long name is broken where it has to be.
            const QString text = dynamic_cast<QMessageBox&>(shown).text().remove(QChar(0x200b));
            for (const QString& part : parts) {
                EXPECT_TRUE(text.contains(part))
                    << part.toStdString() << " is not in " << text.toStdString();
            }
            shown.findChild<QAbstractButton*>(button)->click();
        });
    }
    ModalDriver& Answer(const QString& part, const QString& button = QStringLiteral("OkButton")) {
        return Answer(QStringList(part), button);
    }

 private:
    struct Step {
        QString window;
        std::function<void(QWidget&)> answer;
    };

    void Look() {
        QWidget* shown = QApplication::activeModalWidget();
        // A progress box comes where the machine is slow, and goes by itself.
        if (shown == nullptr || !shown->isVisible() ||
            shown->objectName() == QStringLiteral("ProgressBox")) {
            return;
        }
        if (answered_.contains(shown)) {
            if (++waits_ > 400) {
                Refuse(*shown, "stayed open");
            }
            return;
        }
        answered_.append(shown);
        QObject::connect(qobject_cast<QDialog*>(shown), &QDialog::finished, &timer_,
                         [this, shown] { answered_.removeAll(shown); });
        waits_ = 0;
        if (steps_.empty() || steps_.front().window != shown->objectName()) {
            Refuse(*shown, "was not expected");
            return;
        }
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        // A timer does not fire again within its own slot, and the answer may open more windows.
        QTimer::singleShot(0, shown, [step, shown] { step.answer(*shown); });
    }

    static void Refuse(QWidget& window, const char* why) {
        const auto* message = qobject_cast<QMessageBox*>(&window);
        const QString says = message != nullptr ? message->text() : window.windowTitle();
        ADD_FAILURE() << "the window " << window.objectName().toStdString() << " (\""
                      << says.toStdString() << "\") " << why;
        dynamic_cast<QDialog&>(window).QDialog::done(QDialog::Rejected);
    }

    QTimer timer_;
    std::deque<Step> steps_;
    QList<QWidget*> answered_;
    int waits_ = 0;
};

}  // namespace kadrona::testing
