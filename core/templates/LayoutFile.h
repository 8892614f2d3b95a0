#pragma once

#include <QRect>
#include <QString>

namespace kadrona::core {

/// "kdr.ini": a rectangle for each section, in "PosX", "PosY", "Width" and "Height". Each call
/// opens the file, and throws platform::FileError where it cannot be read or written.
class LayoutFile {
 public:
    explicit LayoutFile(const QString& dataFolder);
    static QString PathIn(const QString& dataFolder);

    /// Values that are missing are 0.
    QRect Read(const QString& section) const;
    void Save(const QString& section, const QRect& rectangle) const;

 private:
    QString path_;
};

}  // namespace kadrona::core
