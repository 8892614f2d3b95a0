#include "app/commandline/PaperOptions.h"

#include "app/commandline/SheetRequest.h"
#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSize.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

int ParseMillimetres(const QCommandLineParser& parser, const QString& option, int otherwise) {
    const auto value = core::MicrometresOf(parser.value(option));
    if (parser.isSet(option) && !value) {
        throw UsageError(
            u"--%1 erwartet Millimeter, nicht „%2“."_s.arg(option, parser.value(option)));
    }
    return value.value_or(otherwise);
}

int ParsePositive(const QString& option, const QString& text) {
    bool valid = false;
    const int value = text.toInt(&valid);
    if (!valid || value < 1) {
        throw UsageError(u"--%1 erwartet eine ganze Zahl ab 1, nicht „%2“."_s.arg(option, text));
    }
    return value;
}

core::CuttingMarks ParseMarks(const QString& text) {
    const QStringList names{u"none"_s, u"corners"_s, u"lines"_s, u"outline"_s};
    const auto index = names.indexOf(text);
    if (index < 0) {
        throw UsageError(u"--marks erwartet %1, nicht „%2“."_s.arg(names.join(u" oder "_s), text));
    }
    return static_cast<core::CuttingMarks>(index);
}

}  // namespace

QList<QCommandLineOption> PaperOptions() {
    return {{u"paper"_s, {}, u"PAPIER"_s}, {u"count"_s, {}, u"ANZAHL"_s}, {u"gap"_s, {}, u"MM"_s},
            {u"edge"_s, {}, u"MM"_s},      {u"marks"_s, {}, u"MARKEN"_s}, {u"dpi"_s, {}, u"DPI"_s}};
}

std::optional<core::PaperChoice> ParsePaper(const QCommandLineParser& parser) {
    if (!parser.isSet(u"paper"_s)) {
        for (const QString& option : {u"count"_s, u"gap"_s, u"edge"_s, u"marks"_s, u"dpi"_s}) {
            if (parser.isSet(option)) {
                throw UsageError(u"--%1 braucht ein Papier (--paper)."_s.arg(option));
            }
        }
        return std::nullopt;
    }
    core::PaperChoice choice;
    choice.paper = core::PaperSizeOf(parser.value(u"paper"_s));
    if (!choice.paper || choice.paper->isEmpty()) {
        throw UsageError(u"--paper erwartet %1 oder BREITExHÖHE in Millimetern, nicht „%2“."_s.arg(
            core::PaperKeys(), parser.value(u"paper"_s)));
    }
    choice.gap = ParseMillimetres(parser, u"gap"_s, choice.gap);
    if (choice.gap > core::WidestGap) {
        throw UsageError(u"--gap erwartet höchstens %1 Millimeter, nicht „%2“."_s.arg(
            core::MillimetresText(core::WidestGap), parser.value(u"gap"_s)));
    }
    choice.edge = ParseMillimetres(parser, u"edge"_s, choice.edge);
    const QString count = parser.value(u"count"_s);
    choice.fill = count == u"fill"_s;
    if (parser.isSet(u"count"_s) && !choice.fill) {
        choice.count = ParsePositive(u"count"_s, count);
    }
    if (parser.isSet(u"marks"_s)) {
        choice.marks = ParseMarks(parser.value(u"marks"_s));
    }
    if (parser.isSet(u"dpi"_s)) {
        choice.resolution = {ParsePositive(u"dpi"_s, parser.value(u"dpi"_s))};
    }
    return choice;
}

}  // namespace kadrona::app
