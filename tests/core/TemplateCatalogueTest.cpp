#include <gtest/gtest.h>

#include "core/templates/TemplateCatalogue.h"
#include "tests/core/GeometryPrinting.h"

namespace kadrona::core {
namespace {

using namespace Qt::StringLiterals;

/// Entries as "name|file" joined by a blank.
QString Entries(const QString& text) {
    QStringList shown;
    for (const CatalogueEntry& entry : ParseCatalogue(text)) {
        shown << entry.name + u'|' + entry.file;
    }
    return shown.join(u' ');
}

TEST(TemplateCatalogue, LinesBecomeEntriesInFileOrder) {
    const struct {
        const char* name;
        QString text, entries;
    } table[] = {
        {"empty", u""_s, u""_s},
        {"line breaks alone", u"\r\n\n"_s, u""_s},
        {"one", u"Paß=a.s"_s, u"Paß|a.s"_s},
        {"line ends of every system", u"b=1\r\na=2\nc=3\rd=4\r\n"_s, u"b|1 a|2 c|3 d|4"_s},
        {"second equals sign belongs to the file", u"a=b=c"_s, u"a|b=c"_s},
        {"blanks are kept", u"a = b"_s, u"a | b"_s},
        {"no equals sign", u"a=1\nVisum\nb=2\n"_s, u"a|1 | b|2"_s},
        {"empty line between keeps its place", u"a=1\n\nb=2\n\n\n"_s, u"a|1 | b|2"_s},
        {"no name, no file", u"=\nx=\n=y"_s, u"| x| |y"_s},
    };
    for (const auto& row : table) {
        EXPECT_EQ(Entries(row.text), row.entries) << row.name;
    }
}

}  // namespace
}  // namespace kadrona::core
