#include "core/check/CheckRules.h"

#include <algorithm>
#include <array>

#include "core/check/CheckLine.h"
#include "core/check/FacePlacement.h"
#include "core/check/WordedRules.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr RuleSource FaceImages{u"ISO/IEC 39794-5", u"ISO/IEC 39794-5, D.1 (zweite Hand)"};
constexpr RuleSource OlderFaceImages{u"ISO/IEC 19794-5",
                                     u"ISO/IEC 19794-5:2011, 7.2.2 (zweite Hand)"};
constexpr RuleSource TravelDocuments{u"ICAO Doc 9303-3", u"ICAO Doc 9303-3 (zweite Hand)"};
constexpr RuleSource Several{u"zweite Hand", u"Augenabstand im Foto: mehrere, zweite Hand"};
/// That is how far a colour may be from the chosen one. What is measured here is a standard
/// deviation: colours that lie evenly within 14 units of a middle have 14 / sqrt(3).
constexpr RuleSource OwnAfterTolerance{u"eigene Zahl",
                                       u"eigene Zahl nach der Toleranz eines öffentlichen "
                                       u"Prüfprogramms (14 bis 26 Einheiten CIE Lab)"};
/// Illumination uniformity, dynamic range and sharpness.
constexpr RuleSource OwnOfDefined{u"eigene Zahl", u"eigene Zahl; Maß nach OFIQ (ISO/IEC 29794-5)"};
constexpr RuleSource Own{u"eigene Zahl", u"eigene Zahl"};
constexpr RuleSource OwnSearch{u"Suche im Foto", u"Suche im Foto"};
constexpr RuleSource OwnCheck{u"eigene Prüfung", u"eigene Prüfung"};
constexpr RuleSource NothingKnown{u"keine Vorgabe bekannt", u"keine Vorgabe bekannt"};

using Background = imaging::BackgroundMeasures;
using Measures = imaging::PortraitMeasures;
using Figure = std::optional<double>;

double LowerEdge(const CheckedPhoto& photo) {
    return photo.rectangle.top() + photo.rectangle.height();
}

const TemplateRow& RowOf(const CheckedPhoto& photo) {
    static const TemplateRow nothingPublished;
    return photo.figures ? *photo.figures : nothingPublished;
}

/// What `pixelsOf` finds in the face, in millimetres of the print.
template <typename Length>
Figure Printed(const CheckedPhoto& photo, const Length& pixelsOf) {
    const double scale = photo.printedWidth.value / 10.0 / std::max(1, photo.rectangle.width());
    return photo.face ? Figure(pixelsOf(*photo.face) * scale) : std::nullopt;
}

Figure Head(const CheckedPhoto& photo) {
    return Printed(photo, [&](const imaging::Face& face) {
        return HeadPixels(face, CrownFor(face, RowOf(photo)));
    });
}

Figure EyeLine(const CheckedPhoto& photo) {
    return Printed(
        photo, [&](const imaging::Face& face) { return LowerEdge(photo) - face.EyeMiddle().y(); });
}

Figure Axis(const CheckedPhoto& photo) {
    return Printed(
        photo, [&](const imaging::Face& face) { return FaceAxis(face) - photo.rectangle.left(); });
}

Figure Chin(const CheckedPhoto& photo) {
    return Printed(photo, [&](const imaging::Face& face) {
        return LowerEdge(photo) - face.chin.position.y();
    });
}

Figure TopGap(const CheckedPhoto& photo) {
    return Printed(photo, [&](const imaging::Face& face) {
        return CrownFor(face, RowOf(photo)).y() - photo.rectangle.top();
    });
}

/// No measured points bound the face: the mean width over the mean distance of the pupils.
Figure FaceWidth(const CheckedPhoto& photo) {
    constexpr double FaceByEyes = 2.17;
    return Printed(photo,
                   [](const imaging::Face& face) { return FaceByEyes * face.EyeDistance(); });
}

Figure EyeDistance(const CheckedPhoto& photo) {
    return Printed(photo, [](const imaging::Face& face) { return face.EyeDistance(); });
}

Figure EyeDistancePixels(const CheckedPhoto& photo) {
    return photo.face ? Figure(photo.face->EyeDistance()) : std::nullopt;
}

Figure Resolution(const CheckedPhoto& photo) {
    const int dots = PrintResolution(photo.rectangle.width(), photo.printedWidth).value;
    return dots > 0 ? Figure(dots) : std::nullopt;
}

Figure CutWidth(const CheckedPhoto& photo) {
    return photo.rectangle.isEmpty() ? std::nullopt : Figure(photo.rectangle.width());
}

Figure CutHeight(const CheckedPhoto& photo) {
    return photo.rectangle.isEmpty() ? std::nullopt : Figure(photo.rectangle.height());
}

Figure Tilt(const CheckedPhoto& photo) {
    return photo.face ? Figure(photo.face->tiltDegrees) : std::nullopt;
}

template <Figure Measures::*Measure>
Figure Measured(const CheckedPhoto& photo) {
    return photo.measures.*Measure;
}

template <Figure Background::*Measure>
Figure Behind(const CheckedPhoto& photo) {
    return photo.background.*Measure;
}

Figure InMillimetres(std::optional<TenthsOfMillimetre> length) {
    return length ? Figure(length->value / 10.0) : std::nullopt;
}

PublishedBand Published(const Band& band, bool isJudged = true, const char16_t* subject = u"") {
    return {InMillimetres(band.from), InMillimetres(band.to), isJudged, subject};
}

PublishedBand HeadOf(const TemplateRow& row) {
    return Published(row.head, !row.headIsAdvice);
}
PublishedBand EyesOf(const TemplateRow& row) {
    return Published(row.eyes, !row.eyesAreAdvice);
}
PublishedBand AxisOf(const TemplateRow& row) {
    return Published(row.axis);
}
PublishedBand ChinOf(const TemplateRow& row) {
    return Published(row.chin);
}
PublishedBand TopOf(const TemplateRow& row) {
    return Published(row.top);
}
PublishedBand FaceOf(const TemplateRow& row) {
    return Published(row.face, false, u"Gesicht");
}
PublishedBand EyeDistanceOf(const TemplateRow& row) {
    return Published({row.eyeDistance, {}});
}

/// Nobody demands more than the rule for all documents; some advise it.
PublishedBand ResolutionOf(const TemplateRow& row) {
    return {row.resolution ? Figure(*row.resolution) : std::nullopt, {}, false, u"Auflösung"};
}

bool IsPrinted(const TemplateRow& row) {
    return !row.IsFileOnly();
}

/// No pair of eyes is farther apart than a third of the head's height; usual is a quarter. Where
/// the document wants smaller heads, or is too small for larger ones, its pictures cannot have what
/// is wanted of passports.
bool CanHaveEyesApart(const TemplateRow& row) {
    if (row.IsFileOnly()) {
        return false;
    }
    constexpr double MostPartOfHead = 1.0 / 3;
    constexpr double Wanted = 100;     // tenths of a millimetre
    constexpr double UsualHead = 0.8;  // of the picture's height, as in passports
    const double head = row.head.IsComplete() ? row.head.Middle() : UsualHead * row.height.value;
    return MostPartOfHead * head >= Wanted;
}

/// The file is made smaller where the cut has more; larger makes it no sharper. It is no fault of
/// the cut, which the portal does not see.
PublishedBand FileSide(const TemplateRow& row, const PixelRange& side) {
    return row.IsFileOnly() && side.least ? PublishedBand{Figure(*side.least), {}, false, u"Datei"}
                                          : PublishedBand();
}
PublishedBand FileWidthOf(const TemplateRow& row) {
    return FileSide(row, row.upload.width);
}
PublishedBand FileHeightOf(const TemplateRow& row) {
    return FileSide(row, row.upload.height);
}

/// Where nobody says which end of the head is meant, both are told.
QString HeadNote(const CheckedPhoto& photo, const TemplateRow& row) {
    if (row.crown == Crown::Skull) {
        return u"Kinn bis Schädel, ohne Frisur"_s;
    }
    if (row.IsFileOnly()) {
        return u"Kinn bis Scheitel, mit Haar"_s;
    }
    CheckLine skull;
    skull.unit = u"mm"_s;
    skull.value = Printed(
        photo, [](const imaging::Face& face) { return HeadPixels(face, face.skull.position); });
    return u"Kinn bis Scheitel, mit Haar"_s +
           (skull.value ? u" (ohne Frisur "_s + ValueText(skull) + u')' : QString());
}

/// A head has the right height wherever it is; only inside the cut it is in the picture.
QString HeadFault(const CheckedPhoto& photo, const TemplateRow& row) {
    if (!photo.face || !WantsAFace(row)) {
        return {};
    }
    const QRectF cut = photo.rectangle;
    const double crown = CrownFor(*photo.face, row).y();
    const double chin = photo.face->chin.position.y();
    const double axis = FaceAxis(*photo.face);
    if (chin <= cut.top() || crown >= cut.bottom() || axis < cut.left() || axis > cut.right()) {
        return u"nicht im Ausschnitt"_s;
    }
    return crown < cut.top() || chin > cut.bottom() ? u"angeschnitten"_s : QString();
}

QString FaceWidthNote(const CheckedPhoto& /*photo*/, const TemplateRow& /*row*/) {
    return u"aus dem Augenabstand geschätzt"_s;
}

using Of = Guidance::Of;

constexpr auto Rules = std::to_array<CheckRule>({
    {.name = u"face",
     .label = u"Gesicht",
     .published = FaceOfHead,
     .guidance = {.source = OwnSearch},
     .finish = FinishFace},
    {u"headHeight",
     u"Kopf",
     u"mm",
     1,
     Head,
     HeadOf,
     {0.6, 0.9, FaceImages, Of::Height},
     HeadNote,
     HeadFault},
    {u"eyeLine",
     u"Augen über dem unteren Rand",
     u"mm",
     1,
     EyeLine,
     EyesOf,
     {LowestEyes, HighestEyes, FaceImages, Of::Height},
     nullptr},
    {u"faceAxis",
     u"Gesichtsachse vom linken Rand",
     u"mm",
     1,
     Axis,
     AxisOf,
     {0.45, 0.55, FaceImages, Of::Width},
     nullptr},
    {u"chin", u"Kinn über dem unteren Rand", u"mm", 1, Chin, ChinOf, {}, nullptr},
    {u"topGap", u"Scheitel bis zum oberen Rand", u"mm", 1, TopGap, TopOf, {}, nullptr},
    {u"faceWidth", u"Breite des Gesichts", u"mm", 1, FaceWidth, FaceOf, {}, FaceWidthNote},
    {u"eyeDistance",
     u"Augenabstand im Druck",
     u"mm",
     1,
     EyeDistance,
     EyeDistanceOf,
     {10, {}, TravelDocuments, Of::Unit, CanHaveEyesApart},
     nullptr},
    {u"resolution",
     u"Auflösung im Druck",
     u"dpi",
     0,
     Resolution,
     ResolutionOf,
     {300, {}, TravelDocuments, Of::Unit, IsPrinted},
     nullptr},
    {u"cutWidth", u"Breite des Ausschnitts", u"px", 0, CutWidth, FileWidthOf, {}, nullptr},
    {u"cutHeight", u"Höhe des Ausschnitts", u"px", 0, CutHeight, FileHeightOf, {}, nullptr},
    {u"tilt", u"Neigung der Augenlinie", u"°", 1, Tilt, nullptr, {-8, 8, OlderFaceImages}, nullptr},
    {u"eyeDistancePixels",
     u"Augenabstand im Foto",
     u"px",
     0,
     EyeDistancePixels,
     nullptr,
     {90, {}, Several},
     nullptr},
    {u"exposure",
     u"Helligkeit der Haut",
     u"L*",
     0,
     Measured<&Measures::skinLightness>,
     nullptr,
     {35, 88, Own},
     nullptr},
    {u"clipping",
     u"Haut ausgefressen oder schwarz",
     u"%",
     1,
     Measured<&Measures::skinClipped>,
     nullptr,
     {{}, 5, OwnOfDefined},
     nullptr},
    {u"evenLight",
     u"Licht links gegen rechts",
     u"L*",
     1,
     Measured<&Measures::lightDifference>,
     nullptr,
     {{}, 12, OwnOfDefined},
     nullptr},
    {u"sharpness",
     u"Schärfe an den Augen",
     u"",
     1,
     Measured<&Measures::sharpness>,
     nullptr,
     {2, {}, OwnOfDefined},
     nullptr},
    {u"backgroundUniform",
     u"Hintergrund einfarbig",
     u"ΔE",
     1,
     Behind<&Background::spread>,
     nullptr,
     {{}, 8, OwnAfterTolerance},
     nullptr},
    {u"backgroundLightness",
     u"Hintergrund hell genug",
     u"L*",
     0,
     Behind<&Background::lightness>,
     nullptr,
     {60, {}, Own},
     nullptr},
    {.name = u"backgroundNotWhite",
     .label = u"Hintergrund nicht weiß",
     .unit = u"L*",
     .value = Behind<&Background::lightness>,
     .published = NotWhite,
     .finish = FinishNotWhite},
    {u"backgroundShadow",
     u"Schatten im Hintergrund",
     u"L*",
     1,
     Behind<&Background::shadow>,
     nullptr,
     {{}, 12, Own},
     nullptr},
    {u"redEyes",
     u"Rote Augen",
     u"%",
     0,
     Measured<&Measures::redEye>,
     nullptr,
     {{}, 15, Own},
     nullptr},
    {.name = u"whiteCorners",
     .label = u"Weiße Ecken nach dem Drehen",
     .guidance = {.source = OwnCheck},
     .finish = FinishWhiteCorners},
    {.name = u"editing",
     .label = u"Bearbeitung",
     .published = EditingOf,
     .guidance = {.source = NothingKnown},
     .finish = FinishEditing},
    {.name = u"paper", .label = u"Bild auf Papier", .published = PaperOf, .finish = FinishPaper},
});

}  // namespace

std::span<const CheckRule> CheckRules() {
    return Rules;
}

}  // namespace kadrona::core
