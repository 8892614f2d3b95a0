#pragma once

#include <QString>

namespace kadrona::core {

/// Where the program and its data stand: full paths without a trailing separator, computed once.
struct Folders {
    /// Below the folder of the program file and the machine-wide folder for application data.
    /// Creates the data folder.
    Folders(const QString& programFolder, const QString& commonAppData);
    static Folders OfThisMachine();

    QString program;
    /// Empty when it could not be created; what lies in it is then sought in the root.
    QString data;
    QString templates;
    QString curves;
    QString database;
};

}  // namespace kadrona::core
