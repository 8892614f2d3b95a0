#include <QtGlobal>

#include "platform/Error.h"
#include "platform/IniContent.h"

using kadrona::platform::IniContent;

namespace {

/// Both hold the same sections, keys and values, in the same order.
void CheckSame(const IniContent& left, const IniContent& right) {
    const QStringList sections = left.Sections();
    if (sections != right.Sections()) {
        qFatal("the sections differ");
    }
    for (const QString& section : sections) {
        const QStringList keys = left.Keys(section);
        if (keys != right.Keys(section)) {
            qFatal("the keys of a section differ");
        }
        for (const QString& key : keys) {
            const std::optional<QString> value = left.Value(section, key);
            if (!value || value != right.Value(section, key)) {
                qFatal("a value differs or is not found");
            }
        }
    }
}

/// Writes the content and reads it again: nothing may change then, nor when it is written again.
void CheckRoundTrip(const IniContent& content) {
    const QByteArray written = content.ToBytes();
    const IniContent read(written);
    CheckSame(content, read);
    if (read.ToBytes() != written) {
        qFatal("the second writing differs from the first");
    }
}

}  // namespace

/// The input is a file. Its first two lines are also written into it as names and values, and a
/// section is taken out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArrayView bytes(data, qsizetype(size));
    IniContent content(bytes);
    CheckRoundTrip(content);

    const QString text = QString::fromUtf8(bytes.first(qMin(bytes.size(), qsizetype(40))));
    const QString first = text.section(u'\n', 0, 0);
    const QString second = text.section(u'\n', 1, 1);
    const QStringList sections = content.Sections();
    for (const QString& section : {sections.value(0), sections.value(1), first}) {
        try {
            content.SetValue(section, first, second);
            content.SetValue(section, second, first);
            content.SetValue(section, content.Keys(section).value(0), second);
        } catch (const kadrona::platform::Error&) {
            // Names that an INI file cannot hold are refused.
        }
    }
    CheckRoundTrip(content);
    content.EraseSection(sections.value(0));
    CheckRoundTrip(content);
    return 0;
}
