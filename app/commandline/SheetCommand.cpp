#include "app/commandline/SheetCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/TerminalText.h"
#include "core/base/FileNaming.h"
#include "core/settings/StoredSettings.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/PhotoSaver.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/writing/ImageWriter.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

bool NamesFolder(const QString& output) {
    return output.endsWith(QDir::separator()) || QFileInfo(output).isDir() ||
           QFileInfo(output).suffix().isEmpty();
}

/// One file per photo. Photos of one name from several folders get a number behind it.
QStringList OutputFiles(const SheetRequest& request, const QStringList& photos) {
    if (!NamesFolder(request.output)) {
        if (photos.size() > 1) {
            throw UsageError(u"Mehrere Fotos brauchen einen Ordner als Ziel (--out ORDNER)."_s);
        }
        const QString extension = QFileInfo(request.output).suffix();
        if (!imaging::WritableExtensions().contains(extension, Qt::CaseInsensitive)) {
            throw UsageError(u"Das Format „.%1“ kann nicht geschrieben werden."_s.arg(extension));
        }
        return {request.output};
    }
    if (!QDir().mkpath(request.output)) {
        throw UsageError(u"Der Ordner „%1“ kann nicht angelegt werden."_s.arg(request.output));
    }
    QSet<QString> taken;
    QStringList outputs;
    for (const QString& photo : photos) {
        QString name = core::GetNameWithSuffix(photo, u"_kdr"_s);
        for (int number = 2; taken.contains(name); ++number) {
            name = core::GetNameWithSuffix(photo, u"_%1_kdr"_s.arg(number));
        }
        taken.insert(name);
        outputs.append(QDir(request.output).filePath(name + u".jpg"_s));
    }
    return outputs;
}

/// The place on the face, the one asked for, or the one remembered.
void PlaceTemplate(core::TData& data, imaging::LayeredImage& image, const SheetRequest& request,
                   const QString& photo, QTextStream& errors) {
    if (!request.automatic) {
        PlaceTemplateAt(data, image, request.place);
        return;
    }
    const core::FacePlacement placement = PlaceTemplateOnFace(data, image);
    if (placement.photoTooTight) {
        errors << photo << u": "_s << TooTightWarning << Qt::endl;
    }
}

/// The road of one photo; returns what was made, for the progress line.
QString MakeSheet(core::TData& data, const core::Settings& settings, const SheetRequest& request,
                  const QString& photo, const QString& output, QTextStream& errors) {
    if (QFileInfo(output).exists() && QFileInfo(output) == QFileInfo(photo)) {
        throw platform::Error(u"Das Ziel ist das Foto selbst und würde es überschreiben."_s);
    }
    imaging::LayeredImage image;
    core::OpenPhoto(photo, settings, image);
    data.SetCurrentFile(photo);
    core::BalancePhoto(settings, image);
    core::TurnOpenedPhoto(settings, image);
    data.DrawMask(image);
    PlaceTemplate(data, image, request, photo, errors);
    if (core::AverageBrightness(image.Photo()) > core::BrightestAccepted) {
        errors << HarmlessName(photo) << u": "_s << core::TooBrightWarning << Qt::endl;
    }
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
    const core::StoredSettings settings = ProfileSettings(data, request.profile);
    data.SetSettings(&settings);
    data.SetFrameSize(core::FrameSizeOf(settings));
    const QStringList photos = ExpandFolders(request.photos, data.OpenDialog().filter);
    if (photos.isEmpty()) {
        throw UsageError(u"In „%1“ ist kein Foto."_s.arg(request.photos.join(u"“, „"_s)));
    }
    const QStringList outputs = OutputFiles(request, photos);
    int result = Done;
    for (qsizetype i = 0; i < photos.size(); ++i) {
        try {
            const QString made =
                MakeSheet(data, settings, request, photos.at(i), outputs.at(i), errors);
            progress << u"[%1/%2] %3 → %4 (%5)"_s.arg(i + 1)
                            .arg(photos.size())
                            .arg(HarmlessName(photos.at(i)), HarmlessName(outputs.at(i)), made)
                     << Qt::endl;
        } catch (const std::exception& error) {
            errors << FailureLine(photos.at(i), error) << Qt::endl;
            result = SomePhotoFailed;
        }
    }
    data.SetSettings(nullptr);
    return result;
}

int RunSheetCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors) {
    return RunCommand(errors, [&] {
        const auto request = ParseSheetRequest(arguments);
        return WithData(
            errors, [&](core::TData& data) { return MakeSheets(request, data, progress, errors); });
    });
}

}  // namespace kadrona::app
