#include "core/templates/TemplateCatalogue.h"

#include <QStringView>

namespace kadrona::core {

namespace {

CatalogueEntry ParseLine(QStringView line) {
    const qsizetype equals = line.indexOf(u'=');
    if (equals < 0) {
        return {};
    }
    return {line.first(equals).toString(), line.sliced(equals + 1).toString()};
}

}  // namespace

std::vector<CatalogueEntry> ParseCatalogue(const QString& text) {
    QString unified = text;
    unified.replace(QLatin1StringView("\r\n"), QLatin1StringView("\n")).replace(u'\r', u'\n');
    QStringView rest(unified);
    while (rest.endsWith(u'\n')) {
        rest.chop(1);
    }
    std::vector<CatalogueEntry> entries;
    if (!rest.isEmpty()) {
        for (const QStringView line : rest.split(u'\n')) {
            entries.push_back(ParseLine(line));
        }
    }
    return entries;
}

}  // namespace kadrona::core
