#include "core/archive/ArchiveListing.h"

#include "core/archive/ArchiveTable.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// "2026-03-07 14:30:05.123", as it is stored, in the form of ShownTime, "07.03.2026 14:30", and as
/// "2026-03-07 14:30". What has another form stays as it is.
void AppendTime(QByteArray& text, QByteArrayView stored) {
    constexpr qsizetype ToTheMinute = 16;
    if (stored.size() < ToTheMinute || stored[4] != '-' || stored[7] != '-') {
        AppendField(text, stored);
        return;
    }
    text.append(stored.sliced(8, 2)).append('.').append(stored.sliced(5, 2)).append('.');
    text.append(stored.first(4)).append(' ').append(stored.sliced(11, 5)).append(FieldEnd);
    text.append(stored.first(ToTheMinute)).append(FieldEnd);
}

}  // namespace

ArchiveListing::ArchiveListing(store::Database& database) {
    store::Statement select(database,
                            uR"(SELECT "ID", "ImgErstellt", "ImgName", "ImgType", "ImgTags"
                                FROM "ImgDB"
                                ORDER BY "ImgErstellt" DESC NULLS LAST, "ID" DESC NULLS LAST)"_s);
    while (select.Step()) {
        ids_.push_back(select.Integer(0));
        AppendTime(texts_, select.Utf8(1));
        for (const int field : {2, 3, 4}) {
            AppendField(texts_, select.Utf8(field));
        }
        ends_.push_back(texts_.size());
    }
}

std::vector<qint64> ArchiveListing::Find(const ArchiveSearch& search) const {
    if (search.IsEmpty()) {
        return ids_;
    }
    std::vector<qint64> found;
    qsizetype begin = 0;
    for (size_t i = 0; i < ids_.size(); ++i) {
        if (search.Matches(QByteArrayView(texts_).sliced(begin, ends_[i] - begin))) {
            found.push_back(ids_[i]);
        }
        begin = ends_[i];
    }
    return found;
}

}  // namespace kadrona::core
