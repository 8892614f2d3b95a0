// From the photo and the template to the cut single photo.

#include "core/Data.h"
#include "core/UserInterface.h"
#include "core/templates/LayerPosition.h"
#include "imaging/pixels/Processing.h"
#include "platform/Error.h"

namespace kadrona::core {

void TData::CropImage(imaging::LayeredImage& image, int layoutIndex) {
    image.SetCurrentLayer(1);
    const QRect rectangle = image.LayerAt(1).rectangle;
    image.SetCurrentLayer(0);
    try {
        SaveLayerPosToIni(LayerSection(templateName_, image.Photo().Size()), rectangle);
    } catch (const platform::Error& error) {
        // A place that cannot be remembered must not cost the customer the photos.
        ui_.ShowMessage(error.Text());
    }
    image.ChangePhoto(imaging::Cropped(image.Photo(), rectangle));
    image.RemoveLayersAbovePhoto();
    TileImage(image, layoutIndex);
}

}  // namespace kadrona::core
