#pragma once

#include <QString>

#include "core/sheet/SheetLayout.h"
#include "core/sheet/UploadFigures.h"
#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::core {

/// A file for an online application, as it is to be made.
struct UploadRequest {
    /// As it was cut, without a border; not empty.
    imaging::Pixels cut;
    /// Of the photo on paper; its shape is that of the file, its width gives the resolution.
    TenthsOfMillimetre printedWidth;
    TenthsOfMillimetre printedHeight;
    UploadFigures figures = {};
    imaging::WrittenMetadata metadata = {};
};

/// The file that was made.
struct UploadFile {
    QByteArray bytes;
    QSize size;
    imaging::DotsPerInch resolution;
    int quality = 0;  ///< 1 to 100
    imaging::ChromaSampling chroma = imaging::ChromaSampling::Full;
    /// More pixels than the cut has.
    bool enlarged = false;
    /// Why no file meets the figures, and what comes nearest, which the other members are; empty
    /// where this file does.
    QString shortfall = {};
};

/// Makes the file: the cut scaled once and coded so that its pixels and bytes meet the figures.
///
/// Of a range of pixels it takes as many as the cut has, but no more than twice the least; fewer
/// where the bytes would else allow only a quality below 85, up to four times as
/// wide where they would miss their lower end even at the finest quality. Where the pixels asked
/// for have another shape than the photo by up to half a percent (480 x 615 for 35 x 45 mm), the
/// picture is stretched by that. Throws platform::Error where memory is short.
UploadFile MakeUploadFile(const UploadRequest& request);

}  // namespace kadrona::core
