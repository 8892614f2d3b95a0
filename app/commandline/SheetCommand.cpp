#include "app/commandline/SheetCommand.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include "core/base/FileNaming.h"
#include "core/base/UserInterface.h"
#include "core/settings/StoredSettings.h"
#include "core/sheet/PhotoLoading.h"
#include "core/sheet/PhotoSaver.h"
#include "core/templates/LayerPosition.h"
#include "imaging/document/LayeredImage.h"
#include "imaging/writing/ImageWriter.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

const QString StandardProfile = u"Standard Profile"_s;

/// Messages become lines; nobody is there to enter tags or choose a file.
class ConsoleInterface : public core::UserInterface {
 public:
    explicit ConsoleInterface(QTextStream& errors) : errors_(errors) {}
    void ShowMessage(const QString& text) override { errors_ << text << Qt::endl; }
    std::optional<QStringList> EditTags() override {
        ShowMessage(
            u"Das Foto wird nicht archiviert: Schlüsselworte können nur im Fenster eingegeben "
            u"werden."_s);
        return std::nullopt;
    }
    std::optional<QString> AskForSaveFile(const core::SaveDialog&) override { return std::nullopt; }
    std::optional<double> AskForRotation(const imaging::Pixels&) override { return std::nullopt; }

 private:
    QTextStream& errors_;
};

/// Unchanged file names; for a folder its image files by name.
QStringList ExpandFolders(const QStringList& photos, const QString& filter) {
    QStringList patterns;
    for (const QString& part : filter.section(u'|', 1, 1).split(u';')) {
        patterns.append(part);
    }
    QStringList files;
    for (const QString& photo : photos) {
        if (!QFileInfo(photo).isDir()) {
            files.append(photo);
            continue;
        }
        for (const QFileInfo& file : QDir(photo).entryInfoList(patterns, QDir::Files, QDir::Name)) {
            files.append(file.filePath());
        }
    }
    return files;
}

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

void LoadTemplate(core::TData& data, const QString& name) {
    const auto index = static_cast<int>(data.GetSchablonenList().indexOf(name));
    if (index < 0) {
        throw UsageError(u"Die Schablone „%1“ gibt es nicht. Es gibt:\n  %2"_s.arg(
            name, data.GetSchablonenList().join(u"\n  "_s)));
    }
    if (!data.MaskLoadFromFile(data.GetMaskFileName(index))) {
        throw UsageError(u"Die Datei der Schablone „%1“ fehlt."_s.arg(name));
    }
}

core::StoredSettings ProfileSettings(const core::TData& data, const QString& profile) {
    const bool known = data.GetProfileList().contains(profile, Qt::CaseInsensitive);
    if (!profile.isEmpty() && !known) {
        throw UsageError(u"Das Profil „%1“ gibt es nicht."_s.arg(profile));
    }
    return core::StoredSettings(data.ProfileFile(profile.isEmpty() ? StandardProfile : profile));
}

void PlaceTemplate(core::TData& data, imaging::LayeredImage& image,
                   const std::optional<TemplatePlace>& place) {
    const QSize photo = image.Photo().Size();
    if (place) {
        const QRect wanted(place->left, place->top, place->width, 1);
        image.SetLayerRectangle(
            1, core::RestoredLayerRectangle(wanted, wanted.size(), data.TemplateCanvasSize()));
    } else {
        const QString section = core::LayerSection(data.TemplateName(), photo);
        if (data.ReadLayerPosFromIni(section).width() <= 0) {
            throw platform::Error(
                u"Für Fotos mit %1 x %2 Pixeln ist keine Lage dieser Schablone gespeichert; "
                u"geben Sie sie mit --at an."_s.arg(photo.width())
                    .arg(photo.height()));
        }
        data.LoadLayer(image);
    }
    const QRect rectangle = image.LayerAt(1).rectangle;
    if (!QRect(QPoint(), photo).contains(rectangle)) {
        throw platform::Error(
            u"Die Schablone (links %1, oben %2, %3 x %4) ragt über das Foto (%5 x %6) hinaus."_s
                .arg(rectangle.x())
                .arg(rectangle.y())
                .arg(rectangle.width())
                .arg(rectangle.height())
                .arg(photo.width())
                .arg(photo.height()));
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
    PlaceTemplate(data, image, request.place);
    if (core::AverageBrightness(image.Photo()) > core::BrightestAccepted) {
        errors << photo << u": "_s << core::TooBrightWarning << Qt::endl;
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
                            .arg(photos.at(i), outputs.at(i), made)
                     << Qt::endl;
        } catch (const std::exception& error) {
            errors << photos.at(i) << u": "_s << QString::fromUtf8(error.what()) << Qt::endl;
            result = SomePhotoFailed;
        }
    }
    data.SetSettings(nullptr);
    return result;
}

int RunSheetCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors) {
    try {
        const SheetRequest request = ParseSheetRequest(arguments);
        ConsoleInterface console(errors);
        core::TData data(console);
        data.InitSystem();
        return MakeSheets(request, data, progress, errors);
    } catch (const UsageError& error) {
        errors << error.Text() << u"\nHilfe: kadrona --help"_s << Qt::endl;
        return WrongUsage;
    } catch (const std::exception& error) {
        errors << QString::fromUtf8(error.what()) << Qt::endl;
        return SomePhotoFailed;
    }
}

}  // namespace kadrona::app
