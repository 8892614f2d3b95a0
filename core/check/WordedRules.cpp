#include "core/check/WordedRules.h"

#include <QStringList>

#include "core/check/CheckLine.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

PublishedBand InWords(bool isPublished, const char16_t* subject = u"") {
    return {.isJudged = false, .subject = subject, .isInWords = isPublished};
}

QString EditsText(const imaging::PhotoEdits& edits) {
    QStringList done;
    if (edits.tone) {
        done << u"Töne"_s;
    }
    if (edits.colours) {
        done << u"Farben"_s;
    }
    if (edits.retouched) {
        done << u"Retusche"_s;
    }
    return done.isEmpty() ? u"keine"_s : done.join(u", "_s);
}

}  // namespace

bool WantsAFace(const TemplateRow& row) {
    return !row.evidence.isEmpty() && row.evidence != u"eigen"_s;
}

PublishedBand FaceOfHead(const TemplateRow& row) {
    return InWords(WantsAFace(row));
}

void FinishFace(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row) {
    const bool isJudged = WantsAFace(row);
    if (!photo.wasFaceLookedFor) {
        line.note = u"nicht gesucht"_s;
        line.state = isJudged ? CheckState::Unmeasured : CheckState::Guidance;
        return;
    }
    line.found = photo.face.has_value();
    line.note = !photo.face                         ? u"nicht gefunden"_s
                : imaging::IsCorrected(*photo.face) ? u"von Hand bestimmt"_s
                                                    : u"gefunden"_s;
    if (isJudged) {
        line.state = photo.face ? CheckState::Met : CheckState::Missed;
    }
}

void FinishWhiteCorners(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& /*row*/) {
    line.found = photo.whiteCorners;
    line.isWanted = false;
    line.note = photo.whiteCorners ? u"vorhanden"_s : u"keine"_s;
}

PublishedBand NotWhite(const TemplateRow& row) {
    constexpr double WhiteLightness = 95;
    return {.maximum = row.whiteBackgroundForbidden ? std::optional(WhiteLightness) : std::nullopt,
            .remark = u"; verboten ist „weiß“, die Zahl dazu ist eigene Lesart"};
}

void FinishNotWhite(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& /*row*/) {
    constexpr double WhiteChroma = 4;
    if (IsOutside(line) && photo.background.chroma.value_or(0) > WhiteChroma) {
        line.maximum.reset();
        line.note = u"farbig"_s;
    }
}

PublishedBand EditingOf(const TemplateRow& row) {
    return InWords(row.editing != AllowedEditing::Unregulated, u"Bearbeitung");
}

void FinishEditing(CheckLine& line, const CheckedPhoto& photo, const TemplateRow& row) {
    line.note = EditsText(photo.edits);
    switch (row.editing) {
        case AllowedEditing::Unregulated:
            break;
        case AllowedEditing::GeometryOnly:
            line.state = photo.edits.Any() ? CheckState::Missed : CheckState::Met;
            line.note += u"; erlaubt sind nur Ausschnitt und Drehung"_s;
            break;
        case AllowedEditing::BackgroundUnmade:
            // Other tones and colours are those of the background too, yet none replaces it. Where
            // the stamp was used is not kept: any use may have been there.
            if (photo.edits.retouched) {
                line.state = CheckState::Missed;
            } else if (!photo.edits.Any()) {
                line.state = CheckState::Met;
            }
            line.note += u"; der Hintergrund darf nicht ersetzt werden"_s;
            break;
        case AllowedEditing::ShapeKept:
            line.state = CheckState::Met;
            line.note +=
                u"; Spiegeln und Verzerren sind verboten, dieses Programm tut beides nie"_s;
            break;
    }
}

QString PaperNotice(const QString& templateFolder, const QString& templateFile) {
    try {
        const auto row = TemplateFigures(templateFolder, templateFile);
        return !row || row->paper.isEmpty()
                   ? QString()
                   : u"Bilder auf Papier werden nicht mehr angenommen: %1."_s.arg(row->paper);
    } catch (const platform::Error&) {
        return {};
    }
}

PublishedBand PaperOf(const TemplateRow& row) {
    return InWords(!row.paper.isEmpty(), u"Papier");
}

void FinishPaper(CheckLine& line, const CheckedPhoto& /*photo*/, const TemplateRow& row) {
    line.note = u"wird nicht mehr angenommen: %1; für die Datei gilt das nicht"_s.arg(row.paper);
}

}  // namespace kadrona::core
