#include "core/sheet/PhotoLoading.h"

#include <QBuffer>

#include "core/settings/Settings.h"
#include "imaging/face/FaceFinder.h"
#include "imaging/pixels/QuarterTurn.h"
#include "imaging/tone/AverageColour.h"
#include "imaging/tone/WhiteBalance.h"
#include "platform/Error.h"
#include "platform/SilenceWatch.h"

namespace kadrona::core {

using namespace Qt::StringLiterals;
using imaging::QuarterTurn;

namespace {

imaging::ReadOptions OptionsOf(const Settings& settings, imaging::ReadProgress* progress) {
    return {.applyOrientation = settings.ImgAutoRotate(), .progress = progress};
}

/// Empty where no face is found, or none can be looked for: the program's data is not installed, or
/// memory is short. The photo opens all the same.
QRect SkinOf(const imaging::Pixels& photo) {
    try {
        const imaging::FaceSearch search = imaging::FindFace(photo);
        return search.face ? imaging::CheeksOf(*search.face) : QRect();
    } catch (const platform::Error&) {
        return {};
    }
}

}  // namespace

imaging::LoadedImage ReadPhoto(const QString& path, const Settings& settings,
                               imaging::ReadProgress* progress) {
    const platform::SilenceWatch watch(platform::AwaitedFile(path));
    return imaging::ReadImageFile(path, OptionsOf(settings, progress));
}

imaging::LoadedImage ReadPhotoBytes(const QByteArray& bytes, const QString& name,
                                    const Settings& settings, imaging::ReadProgress* progress) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return imaging::ReadImage(buffer, name, OptionsOf(settings, progress));
}

void ShowPhoto(imaging::LoadedImage photo, imaging::LayeredImage& image) {
    image.Open(std::move(photo.pixels), photo.resolution);
    image.SetIptc(std::move(photo.iptc));
}

void OpenPhoto(const QString& path, const Settings& settings, imaging::LayeredImage& image) {
    image.Clear();
    ShowPhoto(ReadPhoto(path, settings), image);
}

void BalancePhoto(const Settings& settings, imaging::LayeredImage& image) {
    if (settings.AutoWhiteBalance() && !image.IsEmpty()) {
        image.ChangePhoto(imaging::WhiteBalanced(image.Photo(), SkinOf(image.Photo())),
                          imaging::PhotoEdit::Colours);
    }
}

void TurnOpenedPhoto(const Settings& settings, imaging::LayeredImage& image) {
    if (settings.ImgRotateLeft()) {
        image.ChangePhoto(imaging::Turned(image.Photo(), QuarterTurn::CounterClockwise));
    }
    if (settings.ImgRotateRight()) {
        image.ChangePhoto(imaging::Turned(image.Photo(), QuarterTurn::Clockwise));
    }
}

int AverageBrightness(const imaging::Pixels& photo) {
    const imaging::AverageColour average = imaging::AverageOf(photo);
    return (average.red + average.green + average.blue) / 3;
}

}  // namespace kadrona::core
