#include "app/commandline/CommandSetup.h"

#include "app/commandline/TerminalText.h"
#include "core/base/UserInterface.h"
#include "core/templates/LayerPosition.h"
#include "imaging/face/FaceFinder.h"
#include "platform/FailureText.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// Messages become lines; nobody is there to enter tags or choose a file.
class ConsoleInterface : public core::UserInterface {
 public:
    explicit ConsoleInterface(QTextStream& errors) : errors_(errors) {}
    void ShowMessage(const QString& text) override {
        errors_ << HarmlessText(text) << Qt::endl;
        shown_.append(text);
    }
    bool HasShown(const QString& text) const { return shown_.contains(text); }
    std::optional<QStringList> EditTags(const imaging::Pixels&, const QStringList&) override {
        ShowMessage(
            u"Das Foto wird nicht archiviert: Schlüsselworte können nur im Fenster eingegeben "
            u"werden."_s);
        return std::nullopt;
    }
    std::optional<QString> AskForSaveFile(const core::SaveDialog&) override { return std::nullopt; }
    std::optional<double> AskForRotation(const imaging::Pixels&) override { return std::nullopt; }

 private:
    QTextStream& errors_;
    QStringList shown_;
};

}  // namespace

int WithData(QTextStream& errors, const std::function<int(core::TData&)>& command) {
    ConsoleInterface console(errors);
    core::TData data(console);
    data.InitSystem();
    try {
        return command(data);
    } catch (const platform::Error& error) {
        if (!console.HasShown(error.Text())) {
            throw;
        }
        return SomePhotoFailed;  // as the start has said, of a server that is gone
    }
}

int RunCommand(QTextStream& errors, const std::function<int()>& command) {
    const platform::TerminationNote ending;
    try {
        return command();
    } catch (const UsageError& error) {
        errors << HarmlessText(error.Text()) << u"\nHilfe: kadrona --help"_s << Qt::endl;
        return WrongUsage;
    } catch (const std::exception&) {
        errors << HarmlessText(platform::FailureText(std::current_exception())) << Qt::endl;
        return SomePhotoFailed;
    }
}

void LoadTemplate(core::TData& data, const QString& name) {
    const auto index = static_cast<int>(data.GetSchablonenList().indexOf(name));
    if (index < 0) {
        throw UsageError(u"Die Schablone „%1“ gibt es nicht.\nEs gibt:\n  %2"_s.arg(
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
    return core::StoredSettings(
        data.ProfileFile(profile.isEmpty() ? core::StandardProfile : profile));
}

void PlaceTemplateAt(core::TData& data, imaging::LayeredImage& image,
                     const std::optional<core::TemplatePlace>& place) {
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
                u"geben Sie sie mit --at an oder nehmen Sie --auto."_s.arg(photo.width())
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

QString PlaceTemplateOnFace(core::TData& data, imaging::LayeredImage& image) {
    const imaging::FaceSearch search = imaging::FindFace(image.Photo());
    if (!search.face) {
        throw platform::Error(u"Kein Gesicht gefunden."_s);
    }
    const core::FacePlacement placement = core::PlaceOnFace(
        *search.face, data.LoadedFigures(), data.TemplateCanvasSize(), image.Photo().Size());
    image.SetLayerRectangle(1, placement.rectangle);
    return core::PlacementRemark(search, placement);
}

}  // namespace kadrona::app
