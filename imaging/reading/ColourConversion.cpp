#include "imaging/reading/ColourConversion.h"

#include <lcms2.h>

#include <QColorSpace>
#include <QColorTransform>
#include <QtEndian>
#include <algorithm>
#include <memory>
#include <opencv2/core/utility.hpp>
#include <vector>

#include "imaging/codec/Release.h"
#include "imaging/pixels/DividedBy255.h"
#include "imaging/pixels/NewImage.h"

namespace kadrona::imaging {

namespace {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "pixels are taken as B G R A bytes");

using Profile = std::unique_ptr<void, Release<cmsCloseProfile>>;
using Transform = std::unique_ptr<void, Release<cmsDeleteTransform>>;

bool IsCmyk(ColourModel model) {
    return model == ColourModel::Cmyk || model == ColourModel::InvertedCmyk;
}

/// Calls `row(bits, width)` for every row, in parallel.
template <typename Row>
void ForEachRow(QImage& image, Row row) {
    uchar* const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    const int width = image.width();
    cv::parallel_for_({0, image.height()}, [&](const cv::Range& rows) {
        for (int y = rows.start; y < rows.end; ++y) {
            row(bits + y * stride, width);
        }
    });
}

/// Only the first of four equal channels is read.
constexpr cmsUInt32Number GreyOfFour(cmsUInt32Number bytes) {
    return COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | BYTES_SH(bytes);
}

/// The kind of channels that a profile is made for, as it stands in its header. A number: the enum
/// of Little CMS does not have room for what a file may say.
quint32 ChannelsOf(const QByteArray& profile) {
    constexpr qsizetype Offset = 16;
    return profile.size() < Offset + 4 ? 0 : qFromBigEndian<quint32>(profile.constData() + Offset);
}

/// Little CMS's description of our pixels as the profile takes them, red, green and blue with 16
/// bits each whatever they have (ApplyWidened); 0 where it takes others.
cmsUInt32Number InputFormat(quint32 channels, ColourModel model, bool is16Bit) {
    switch (channels) {
        case cmsSigRgbData:
            return IsCmyk(model) ? 0 : (is16Bit ? TYPE_RGBA_16 : TYPE_BGRA_16);
        case cmsSigGrayData:
            return model == ColourModel::Grey ? GreyOfFour(is16Bit ? 2 : 1) : 0;
        case cmsSigCmykData:
            return model == ColourModel::Cmyk           ? TYPE_CMYK_8
                   : model == ColourModel::InvertedCmyk ? TYPE_CMYK_8_REV
                                                        : 0;
        default:
            return 0;
    }
}

/// Takes the tables of floating point numbers out, beside which a profile has others: in a few
/// bytes they may ask for any number of steps, which Little CMS takes a hundred thousand times.
QByteArray WithoutSteps(QByteArray profile) {
    constexpr qsizetype NumberOfTags = 128;
    constexpr qsizetype BytesOfTag = 12;
    const qsizetype first = NumberOfTags + 4;
    const qint64 tags =
        profile.size() < first ? 0 : qFromBigEndian<quint32>(profile.constData() + NumberOfTags);
    const qint64 room = (profile.size() - first) / BytesOfTag;
    for (qint64 i = 0; i < std::min(tags, room); ++i) {
        const qsizetype tag = first + i * BytesOfTag;
        if (QByteArrayView(profile).sliced(tag, 3) == "D2B") {
            profile[tag] = 'x';  // a private one, which nobody knows
        }
    }
    return profile;
}

/// Null where the bytes are no profile.
Profile Opened(const QByteArray& bytes) {
    const QByteArray profile = WithoutSteps(bytes);
    return Profile(profile.isEmpty()
                       ? nullptr
                       : cmsOpenProfileFromMem(profile.constData(),
                                               static_cast<cmsUInt32Number>(profile.size())));
}

/// True where somebody laid down in a table how colours that other spaces lack are to be brought
/// nearer, which a matrix and curves cannot say.
bool HasPerceptualTable(const Profile& profile) {
    return profile && cmsIsTag(profile.get(), cmsSigAToB0Tag) != 0;
}

/// Null where the profile, made for these channels, cannot be used for such pixels.
Transform MakeTransform(const Profile& source, quint32 channels, ColourModel model, bool is16Bit) {
    const auto input = InputFormat(channels, model, is16Bit);
    if (input == 0 || !source) {
        return {};
    }
    const Profile srgb(cmsCreate_sRGBProfile());
    // Without its cache one transform serves several threads.
    const cmsUInt32Number intent =
        HasPerceptualTable(source) ? INTENT_PERCEPTUAL : INTENT_RELATIVE_COLORIMETRIC;
    return Transform(cmsCreateTransform(
        source.get(), input, srgb.get(), is16Bit ? TYPE_RGBA_16 : TYPE_BGRA_8, intent,
        cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC));
}

void Apply(const Transform& transform, QImage& image, bool makeOpaque) {
    ForEachRow(image, [&](uchar* row, int width) {
        cmsDoTransform(transform.get(), row, row, static_cast<cmsUInt32Number>(width));
        for (qsizetype x = 0; makeOpaque && x < width; ++x) {
            row[4 * x + 3] = 255;
        }
    });
}

/// Of 8 bits Little CMS makes up to twenty levels more in the shadows, because it bends the curves
/// there to make them invertible; of 16 bits it does not.
void ApplyWidened(const Transform& transform, QImage& image) {
    constexpr int Widened = 257;
    ForEachRow(image, [&](uchar* row, int width) {
        std::vector<quint16> wide(4 * static_cast<size_t>(width));
        std::transform(row, row + wide.size(), wide.begin(),
                       [](uchar value) { return static_cast<quint16>(value * Widened); });
        cmsDoTransform(transform.get(), wide.data(), row, static_cast<cmsUInt32Number>(width));
    });
}

/// Qt's way of profiles that are a matrix and curves alone, several times faster than Little CMS.
/// Not valid for those made for other channels.
QColorSpace UsableByQt(const QByteArray& profile, ColourModel model) {
    const bool isForGrey = ChannelsOf(profile) == cmsSigGrayData;
    if (profile.isEmpty() || IsCmyk(model) || (isForGrey && model != ColourModel::Grey)) {
        return {};
    }
    return QColorSpace::fromIccProfile(profile);
}

void Apply(const QColorTransform& transform, QImage& image) {
    uchar* const bits = image.bits();
    cv::parallel_for_({0, image.height()}, [&](const cv::Range& rows) {
        QImage(bits + rows.start * image.bytesPerLine(), image.width(), rows.size(),
               image.bytesPerLine(), image.format())
            .applyColorTransform(transform);
    });
}

/// Four inks to an opaque pixel, without knowing more about them.
void MultiplyInksOut(QImage& image, bool inverted) {
    const int flip = inverted ? 0 : 255;
    ForEachRow(image, [flip](uchar* row, int width) {
        for (uchar* pixel = row; pixel < row + 4 * qsizetype{width}; pixel += 4) {
            const int cyan = pixel[0] ^ flip;
            const int magenta = pixel[1] ^ flip;
            const int yellow = pixel[2] ^ flip;
            const int black = pixel[3] ^ flip;
            pixel[0] = static_cast<uchar>(DividedBy255(yellow * black));
            pixel[1] = static_cast<uchar>(DividedBy255(magenta * black));
            pixel[2] = static_cast<uchar>(DividedBy255(cyan * black));
            pixel[3] = 255;
        }
    });
}

/// The curve x ^ `gamma`; that of sRGB (IEC 61966-2-1) for 0.
cmsToneCurve* CurveOf(double gamma) {
    constexpr cmsInt32Number PowerAndLine = 4;
    constexpr std::array<cmsFloat64Number, 5> Srgb{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92,
                                                   0.04045};
    return gamma == 0 ? cmsBuildParametricToneCurve(nullptr, PowerAndLine, Srgb.data())
                      : cmsBuildGamma(nullptr, gamma);
}

}  // namespace

QByteArray PrimariesProfile(const PrimariesAndWhite& primaries, double gamma) {
    const auto isUsable = [](double value) { return value > 0.001 && value < 1; };
    if (!std::all_of(primaries.begin(), primaries.end(), isUsable) ||
        (gamma != 0 && (gamma < 0.1 || gamma > 10))) {
        return {};
    }
    const auto& p = primaries;
    const cmsCIExyY white{p[0], p[1], 1};
    const cmsCIExyYTRIPLE colours{{p[2], p[3], 1}, {p[4], p[5], 1}, {p[6], p[7], 1}};
    const std::unique_ptr<cmsToneCurve, decltype(&cmsFreeToneCurve)> curve(CurveOf(gamma),
                                                                           cmsFreeToneCurve);
    const std::array<cmsToneCurve*, 3> curves{curve.get(), curve.get(), curve.get()};
    const Profile profile(curve ? cmsCreateRGBProfile(&white, &colours, curves.data()) : nullptr);
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size)) {
        return {};
    }
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : QByteArray();
}

void ConvertToSrgb(QImage& image, ColourModel model, const QByteArray& profile) {
    const bool is16Bit = image.format() == QImage::Format_RGBA64;
    const Profile source = Opened(profile);
    const QColorSpace space =
        HasPerceptualTable(source) ? QColorSpace() : UsableByQt(profile, model);
    if (space == QColorSpace(QColorSpace::SRgb)) {
        return;
    }
    if (space.isValid()) {
        Apply(space.transformationToColorSpace(QColorSpace::SRgb), image);
    } else if (const Transform transform =
                   MakeTransform(source, ChannelsOf(profile), model, is16Bit)) {
        if (!is16Bit && ChannelsOf(profile) == cmsSigRgbData) {
            ApplyWidened(transform, image);
        } else {
            Apply(transform, image, IsCmyk(model));
        }
    } else if (IsCmyk(model)) {
        MultiplyInksOut(image, model == ColourModel::InvertedCmyk);
    }
}

}  // namespace kadrona::imaging
