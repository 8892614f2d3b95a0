#pragma once

#include <QHash>
#include <QString>
#include <optional>

#include "core/base/FileDialogs.h"
#include "imaging/document/LayeredImage.h"

namespace kadrona::core {

class Settings;
class UserInterface;

/// Writes an image's photo as every finished one is written: with its resolution, its IPTC items
/// where they are wanted, and the program's name; with nothing else of what the customer's photo
/// brought (where it was taken, by which camera, its preview). Throws imaging::WriteError.
void WritePhoto(const imaging::LayeredImage& image, const QString& path, bool withTags = true);

/// Saves finished photos: under a name that the user chooses, and quickly.
class PhotoSaver {
 public:
    /// `ui` outlives the saver.
    explicit PhotoSaver(UserInterface& ui) : ui_(ui) {}

    /// Where photos are saved: ImageSaveDir, or while there is no such folder the last save folder.
    QString Folder(const Settings& settings) const;
    /// Folder of the file last chosen in the save dialog, with a trailing separator; empty at
    /// first.
    const QString& LastFolder() const { return lastFolder_; }

    /// A photo that is to be saved.
    struct Request {
        QString folder;
        /// Empty where the user is asked for it.
        QString fileName;
        /// Write it in 413 x 531 pixels.
        bool scale = false;
        /// The photo that the image was made of; what the dialog proposes is made of its name.
        QString source;
        /// Write the archive's tags too.
        bool withTags = true;
    };

    /// A photo that was written.
    struct Saved {
        /// Empty where the user chose none.
        QString path;
        /// As written, pixels; with `resolution` its size on paper.
        QSize size;
        imaging::DotsPerInch resolution;
    };

    /// Writes an image, over an older file of that name. Whoever calls
    /// asks before something is lost.
    ///
    /// After a save under a given name the newest undo step is taken back, whether or not the image
    /// was scaled, and the others are dropped. Throws imaging::WriteError where the file cannot be
    /// written; the image and its undo steps are then as they were.
    Saved Save(imaging::LayeredImage& image, const Request& request);

 private:
    std::optional<QString> AskForPath(const SaveDialog& dialog);
    Saved SaveQuickly(imaging::LayeredImage& image, const QString& path, const Request& request);

    UserInterface& ui_;
    QString lastFolder_;
};

}  // namespace kadrona::core
