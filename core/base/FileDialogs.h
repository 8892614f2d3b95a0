#pragma once

#include <QString>
#include <QStringList>

namespace kadrona::core {

/// Initial folder and filter of the dialog that opens photos.
struct OpenDialog {
    QString initialFolder;
    /// Pairs of a name and patterns, separated by "|".
    QString filter;

    /// With the formats that are offered, and no folder yet.
    static OpenDialog OfPhotos();

    /// "*.gif" and so on, of all entries, each once.
    QStringList Patterns() const;
};

/// The dialog that saves passport photos.
struct SaveDialog {
    QString title;
    /// As for OpenDialog; each entry has one pattern.
    QString filter;
    /// Without the dot.
    QString defaultExtension;
    QString initialFolder;
    QString fileName;

    /// With title and formats, and neither folder nor name yet.
    static SaveDialog OfPhotos();
};

}  // namespace kadrona::core
