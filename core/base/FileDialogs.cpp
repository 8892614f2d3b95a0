#include "core/base/FileDialogs.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

OpenDialog OpenDialog::OfPhotos() {
    return {
        .initialFolder = {},
        .filter =
            u"Alle (*.gif;*.png;*.jpg;*.jpeg;*.bmp;*.ico;*.emf;*.wmf;*.tif;*.tiff)|"
            u"*.gif;*.png;*.jpg;*.jpeg;*.bmp;*.ico;*.emf;*.wmf;*.tif;*.tiff|"
            u"GIF-Bild (*.gif)|*.gif|Portable Network Graphics (*.png)|*.png|"
            u"JPEG-Grafikdatei (*.jpg)|*.jpg|JPEG-Grafikdatei (*.jpeg)|*.jpeg|Bitmaps (*.bmp)|"
            u"*.bmp|Symbole (*.ico)|*.ico|Erweiterte Metadateien (*.emf)|*.emf|Metadateien (*.wmf)|"
            u"*.wmf|TIFF-Grafiken (*.tif)|*.tif|TIFF-Grafiken (*.tiff)|*.tiff|"
            u"Fotos von Telefonen (*.heic;*.heif;*.avif)|*.heic;*.heif;*.avif|"
            u"WebP-Bilder (*.webp)|*.webp|JPEG 2000 (*.jp2;*.j2k)|*.jp2;*.j2k|"
            u"Rohdaten von Kameras (*.dng;*.cr2;*.cr3;*.nef;*.arw;*.raf;*.rw2;*.orf;*.pef)|"
            u"*.dng;*.cr2;*.cr3;*.nef;*.arw;*.raf;*.rw2;*.orf;*.pef|"
            u"JPEG XL (*.jxl)|*.jxl"_s};
}

QStringList OpenDialog::Patterns() const {
    const QStringList parts = filter.split(u'|');
    QStringList patterns;
    for (qsizetype i = 1; i < parts.size(); i += 2) {
        patterns += parts.at(i).split(u';');
    }
    patterns.removeDuplicates();
    return patterns;
}

SaveDialog SaveDialog::OfPhotos() {
    return {.title = u"Passbild speichern"_s,
            .filter =
                u"JPEG-Grafikdatei (*.jpg)|*.jpg|JPEG-Grafikdatei (*.jpeg)|*.jpeg|Bitmaps (*.bmp)|"
                u"*.bmp|PDF|*.pdf|TIFF|*.tif"_s,
            .defaultExtension = u"jpg"_s,
            .initialFolder = {},
            .fileName = {}};
}

}  // namespace kadrona::core
