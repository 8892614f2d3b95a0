#include "app/commandline/PhotoCommand.h"

#include "app/commandline/PhotoBatch.h"
#include "core/base/Product.h"
#include "core/sheet/UploadFile.h"
#include "core/templates/LayerPosition.h"
#include "imaging/pixels/Cropping.h"
#include "platform/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Those of the template, in place of which the request's own stand.
core::UploadFigures FiguresOf(const PhotoRequest& request, const core::TData& data) {
    core::UploadFigures figures = data.LoadedFigures().upload;
    if (request.pixels) {
        figures.width = {request.pixels->width(), request.pixels->width()};
        figures.height = {request.pixels->height(), request.pixels->height()};
    }
    if (request.bytes) {
        figures.bytes = *request.bytes;
    }
    return figures;
}

/// Returns what was made, for the progress line.
QString MakeOne(core::TData& data, imaging::LayeredImage& image, const core::UploadFigures& figures,
                const QString& output) {
    const QRect rectangle = image.LayerAt(1).rectangle;
    data.SaveLayerPosToIni(core::LayerSection(data.TemplateName(), image.Photo().Size()),
                           rectangle);
    const core::UploadFile file =
        core::MakeUploadFile({.cut = imaging::Cropped(image.Photo(), rectangle),
                              .printedWidth = {data.TemplateCanvasSize().width()},
                              .printedHeight = {data.TemplateCanvasSize().height()},
                              .figures = figures,
                              .metadata = {core::SoftwareText.toByteArray()}});
    if (!file.shortfall.isEmpty()) {
        throw platform::Error(file.shortfall);
    }
    platform::WriteFileAtomically(output, file.bytes);
    return u"%1 x %2 Pixel, %3 dpi, %4 Bytes, Qualität %5"_s.arg(file.size.width())
        .arg(file.size.height())
        .arg(file.resolution.value)
        .arg(file.bytes.size())
        .arg(file.quality);
}

}  // namespace

int MakeUploadFiles(const PhotoRequest& request, core::TData& data, QTextStream& progress,
                    QTextStream& errors) {
    LoadTemplate(data, request.templateName);
    const core::StoredSettings settings = ProfileSettings(data, {});
    const QStringList photos = RequestedPhotos(request.photos);
    const QStringList outputs = OutputFiles(request.output, photos, {u"jpg"_s, u"jpeg"_s});
    const core::UploadFigures figures = FiguresOf(request, data);
    return MakeEach(photos, outputs, progress, errors,
                    [&](const QString& photo, const QString& output) {
                        imaging::LayeredImage image;
                        OpenUnderTemplate(data, settings, request.place, request.automatic, photo,
                                          image, errors);
                        return MakeOne(data, image, figures, output);
                    });
}

int RunPhotoCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors) {
    return RunCommand(errors, [&] {
        const auto request = ParsePhotoRequest(arguments);
        return WithData(errors, [&](core::TData& data) {
            return MakeUploadFiles(request, data, progress, errors);
        });
    });
}

}  // namespace kadrona::app
