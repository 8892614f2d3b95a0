#include "app/commandline/OrderCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>
#include <algorithm>
#include <exception>
#include <utility>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/PhotoBatch.h"
#include "app/commandline/TerminalText.h"
#include "core/settings/StoredSettings.h"
#include "core/sheet/CollectedSheet.h"
#include "core/sheet/PaperSize.h"
#include "core/sheet/PhotoSaver.h"
#include "core/sheet/SheetOrder.h"
#include "imaging/pixels/Cropping.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "platform/CountedText.h"
#include "platform/FailureText.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr qint64 MostOrderBytes = 1'000'000;

/// A relative name is meant from where the order lies.
QString PhotoPath(const core::OrderLine& line, const QString& orderFile) {
    return QFileInfo(orderFile).absoluteDir().absoluteFilePath(line.photo);
}

core::CollectedItem CutItem(core::TData& data, const core::Settings& settings,
                            const core::OrderLine& line, const QString& photo,
                            QTextStream& errors) {
    LoadTemplate(data, line.templateName);
    imaging::LayeredImage image;
    OpenUnderTemplate(data, settings, line.place, !line.place, photo, image, errors);
    return {imaging::Cropped(image.Photo(), image.LayerAt(1).rectangle),
            core::PrintedSize(data.TemplateCanvasSize()), line.templateName,
            QFileInfo(photo).completeBaseName(), line.count};
}

/// The first line of the reason: which templates there are needs no saying for each line.
QString ReasonOfFailure() {
    return platform::FailureText(std::current_exception()).section(u'\n', 0, 0);
}

/// What cannot be cut, or would be overwritten by `output`, goes to the order's errors.
std::vector<core::CollectedItem> CutItems(core::TData& data, const core::Settings& settings,
                                          core::Order& order, const SheetRequest& request,
                                          const QString& output, imaging::DotsPerInch finest,
                                          QTextStream& errors) {
    std::vector<core::CollectedItem> items;
    qint64 pixels = 0;
    for (const core::OrderLine& line : order.lines) {
        platform::ThrowIfEnding();
        try {
            const QString photo = PhotoPath(line, request.order);
            RequireNoPhoto(output, IdentitiesOf({photo}));
            core::CollectedItem item = CutItem(data, settings, line, photo, errors);
            item.picture = core::KeptPicture(item, finest);
            pixels += qint64{item.picture.Width()} * item.picture.Height();
            items.push_back(std::move(item));
        } catch (const std::exception&) {
            order.errors.push_back({line.number, ReasonOfFailure()});
        }
        if (pixels > core::MostCollectedPixels) {
            order.errors.push_back({line.number, u"mehr als %1 Millionen Pixel"_s.arg(
                                                     core::MostCollectedPixels / 1'000'000)});
            break;
        }
    }
    return items;
}

/// The layout, where every copy fits; what does not goes to the order's errors.
core::CollectedLayout LayOut(const std::vector<core::CollectedItem>& items,
                             const core::PaperChoice& choice, core::Order& order) {
    core::CollectedLayout layout = core::LayOutCollected(items, choice);
    for (size_t i = 0; i < items.size(); ++i) {
        if (layout.missing[i] > 0) {
            order.errors.push_back(
                {order.lines[i].number,
                 (layout.missing[i] == 1 ? u"%1 von %2 passt nicht auf das Papier (%3)"_s
                                         : u"%1 von %2 passen nicht auf das Papier (%3)"_s)
                     .arg(layout.missing[i])
                     .arg(platform::CountedText(items[i].count, u"Bild"_s, u"Bildern"_s))
                     .arg(core::SizeText(core::CollectedPaper(choice)))});
        }
    }
    return layout;
}

/// Makes the sheet for `output` in `image`; where that cannot be done, returns why.
std::vector<core::OrderError> MakeCollected(const SheetRequest& request, core::TData& data,
                                            const core::Settings& settings, const QString& output,
                                            imaging::LayeredImage& image, QTextStream& errors) {
    const QByteArray bytes = platform::ReadWholeFile(request.order, MostOrderBytes);
    core::Order order = core::ParseOrder(QString::fromUtf8(bytes));
    const core::PaperChoice choice = request.paper.value_or(core::PaperChoice());
    const auto items = CutItems(
        data, settings, order, request, output,
        choice.resolution.value_or(imaging::DotsPerInch{core::HighestCollectedResolution}), errors);
    if (order.errors.empty() && items.empty()) {
        order.errors.push_back({0, u"Der Auftrag hat keine Zeile."_s});
    }
    if (order.errors.empty()) {
        const core::CollectedLayout layout = LayOut(items, choice, order);
        if (order.errors.empty()) {
            image.Open(core::MakeCollectedSheet(items, layout, choice),
                       core::CollectedResolution(items, choice));
        }
    }
    std::ranges::stable_sort(order.errors, {}, &core::OrderError::number);
    return order.errors;
}

}  // namespace

int MakeOrder(const SheetRequest& request, core::TData& data, QTextStream& progress,
              QTextStream& errors) {
    const core::StoredSettings settings = ProfileSettings(data, request.profile);
    data.SetSettings(&settings);
    const auto forgetSettings = qScopeGuard([&data] { data.SetSettings(nullptr); });
    const QStringList outputs =
        OutputFiles(request.output, {request.order}, imaging::WritableExtensions());
    imaging::LayeredImage image;
    const auto failures = MakeCollected(request, data, settings, outputs.first(), image, errors);
    for (const core::OrderError& failure : failures) {
        const QString line = failure.number > 0 ? u"Zeile %1: "_s.arg(failure.number) : QString();
        errors << HarmlessText(line + failure.reason) << Qt::endl;
    }
    if (!failures.empty()) {
        errors << u"Es wurde nichts geschrieben."_s << Qt::endl;
        return SomePhotoFailed;
    }
    core::WritePhoto(image, outputs.first());
    progress << u"%1 → %2 (%3, %4 x %5 Pixel, %6 dpi)"_s
                    .arg(HarmlessName(request.order), HarmlessName(outputs.first()))
                    .arg(platform::CountedText(image.Photo().PhotoCount(), u"Bild"_s, u"Bilder"_s))
                    .arg(image.Photo().Width())
                    .arg(image.Photo().Height())
                    .arg(image.Resolution().value)
             << Qt::endl;
    return Done;
}

}  // namespace kadrona::app
