#pragma once

#include <QByteArray>
#include <QByteArrayMatcher>
#include <QByteArrayView>
#include <QString>
#include <vector>

namespace kadrona::core {

/// How an umlaut is compared: "ü" as "ue" or as "u".
enum class Umlauts { SpelledOut, Plain };

/// Appends UTF-8 text in the form that an ArchiveSearch compares: small letters without marks, so
/// that "Łukasz" is "lukasz", and a single blank for each run of blanks and line breaks.
void AppendFolded(QByteArray& folded, QByteArrayView text, Umlauts umlauts);

/// Stands between the fields of a record that an ArchiveSearch looks into.
inline constexpr char FieldEnd = '\x1f';

/// Appends a field of a record; one with umlauts twice, so that both "Mueller" and "Muller" find
/// "Müller".
void AppendField(QByteArray& record, QByteArrayView text);

/// What the user typed to find records, taken apart. ArchiveTable::Find describes the syntax.
class ArchiveSearch {
 public:
    explicit ArchiveSearch(const QString& text);

    /// Every record matches.
    bool IsEmpty() const { return terms_.empty(); }

    /// `record` is its fields, each appended by AppendField. A term has to stand in one field.
    bool Matches(QByteArrayView record) const;

 private:
    /// A word or phrase.
    struct Term {
        /// What stands between the asterisks, in this order; none of it empty.
        std::vector<QByteArrayMatcher> pieces;
        bool excluded = false;
    };

    void Add(QStringView term, bool excluded);
    static bool Finds(const Term& term, QByteArrayView record);

    std::vector<Term> terms_;
};

}  // namespace kadrona::core
