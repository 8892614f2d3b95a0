#pragma once

#include <QByteArray>
#include <QStringList>

class QMimeData;

namespace kadrona::controls {

/// What a drag or the clipboard holds that the program takes. A picture that only has an address is
/// none: the program fetches nothing from the net.
struct Offer {
    /// Paths of local files, in the order of the offer, at most MostOfferedFiles; other addresses
    /// are left out.
    QStringList files;
    /// It holds a picture itself.
    bool hasPicture = false;
    /// That picture, the bytes of an image file, where it stands in a text. Others are only asked
    /// for by PictureIn.
    QByteArray pictureInText;
    /// Whoever offers has not answered. Nothing more is to be expected of him.
    bool isSilent = false;

    [[nodiscard]] bool IsEmpty() const { return files.isEmpty() && !hasPicture; }
};

constexpr int MostOfferedFiles = 1000;

/// Asks for what must be known to take or refuse it. Whoever offers may be slow, and the window
/// waits: the toolkit gives each question up after five to six seconds, and the first that nobody
/// answers is the last.
Offer ReadOffer(const QMimeData& data);

/// The bytes of the image file, asked for once; empty where none comes.
QByteArray PictureIn(const Offer& offer, const QMimeData& data);

}  // namespace kadrona::controls
