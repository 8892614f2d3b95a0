#pragma once

#include <QString>

#include "imaging/document/LayeredImage.h"
#include "imaging/reading/ImageReader.h"

namespace kadrona::core {

class Settings;

/// Reads a photo, turned by its own orientation where ImgAutoRotate is on. `progress` is told of
/// one that takes long, null for none. Throws imaging::ReadError and imaging::ReadCancelled.
imaging::LoadedImage ReadPhoto(const QString& path, const Settings& settings,
                               imaging::ReadProgress* progress = nullptr);

/// The same of the bytes of an image file that has none; `name` stands for it in the text of an
/// error.
imaging::LoadedImage ReadPhotoBytes(const QByteArray& bytes, const QString& name,
                                    const Settings& settings,
                                    imaging::ReadProgress* progress = nullptr);

/// Makes a photo layer 0 of `image`. The layers and the undo history of the photo before are gone.
void ShowPhoto(imaging::LoadedImage photo, imaging::LayeredImage& image);

/// Reads a photo into layer 0 of `image`. Throws imaging::ReadError, with the image empty.
void OpenPhoto(const QString& path, const Settings& settings, imaging::LayeredImage& image);

/// The automatic white balance of a freshly opened photo, where AutoWhiteBalance is on.
void BalancePhoto(const Settings& settings, imaging::LayeredImage& image);

/// The quarter turns that the settings ask for after a photo was opened: left first, then right.
void TurnOpenedPhoto(const Settings& settings, imaging::LayeredImage& image);

/// A photo brighter than this on average may be refused by an authority.
inline constexpr int BrightestAccepted = 190;
inline const QString TooBrightWarning = QStringLiteral(
    "Hinweis! Das Bild ist durchschnittlich zu hell und wird womöglich nicht akzeptiert!");

/// (red + green + blue) div 3 of the average colour of a whole photo, 0 ... 255.
int AverageBrightness(const imaging::Pixels& photo);

}  // namespace kadrona::core
