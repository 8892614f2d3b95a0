#pragma once

#include <gtest/gtest.h>

#include <QTextStream>

#include "core/Data.h"
#include "tests/support/CoreFakes.h"
#include "tests/support/PixelMatchers.h"

namespace kadrona::testing {

/// The arguments of a command, which stand between blanks.
inline QStringList Arguments(const char* line) {
    return QString::fromUtf8(line).split(u' ', Qt::SkipEmptyParts);
}

/// The data module that a command works on, and what the command says.
class Command : public ::testing::Test {
 protected:
    Command() { data.InitSystem(); }

    void SavePhoto(const char* name, int width, int height, int value = 120) {
        QImage photo(width, height, QImage::Format_RGB32);
        photo.fill(qRgb(value, value, value));
        installation.Write(name, {});
        ASSERT_TRUE(photo.save(installation.Path(name)));
    }

    /// Runs `make` (MakeSheets, CheckPhotos, ...); gives its exit code.
    template <typename Make, typename Request>
    int RunCommand(Make make, const Request& request) {
        QTextStream outputStream(&output);
        QTextStream errorStream(&errors);
        return make(request, data, outputStream, errorStream);
    }

    Installation installation;
    FakeInterface ui;
    core::TData data{ui, installation.Folders()};
    QString output;
    QString errors;
};

}  // namespace kadrona::testing
