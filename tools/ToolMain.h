#pragma once

#include <QCoreApplication>
#include <QStringList>
#include <QTextStream>

#include "platform/Error.h"

namespace kadrona::tools {

/// main() of a tool that makes one file or folder out of another: runs `make(source, target)` on
/// its two arguments and returns the exit code. What fails goes to standard error as a German line.
template <typename Make>
int ToolMain(int argc, char** argv, const QString& usage, const Make& make) {
    constexpr int WrongUsage = 2;
    // Needs no window system; a build has none.
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QTextStream errors(stderr);
    if (arguments.size() != 3) {
        errors << usage << Qt::endl;
        return WrongUsage;
    }
    try {
        make(arguments[1], arguments[2]);
        return EXIT_SUCCESS;
    } catch (const platform::Error& error) {
        errors << error.Text() << Qt::endl;
        return EXIT_FAILURE;
    }
}

}  // namespace kadrona::tools
