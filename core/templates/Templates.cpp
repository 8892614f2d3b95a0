// The template catalogue and the template layer over the photo.

#include <QFileInfo>
#include <algorithm>

#include "core/Data.h"
#include "core/templates/LayerPosition.h"
#include "core/templates/TemplateDrawing.h"
#include "platform/AtomicFile.h"
#include "platform/IniFile.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// How much of a template covers the photo, of 255.
constexpr int TemplateTransparency = 60;

/// A template of a few dozen elements takes a few kilobytes.
constexpr qint64 LargestTemplateFile = 16 << 20;

/// Finely enough that outlines stay smooth on a large photo; a canvas larger than usual is drawn at
/// its own size.
int PixelsPerUnit(QSize canvas) {
    constexpr int Finest = 4;
    constexpr int LongestSide = 2800;
    return std::clamp(LongestSide / std::max(canvas.width(), canvas.height()), 1, Finest);
}

/// A template that can be drawn; what is wrong with it names the file.
std::vector<TMask> ReadTemplate(const QString& path) {
    const QByteArray bytes = platform::ReadWholeFile(path, LargestTemplateFile);
    try {
        auto elements = ParseTemplate(bytes);
        TemplateCanvas(elements);
        return elements;
    } catch (const TemplateFileError& error) {
        throw TemplateFileError(
            u"Die Schablone „%1“ kann nicht verwendet werden: %2"_s.arg(path, error.Text()));
    }
}

}  // namespace

QString TData::LayoutFile() const {
    return platform::JoinPath(dataFolder_, u"kdr.ini");
}

QStringList TData::GetSchablonenList() const {
    QStringList names;
    for (const CatalogueEntry& entry : maskList_) {
        names.append(entry.name);
    }
    return names;
}

QString TData::GetMaskFileName(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= maskList_.size()) {
        return {};
    }
    const QString path =
        platform::JoinPath(templateFolder_, maskList_[static_cast<size_t>(index)].file);
    return QFileInfo(path).isFile() ? path : QString();
}

bool TData::MaskLoadFromFile(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile()) {
        return false;
    }
    auto elements = ReadTemplate(path);
    templateName_ = file.fileName();
    objectList_ = std::move(elements);
    return true;
}

void TData::DrawMask(imaging::LayeredImage& image) {
    image.RemoveLayersAbovePhoto();
    templateCanvas_ = TemplateCanvas(objectList_);
    image.AddLayer(
        {.pixels = imaging::Pixels(DrawTemplate(objectList_, PixelsPerUnit(templateCanvas_))),
         .rectangle = QRect(QPoint(), templateCanvas_),
         .transparency = TemplateTransparency});
}

void TData::LoadLayer(imaging::LayeredImage& image) {
    if (image.LayerCount() < 2) {
        return;
    }
    const QRect saved = ReadLayerPosFromIni(LayerSection(templateName_, image.Photo().Size()));
    const QSize drawn = image.LayerAt(1).rectangle.size();
    image.SetLayerRectangle(1, RestoredLayerRectangle(saved, drawn, templateCanvas_));
}

QRect TData::ReadLayerPosFromIni(const QString& section) const {
    const platform::IniFile file(LayoutFile());
    return {file.ReadInteger(section, u"PosX"_s), file.ReadInteger(section, u"PosY"_s),
            file.ReadInteger(section, u"Width"_s), file.ReadInteger(section, u"Height"_s)};
}

void TData::SaveLayerPosToIni(const QString& section, const QRect& rectangle) const {
    platform::IniFile file(LayoutFile());
    file.WriteInteger(section, u"PosX"_s, rectangle.x());
    file.WriteInteger(section, u"PosY"_s, rectangle.y());
    file.WriteInteger(section, u"Width"_s, rectangle.width());
    file.WriteInteger(section, u"Height"_s, rectangle.height());
    file.Save();
}

}  // namespace kadrona::core
