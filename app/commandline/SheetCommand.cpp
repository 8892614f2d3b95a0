#include "app/commandline/SheetCommand.h"

#include <QScopeGuard>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/OrderCommand.h"
#include "app/commandline/PhotoBatch.h"
#include "core/check/WordedRules.h"
#include "core/settings/StoredSettings.h"
#include "core/sheet/PhotoSaver.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/writing/ImageWriter.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// The road of one photo; returns what was made, for the progress line.
QString MakeSheet(core::TData& data, const core::Settings& settings, const SheetRequest& request,
                  const QString& photo, const QString& output, QTextStream& errors) {
    imaging::LayeredImage image;
    OpenUnderTemplate(data, settings, request.place, request.automatic, photo, image, errors);
    data.CropImage(image, request.layoutIndex.value_or(settings.ImageCount()));
    core::WritePhoto(image, output);
    return u"%1 x %2 Pixel, %3 dpi"_s.arg(image.Photo().Width())
        .arg(image.Photo().Height())
        .arg(image.Resolution().value);
}

}  // namespace

int MakeSheets(const SheetRequest& request, core::TData& data, QTextStream& progress,
               QTextStream& errors) {
    LoadTemplate(data, request.templateName);
    const QString notice = core::PaperNotice(data.TemplateFolder(), data.TemplateName());
    if (!notice.isEmpty()) {
        errors << notice << Qt::endl;
    }
    const core::StoredSettings settings = ProfileSettings(data, request.profile);
    data.SetSettings(&settings);
    const auto forgetSettings = qScopeGuard([&data] { data.SetSettings(nullptr); });
    data.SetFrameSize(core::FrameSizeOf(settings));
    core::PaperChoice grid;
    grid.gridGap = core::PaperChoiceOf(settings).gridGap;
    data.SetPaper(request.paper.value_or(grid));
    const QStringList photos = RequestedPhotos(request.photos);
    const QStringList outputs = OutputFiles(request.output, photos, imaging::WritableExtensions());
    return MakeEach(photos, outputs, progress, errors,
                    [&](const QString& photo, const QString& output) {
                        return MakeSheet(data, settings, request, photo, output, errors);
                    });
}

int RunSheetCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors) {
    return RunCommand(errors, [&] {
        const auto request = ParseSheetRequest(arguments);
        return WithData(errors, [&](core::TData& data) {
            return request.order.isEmpty() ? MakeSheets(request, data, progress, errors)
                                           : MakeOrder(request, data, progress, errors);
        });
    });
}

}  // namespace kadrona::app
