#include <QtGlobal>

#include "platform/Error.h"
#include "platform/IniContent.h"

using kadrona::platform::IniContent;

namespace {

using namespace Qt::StringLiterals;

struct Entry {
    QString section, key, value;
};

/// Reads the bytes of an INI file in the plainest way there is.
QList<Entry> PlainlyRead(const QByteArray& bytes, QStringList& sections) {
    const auto trimmed = [](QString text) {
        const QString blanks = u" \t"_s;
        while (!text.isEmpty() && blanks.contains(text.front())) {
            text.remove(0, 1);
        }
        while (!text.isEmpty() && blanks.contains(text.back())) {
            text.chop(1);
        }
        return text;
    };
    QList<Entry> entries;
    QString section;
    for (QString& line : QString::fromUtf8(bytes).replace(u'\r', u'\n').split(u'\n')) {
        line = trimmed(line);
        const QString header = line.startsWith(u'[') && line.contains(u']')
                                   ? trimmed(line.sliced(1, line.indexOf(u']') - 1))
                                   : QString();
        const QString key = trimmed(line.section(u'=', 0, 0));
        if (!header.isEmpty()) {
            section = header;
            if (!sections.contains(header, Qt::CaseInsensitive)) {
                sections.append(header);
            }
        } else if (!section.isEmpty() && line.contains(u'=') && !key.isEmpty() &&
                   !u";#["_s.contains(key.front())) {
            entries.append({section, key, trimmed(line.section(u'=', 1))});
        }
    }
    return entries;
}

/// What is written must read as what is in memory, and be written the same again.
void CheckRoundTrip(const IniContent& content) {
    const QByteArray written = content.ToBytes();
    if (IniContent(written).ToBytes() != written) {
        qFatal("the second writing differs from the first");
    }
    QStringList sections;
    QList<Entry> entries = PlainlyRead(written, sections);
    if (content.Sections() != sections) {
        qFatal("the sections differ");
    }
    entries.resize(qMin(entries.size(), qsizetype(100)));  // the search for the first takes time
    for (const Entry& entry : entries) {
        const auto first = std::find_if(entries.begin(), entries.end(), [&](const Entry& other) {
            return other.section.compare(entry.section, Qt::CaseInsensitive) == 0 &&
                   other.key.compare(entry.key, Qt::CaseInsensitive) == 0;
        });
        if (content.Value(entry.section, entry.key) != first->value) {
            qFatal("a value differs or is not found");
        }
    }
}

/// Sets a value, which leaves every line but one, and may add lines at one place.
void CheckChange(IniContent& content, const QString& section, const QString& key,
                 const QString& value) {
    const QByteArray before = content.ToBytes();
    try {
        content.SetValue(section, key, value);
    } catch (const kadrona::platform::Error&) {
        return;  // names that an INI file cannot hold are refused
    }
    const QByteArray after = content.ToBytes();
    const auto difference = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto endDifference =
        std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
    const qsizetype touched = before.size() - (difference.first - before.begin()) -
                              (endDifference.first - before.rbegin());
    const QByteArray middle = before.sliced(difference.first - before.begin(), qMax(touched, 0));
    if (middle.contains('\n') || middle.contains('\r')) {
        qFatal("more than a line was changed");
    }
}

}  // namespace

/// The input is a file. Its first two lines are also written into it as names and values, and a
/// key and a section are taken out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(data, qsizetype(size));
    IniContent content(bytes);
    CheckRoundTrip(content);

    const QString text = QString::fromUtf8(bytes.first(qMin(bytes.size(), qsizetype(40))));
    const QString first = text.section(u'\n', 0, 0);
    const QString second = text.section(u'\n', 1, 1);
    const QStringList sections = content.Sections();
    for (const QString& section : {sections.value(0), sections.value(1), first}) {
        CheckChange(content, section, first, second);
        CheckChange(content, section, second, first);
    }
    CheckRoundTrip(content);
    if (content.EraseKey(sections.value(1), first) && content.Value(sections.value(1), first)) {
        qFatal("an erased key is still there");
    }
    CheckRoundTrip(content);
    content.EraseSection(sections.value(0));
    CheckRoundTrip(content);
    return 0;
}
