#include "core/archive/Tags.h"

#include "imaging/metadata/IptcFile.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Sets the text of an application record's item. One that is found at the very front counts as
/// missing, and another is added beside it.
void SetItem(imaging::IptcItems& items, int dataset, const QString& initialText,
             const QString& text) {
    constexpr int ApplicationRecord = 2;
    int index = items.IndexOf(ApplicationRecord, dataset);
    if (index <= 0) {
        index = items.AddText(ApplicationRecord, dataset, initialText);
    }
    items.SetText(index, text);
}

void SetTags(imaging::IptcItems& items, const QString& objectName, QString keywords) {
    constexpr int ObjectName = 5;
    constexpr int Keywords = 25;
    SetItem(items, ObjectName, u"Object name"_s, objectName);
    SetItem(items, Keywords, u"Keywords"_s, keywords.replace(u"\r\n"_s, u","_s));
}

}  // namespace

void SetIptcTags(imaging::LayeredImage& image, const QString& objectName, const QString& keywords) {
    imaging::IptcItems items = image.Iptc();
    SetTags(items, objectName, keywords);
    image.SetIptc(std::move(items));
}

void RewriteIptcTags(const QString& fileName, const QString& objectName, const QString& keywords) {
    if (!platform::IsFile(fileName)) {
        return;
    }
    imaging::IptcItems items;
    SetTags(items, objectName, keywords);
    imaging::RewriteIptc(fileName, items);
}

}  // namespace kadrona::core
