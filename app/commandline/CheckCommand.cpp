#include "app/commandline/CheckCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <exception>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/PhotoBatch.h"
#include "app/commandline/TerminalText.h"
#include "core/check/FacePlacement.h"
#include "core/check/PhotoCheck.h"
#include "core/check/TemplateTable.h"
#include "core/check/WhiteCorners.h"
#include "imaging/face/BackgroundMeasures.h"
#include "imaging/face/Cascades.h"
#include "imaging/face/FaceFinder.h"
#include "imaging/face/PortraitMeasures.h"
#include "platform/FailureText.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// The check of one photo.
struct Report {
    QString file;
    /// Why there is no check; empty where there is one.
    QString error;
    /// Nothing where no face could be looked for.
    std::optional<imaging::FaceSearch> search;
    /// Empty where the template was to be placed by a face that is not there.
    QRect placement;
    std::vector<core::CheckLine> lines;

    std::optional<imaging::Face> Face() const { return search ? search->face : std::nullopt; }

    bool HasMissed() const {
        return std::ranges::any_of(lines, [](const core::CheckLine& line) {
            return line.state == core::CheckState::Missed;
        });
    }
};

QJsonArray Point(const imaging::FacePoint& point) {
    return {point.position.x(), point.position.y()};
}

QJsonValue FaceObject(const std::optional<imaging::Face>& face) {
    if (!face) {
        return QJsonValue::Null;
    }
    return QJsonObject{
        {u"leftEye"_s, Point(face->leftEye)},  {u"rightEye"_s, Point(face->rightEye)},
        {u"chin"_s, Point(face->chin)},        {u"crown"_s, Point(face->crown)},
        {u"tiltDegrees"_s, face->tiltDegrees}, {u"confidence"_s, face->Confidence()}};
}

QString StateWord(core::CheckState state) {
    switch (state) {
        case core::CheckState::Met:
            return u"met"_s;
        case core::CheckState::Missed:
            return u"missed"_s;
        case core::CheckState::Unmeasured:
        case core::CheckState::Guidance:
            break;
    }
    return u"guidance"_s;
}

QJsonValue Figure(std::optional<double> figure) {
    return figure ? QJsonValue(*figure) : QJsonValue(QJsonValue::Null);
}

/// What was measured, or 1 and 0 for what is there and what is not.
QJsonValue ValueOf(const core::CheckLine& line) {
    return line.found ? QJsonValue(int{*line.found}) : Figure(core::ShownValue(line));
}

/// What the state and the figures do not say; often empty.
QString NoteOf(const core::CheckLine& line) {
    QStringList notes{line.note};
    if (line.state == core::CheckState::Unmeasured) {
        notes << core::StateText(line.state);
    }
    notes.removeAll({});
    return notes.join(u"; "_s);
}

QJsonObject ReportObject(const Report& report) {
    QJsonArray checks;
    for (const core::CheckLine& line : report.lines) {
        QJsonObject check{{u"name"_s, line.name},           {u"state"_s, StateWord(line.state)},
                          {u"value"_s, ValueOf(line)},      {u"min"_s, Figure(line.minimum)},
                          {u"max"_s, Figure(line.maximum)}, {u"unit"_s, line.unit},
                          {u"source"_s, line.source}};
        if (const QString note = NoteOf(line); !note.isEmpty()) {
            check.insert(u"note"_s, note);
        }
        checks.append(check);
    }
    const QRect& place = report.placement;
    const QJsonValue placement = place.isEmpty()
                                     ? QJsonValue(QJsonValue::Null)
                                     : QJsonValue(QJsonObject{{u"left"_s, place.x()},
                                                              {u"top"_s, place.y()},
                                                              {u"width"_s, place.width()},
                                                              {u"height"_s, place.height()}});
    QJsonObject object{{u"file"_s, report.file},
                       {u"face"_s, FaceObject(report.Face())},
                       {u"placement"_s, placement},
                       {u"checks"_s, checks}};
    if (!report.error.isEmpty()) {
        object.insert(u"error"_s, report.error);
    }
    return object;
}

void PrintText(const Report& report, QTextStream& output) {
    output << HarmlessName(report.file) << u"\n"_s;
    const QString several = core::SeveralFacesText(report.search ? report.search->faceCount : 0);
    if (!several.isEmpty()) {
        output << u"  "_s << several << u'\n';
    }
    for (const core::CheckLine& line : report.lines) {
        const QString band = core::BandText(line);
        const QString value = core::ValueText(line);
        constexpr int FigureWidth = 10;
        constexpr int BandWidth = 24;
        constexpr int Width = FigureWidth + 1 + BandWidth;
        // What is said in few words takes the room of the figures.
        const bool isWord = value.isEmpty() && band.isEmpty() && line.note.size() <= Width;
        const QString figures = value.leftJustified(FigureWidth) + u' ' +
                                (band.isEmpty() ? QString() : u'(' + band + u')');
        output << u"%1 %2 %3 %4 [%5]\n"_s.arg(core::StateSign(line), line.label.leftJustified(34),
                                              (isWord ? line.note : figures).leftJustified(Width),
                                              core::StateText(line.state), line.sourceName);
        if (!isWord && !line.note.isEmpty()) {
            output << u"    "_s << line.note << u'\n';
        }
    }
    output << u"  "_s << core::SourcesText(report.lines) << u'\n';
    output.flush();
}

void PrintJson(const std::vector<Report>& reports, bool asList, QTextStream& output) {
    QJsonArray list;
    for (const Report& report : reports) {
        list.append(ReportObject(report));
    }
    QJsonDocument document(list);
    if (!asList) {
        document = QJsonDocument(list.first().toObject());
    }
    // The escapes of a terminal are those of JSON.
    output << HarmlessText(QString::fromUtf8(document.toJson())) << Qt::flush;
}

/// Looks for a face; where the finder's data is missing, that is said and the rest still checked.
std::optional<imaging::FaceSearch> Search(const imaging::Pixels& photo, const FaceFinder& find,
                                          QTextStream& errors) {
    try {
        return find(photo);
    } catch (const imaging::CascadesMissing& error) {
        errors << error.Text() << Qt::endl;
        return std::nullopt;
    }
}

Report CheckOne(core::TData& data, const core::Settings& settings, const CheckRequest& request,
                const FaceFinder& find, const QString& file, QTextStream& errors) {
    imaging::LayeredImage image;
    OpenWithTemplate(data, settings, file, image);
    const core::TemplateRow figures = data.LoadedFigures();
    Report report{file, {}, Search(image.Photo(), find, errors), {}, {}};
    const std::optional<imaging::Face> face = report.Face();
    if (!request.automatic) {
        PlaceTemplateAt(data, image, request.place);
        report.placement = image.LayerAt(1).rectangle;
    } else if (face) {
        const core::FacePlacement placement =
            core::PlaceOnFace(*face, figures, data.TemplateCanvasSize(), image.Photo().Size());
        report.placement = placement.rectangle;
        // The printed report tells of several faces itself.
        const imaging::FaceSearch untold = request.json ? *report.search : imaging::FaceSearch();
        Remark(file, core::PlacementRemark(untold, placement), errors);
    }
    core::CheckedPhoto checked;
    checked.face = face;
    checked.wasFaceLookedFor = report.search.has_value();
    if (face) {
        checked.measures = imaging::MeasurePortrait(image.Photo(), *face);
        checked.background = imaging::MeasureBackground(image.Photo(), *face, report.placement);
    }
    checked.rectangle = report.placement;
    checked.figures = figures;
    checked.printedWidth = {data.TemplateCanvasSize().width()};
    checked.edits = image.Edits();
    checked.whiteCorners =
        core::HasWhiteCorners(image.Photo(), report.placement, checked.edits.turnedFreely);
    report.lines = core::CheckPhoto(checked);
    return report;
}

/// The same of any photo; what is wrong is said.
Report Checked(core::TData& data, const core::Settings& settings, const CheckRequest& request,
               const FaceFinder& find, const QString& file, QTextStream& errors) {
    try {
        Report report = CheckOne(data, settings, request, find, file, errors);
        if (request.automatic && report.search && !report.Face()) {
            Remark(file, u"Kein Gesicht gefunden."_s, errors);
        }
        return report;
    } catch (const std::exception&) {
        errors << FailureLine(file) << Qt::endl;
        return {file, platform::FailureText(std::current_exception()), {}, {}, {}};
    }
}

/// A strict check that cannot look for a face is none.
bool IsFailure(const Report& report, const CheckRequest& request) {
    return !report.error.isEmpty() || (request.automatic && !report.Face()) ||
           (request.strict && !report.search);
}

}  // namespace

int CheckPhotos(const CheckRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors) {
    return CheckPhotos(request, data, output, errors,
                       [](const imaging::Pixels& photo) { return imaging::FindFace(photo); });
}

int CheckPhotos(const CheckRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors, const FaceFinder& find) {
    LoadTemplate(data, request.templateName);
    const core::StoredSettings settings = ProfileSettings(data, {});
    const QStringList photos = RequestedPhotos(request.photos);
    int result = Done;
    bool missed = false;
    std::vector<Report> reports;
    for (const QString& photo : photos) {
        platform::ThrowIfEnding();
        const Report report = Checked(data, settings, request, find, photo, errors);
        if (IsFailure(report, request)) {
            result = SomePhotoFailed;
        }
        missed |= report.HasMissed();
        if (request.json) {
            reports.push_back(report);
        } else if (report.error.isEmpty()) {
            PrintText(report, output);
        }
    }
    if (request.json) {
        PrintJson(reports, photos.size() > 1, output);
    }
    return result == Done && missed && request.strict ? SomethingFound : result;
}

int RunCheckCommand(const QStringList& arguments, QTextStream& output, QTextStream& errors) {
    return RunCommand(errors, [&] {
        const auto request = ParseCheckRequest(arguments);
        return WithData(
            errors, [&](core::TData& data) { return CheckPhotos(request, data, output, errors); });
    });
}

}  // namespace kadrona::app
