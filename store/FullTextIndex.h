#pragma once

#include <QString>
#include <vector>

#include "store/Database.h"

namespace kadrona::store {

/// A full-text index over one text of each row of a table, under the row's number, "rowid". It
/// stands in a table of its own and keeps what it needs of the texts, so that whatever another
/// program does to the rows, it never contradicts itself. Words.h says what a word is.
///
/// A trigger could not keep it up to date: what a word is, no database knows by itself. Whoever
/// changes a text calls Set in the same transaction.
class FullTextIndex {
 public:
    /// `name` is the index's; `database` outlives it.
    FullTextIndex(Database& database, QString name) : database_(database), name_(std::move(name)) {}

    /// The statements that make the index where there is none of its name.
    QStringList Creation() const { return database_.FullTextCreation(name_); }

    /// Puts a row's text in the place of the one before. Throws StoreError.
    void Set(qint64 row, const QString& text) { database_.SetFullText(name_, row, text); }

    /// Takes a row out. Its words stay in the file until Database::Compact. Throws StoreError.
    void Remove(qint64 row) { database_.RemoveFullText(name_, row); }

    /// The rows in which every word of `text` occurs, as a whole word and whatever its case, in
    /// ascending order; none where the text has no word. Throws StoreError.
    std::vector<qint64> RowsWith(const QString& text) const;

 private:
    Database& database_;
    QString name_;
};

/// A filter such as TEXTSEARCH('O''Neill' IN ImgTags).
struct TextSearch {
    QString text;
    QString column;
};

/// Takes a filter apart, whatever the case of its words. Throws StoreError for anything else.
TextSearch ParseTextSearch(const QString& expression);

}  // namespace kadrona::store
