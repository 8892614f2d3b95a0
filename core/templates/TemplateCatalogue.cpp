#include "core/templates/TemplateCatalogue.h"

#include <QStringView>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/TextDecoding.h"

namespace kadrona::core {

namespace {

/// Far more than any catalogue of templates needs.
constexpr qint64 LargestCatalogue = 4 << 20;

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

void TemplateCatalogue::Load() {
    const QString path = platform::JoinPath(folder_, u"MaskList.kdr");
    if (const auto content = platform::ReadFileIfThere(path, LargestCatalogue)) {
        entries_ = ParseCatalogue(platform::DecodeText(*content));
    }
}

QStringList TemplateCatalogue::Names() const {
    QStringList names;
    for (const CatalogueEntry& entry : entries_) {
        names.append(entry.name);
    }
    return names;
}

QString TemplateCatalogue::FileAt(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= entries_.size()) {
        return {};
    }
    QString path = platform::JoinPath(folder_, entries_[static_cast<size_t>(index)].file);
    try {
        return platform::IsFile(path) ? path : QString();
    } catch (const platform::FileError&) {
        return path;  // whoever reads it learns what is wrong with it
    }
}

}  // namespace kadrona::core
