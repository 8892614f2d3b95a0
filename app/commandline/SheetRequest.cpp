#include "app/commandline/SheetRequest.h"

#include <QCommandLineParser>
#include <QUrl>

#include "app/commandline/PaperOptions.h"
#include "core/sheet/SheetLayout.h"
#include "core/sheet/UploadFigures.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

core::TemplatePlace RequiredPlace(const QString& text) {
    const auto place = core::ParsePlace(text);
    if (!place) {
        throw UsageError(
            u"--at erwartet LINKS,OBEN,BREITE in Pixeln des Fotos, nicht „%1“."_s.arg(text));
    }
    return *place;
}

int ParseLayout(const QString& text) {
    // "2x4" is meant as "2 x 4".
    const QString name = QString(text).remove(u' ').replace(u"x"_s, u" x "_s);
    const int index = core::SheetLayoutIndexOf(name);
    if (index < 0) {
        QStringList names;
        for (const core::SheetLayout& layout : core::SheetLayouts) {
            names.append(u"„%1“"_s.arg(layout.name));
        }
        throw UsageError(u"Die Aufteilung „%1“ gibt es nicht; möglich sind %2."_s.arg(
            text, names.join(u", "_s)));
    }
    return index;
}

/// The numbers of a text like "600x750"; empty where it is none. They lie from `least` to `most`.
std::optional<std::pair<int, int>> TwoNumbers(const QString& text, QChar between, int least,
                                              int most) {
    const QStringList parts = text.split(between);
    if (parts.size() != 2) {
        return std::nullopt;
    }
    bool first = false;
    bool second = false;
    const std::pair numbers(parts[0].trimmed().toInt(&first), parts[1].trimmed().toInt(&second));
    const auto isAllowed = [=](int number) { return number >= least && number <= most; };
    if (!first || !second || !isAllowed(numbers.first) || !isAllowed(numbers.second)) {
        return std::nullopt;
    }
    return numbers;
}

QSize ParsePixels(const QString& text) {
    const auto sides = TwoNumbers(text, u'x', 1, core::LongestUploadSide);
    if (!sides) {
        throw UsageError(
            u"--pixels erwartet BREITExHÖHE bis je %1, nicht „%2“."_s.arg(core::LongestUploadSide)
                .arg(text));
    }
    return {sides->first, sides->second};
}

imaging::ByteRange ParseKilobytes(const QString& text) {
    const auto range = TwoNumbers(text, u'-', 0, core::MostUploadKilobytes);
    if (!range || range->first > range->second || range->second == 0) {
        throw UsageError(
            u"--kilobytes erwartet MIN-MAX bis %1, nicht „%2“."_s.arg(core::MostUploadKilobytes)
                .arg(text));
    }
    return {range->first * core::BytesPerKilobyte, range->second * core::BytesPerKilobyte};
}

/// What all commands for photos are told: photos, template and its place.
template <typename Request>
void ReadCommon(const QCommandLineParser& parser, Request& request) {
    for (const QString& photo : parser.positionalArguments()) {
        request.photos.append(LocalPath(photo));
    }
    request.templateName = parser.value(u"template"_s);
    if (request.photos.isEmpty()) {
        throw UsageError(u"Es ist kein Foto angegeben."_s);
    }
    if (request.templateName.isEmpty()) {
        throw UsageError(u"Es ist keine Schablone angegeben (--template NAME)."_s);
    }
    request.automatic = parser.isSet(u"auto"_s);
    if (parser.isSet(u"at"_s)) {
        if (request.automatic) {
            throw UsageError(u"--at und --auto schließen einander aus."_s);
        }
        request.place = RequiredPlace(parser.value(u"at"_s));
    }
}

/// An order says itself which photos, templates, places and counts it means.
void RequireAlone(const QCommandLineParser& parser) {
    for (const QString& option : {u"template"_s, u"at"_s, u"auto"_s, u"layout"_s, u"count"_s}) {
        if (parser.isSet(option)) {
            throw UsageError(u"--order und --%1 schließen einander aus."_s.arg(option));
        }
    }
    if (!parser.positionalArguments().isEmpty()) {
        throw UsageError(u"Zu --order gehören keine Fotos; sie stehen in der Auftragsdatei."_s);
    }
}

QString RequiredOutput(const QCommandLineParser& parser) {
    QString output = parser.value(u"out"_s);
    if (output.isEmpty()) {
        throw UsageError(u"Es ist kein Ziel angegeben (--out DATEI oder ORDNER)."_s);
    }
    return output;
}

}  // namespace

QString LocalPath(const QString& argument) {
    return argument.startsWith(u"file://"_s) ? QUrl(argument).toLocalFile() : argument;
}

void ParseOptions(QCommandLineParser& parser, const QStringList& arguments) {
    // The parser drops the first argument, which usually is the program.
    if (!parser.parse(QStringList(u"kadrona"_s) + arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        throw UsageError(unknown.isEmpty()
                             ? u"Einer Option fehlt ihr Wert."_s
                             : u"Die Option „%1“ gibt es nicht."_s.arg(unknown.first()));
    }
}

SheetRequest ParseSheetRequest(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions({{u"template"_s, {}, u"NAME"_s},
                       {u"out"_s, {}, u"ZIEL"_s},
                       {u"layout"_s, {}, u"AUFTEILUNG"_s},
                       {u"at"_s, {}, u"LINKS,OBEN,BREITE"_s},
                       {u"auto"_s, {}},
                       {u"profile"_s, {}, u"NAME"_s},
                       {u"order"_s, {}, u"DATEI"_s}});
    parser.addOptions(PaperOptions());
    ParseOptions(parser, arguments);
    SheetRequest request;
    request.order = parser.value(u"order"_s);
    if (request.order.isEmpty()) {
        ReadCommon(parser, request);
    } else {
        RequireAlone(parser);
    }
    request.output = RequiredOutput(parser);
    request.profile = parser.value(u"profile"_s);
    if (parser.isSet(u"layout"_s)) {
        request.layoutIndex = ParseLayout(parser.value(u"layout"_s));
    }
    request.paper = ParsePaper(parser);
    return request;
}

PhotoRequest ParsePhotoRequest(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions({{u"template"_s, {}, u"NAME"_s},
                       {u"out"_s, {}, u"ZIEL"_s},
                       {u"at"_s, {}, u"LINKS,OBEN,BREITE"_s},
                       {u"auto"_s, {}},
                       {u"pixels"_s, {}, u"BREITExHÖHE"_s},
                       {u"kilobytes"_s, {}, u"MIN-MAX"_s}});
    ParseOptions(parser, arguments);
    PhotoRequest request;
    ReadCommon(parser, request);
    request.output = RequiredOutput(parser);
    if (parser.isSet(u"pixels"_s)) {
        request.pixels = ParsePixels(parser.value(u"pixels"_s));
    }
    if (parser.isSet(u"kilobytes"_s)) {
        request.bytes = ParseKilobytes(parser.value(u"kilobytes"_s));
    }
    return request;
}

CheckRequest ParseCheckRequest(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions({{u"template"_s, {}, u"NAME"_s},
                       {u"at"_s, {}, u"LINKS,OBEN,BREITE"_s},
                       {u"auto"_s, {}},
                       {u"json"_s, {}},
                       {u"strict"_s, {}}});
    ParseOptions(parser, arguments);
    CheckRequest request;
    ReadCommon(parser, request);
    request.json = parser.isSet(u"json"_s);
    request.strict = parser.isSet(u"strict"_s);
    return request;
}

}  // namespace kadrona::app
