#include "core/check/TemplateTable.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <cmath>

#include "platform/AtomicFile.h"
#include "platform/Paths.h"
#include "platform/TextDecoding.h"

namespace kadrona::core {

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestSide = 10000;
/// Nobody's table is longer, bytes.
constexpr qint64 LargestTable = 1 << 20;

/// No authority asks for more.
constexpr int MostDotsPerInch = 2400;

/// Part of the free height that lies below the chin.
constexpr double FreeHeightBelowChin = 0.6;
/// Room above the largest head, tenths of a millimetre.
constexpr double RoomAboveCrown = 20;

QStringList ColumnNames() {
    return {u"Name"_s,      u"Datei"_s,     u"Breite"_s,      u"Höhe"_s,        u"Kopf von"_s,
            u"Kopf bis"_s,  u"Augen von"_s, u"Augen bis"_s,   u"Oben von"_s,    u"Oben bis"_s,
            u"Kinn von"_s,  u"Kinn bis"_s,  u"Gesicht von"_s, u"Gesicht bis"_s, u"Achse von"_s,
            u"Achse bis"_s, u"Richtwert"_s, u"Hinweis"_s,     u"Beleg"_s,       u"Gelesen am"_s};
}

/// May be left out.
QStringList FurtherColumnNames() {
    return {u"Augenabstand von"_s, u"Auflösung von"_s,    u"Scheitel"_s,
            u"Bearbeitung"_s,      u"Hintergrund"_s,      u"Papier"_s,
            u"Datei Breite von"_s, u"Datei Breite bis"_s, u"Datei Höhe von"_s,
            u"Datei Höhe bis"_s,   u"Datei kB von"_s,     u"Datei kB bis"_s,
            u"Datei Format"_s,     u"Datei Beleg"_s,      u"Belege"_s};
}

QString InMillimetres(TenthsOfMillimetre length) {
    return QString::number(length.value / 10.0) + u" mm"_s;
}

/// Collects the first faults of a table, each with the line that it stands in.
class Faults {
 public:
    explicit Faults(QString path) : path_(std::move(path)) {}

    void SetLine(int line) { line_ = line; }
    void Add(const QString& reason) {
        constexpr qsizetype MostTold = 20;
        if (lines_.size() == MostTold) {
            return;
        }
        lines_ << u"%1:%2: %3"_s.arg(path_, QString::number(line_), reason);
    }
    void ThrowIfAny() const {
        if (!lines_.isEmpty()) {
            throw TemplateTableError(lines_.join(u'\n'));
        }
    }

 private:
    QString path_;
    int line_ = 0;
    QStringList lines_;
};

/// Turns the cells of one line into a row.
class RowReader {
 public:
    RowReader(const QStringList& columns, const QStringList& cells, Faults& faults)
        : faults_(faults) {
        for (qsizetype i = 0; i < cells.size(); ++i) {
            cells_.insert(columns[i], cells[i].trimmed());
        }
    }

    TemplateRow Read() {
        TemplateRow row;
        row.name = Name();
        row.file = File();
        row.width = Side(u"Breite"_s);
        row.height = Side(u"Höhe"_s);
        row.head = BandWithin(u"Kopf"_s, row.height);
        row.eyes = CompleteBandWithin(u"Augen"_s, row.height);
        row.top = BandWithin(u"Oben"_s, row.height);
        row.chin = BandWithin(u"Kinn"_s, row.height);
        row.face = BandWithin(u"Gesicht"_s, row.width);
        row.axis = CompleteBandWithin(u"Achse"_s, row.width);
        row.eyeDistance = Length(u"Augenabstand von"_s);
        row.resolution = Count(u"Auflösung von"_s, MostDotsPerInch);
        row.crown = OneOf<Crown>(
            u"Scheitel"_s,
            {{{}, Crown::Hair}, {u"Haar"_s, Crown::Hair}, {u"Schädel"_s, Crown::Skull}});
        row.editing = OneOf<AllowedEditing>(
            u"Bearbeitung"_s, {{{}, AllowedEditing::Unregulated},
                               {u"nur Geometrie"_s, AllowedEditing::GeometryOnly},
                               {u"Hintergrund bleibt"_s, AllowedEditing::BackgroundUnmade},
                               {u"unverzerrt"_s, AllowedEditing::ShapeKept}});
        row.whiteBackgroundForbidden =
            OneOf<bool>(u"Hintergrund"_s, {{{}, false}, {u"nicht weiß"_s, true}});
        row.paper = cells_.value(u"Papier"_s);
        row.upload = Upload();
        row.hint = cells_.value(u"Hinweis"_s);
        row.evidence = cells_.value(u"Beleg"_s);
        row.readOn = cells_.value(u"Gelesen am"_s);
        ReadAdvice(row);
        ReadOtherEvidence(row);
        row.otherEvidence.insert(u"Datei"_s, row.upload.evidence);
        return row;
    }

 private:
    QString Name() {
        QString name = cells_.value(u"Name"_s);
        if (name.isEmpty()) {
            faults_.Add(u"Der Name fehlt."_s);
        }
        if (name.contains(u'=')) {
            faults_.Add(u"Der Name „%1“ enthält ein Gleichheitszeichen."_s.arg(name));
        }
        return name;
    }

    QString File() {
        static const QRegularExpression bareName(u"^[\\w][\\w .()+-]*\\z"_s,
                                                 QRegularExpression::UseUnicodePropertiesOption);
        QString file = cells_.value(u"Datei"_s);
        if (!bareName.match(file).hasMatch()) {
            faults_.Add(u"„%1“ ist kein einfacher Dateiname."_s.arg(file));
        }
        return file;
    }

    std::optional<TenthsOfMillimetre> Length(const QString& column) {
        static const QRegularExpression decimal(u"^(\\d{1,4})(?:[.,](\\d))?\\z"_s);
        const QString cell = cells_.value(column);
        if (cell.isEmpty()) {
            return std::nullopt;
        }
        const QRegularExpressionMatch match = decimal.match(cell);
        if (!match.hasMatch()) {
            faults_.Add(
                u"%1: „%2“ sind keine Millimeter mit höchstens einer Nachkommastelle."_s.arg(column,
                                                                                             cell));
            return std::nullopt;
        }
        return TenthsOfMillimetre{match.captured(1).toInt() * 10 + match.captured(2).toInt()};
    }

    TenthsOfMillimetre Side(const QString& column) {
        const auto side = Length(column);
        if (!side || side->value == 0 || side->value > LongestSide) {
            faults_.Add(
                u"%1 muss zwischen 0,1 und %2 mm liegen."_s.arg(column).arg(LongestSide / 10));
            return {LongestSide};
        }
        return *side;
    }

    /// The meaning of a cell that holds one of a few words.
    template <typename Value>
    Value OneOf(const QString& column, const std::vector<std::pair<QString, Value>>& meanings) {
        const QString cell = cells_.value(column);
        for (const auto& [word, meaning] : meanings) {
            if (cell == word) {
                return meaning;
            }
        }
        faults_.Add(u"%1: „%2“ ist keines der Wörter dieser Spalte."_s.arg(column, cell));
        return meanings.front().second;
    }

    Band BandWithin(const QString& subject, TenthsOfMillimetre photoSide) {
        const Band band{Length(subject + u" von"_s), Length(subject + u" bis"_s)};
        if (band.IsComplete() && band.from->value > band.to->value) {
            faults_.Add(u"%1: %2 bis %3 ist verkehrt herum."_s.arg(
                subject, InMillimetres(*band.from), InMillimetres(*band.to)));
        }
        for (const auto& end : {band.from, band.to}) {
            if (end && end->value > photoSide.value) {
                faults_.Add(u"%1: %2 ist größer als das Foto (%3)."_s.arg(
                    subject, InMillimetres(*end), InMillimetres(photoSide)));
            }
        }
        return band;
    }

    Band CompleteBandWithin(const QString& subject, TenthsOfMillimetre photoSide) {
        const Band band = BandWithin(subject, photoSide);
        if (band.from.has_value() != band.to.has_value()) {
            faults_.Add(u"%1: Es fehlt eine der beiden Grenzen."_s.arg(subject));
            return {};
        }
        return band;
    }

    /// A whole number from 1 to `most`.
    std::optional<int> Count(const QString& column, int most) {
        const QString cell = cells_.value(column);
        if (cell.isEmpty()) {
            return std::nullopt;
        }
        bool valid = false;
        const int count = cell.toInt(&valid);
        if (!valid || count < 1 || count > most) {
            faults_.Add(
                u"%1: „%2“ ist keine ganze Zahl von 1 bis %3."_s.arg(column, cell).arg(most));
            return std::nullopt;
        }
        return count;
    }

    PixelRange CountRange(const QString& subject, int most) {
        const PixelRange range{Count(subject + u" von"_s, most), Count(subject + u" bis"_s, most)};
        if (range.least && range.most && *range.least > *range.most) {
            faults_.Add(u"%1: %2 bis %3 ist verkehrt herum."_s.arg(subject)
                            .arg(*range.least)
                            .arg(*range.most));
        }
        return range;
    }

    UploadFigures Upload() {
        UploadFigures upload;
        upload.width = CountRange(u"Datei Breite"_s, LongestUploadSide);
        upload.height = CountRange(u"Datei Höhe"_s, LongestUploadSide);
        const PixelRange kilobytes = CountRange(u"Datei kB"_s, MostUploadKilobytes);
        upload.bytes = KilobyteRange(kilobytes.least.value_or(0), kilobytes.most.value_or(0));
        OneOf<bool>(u"Datei Format"_s, {{{}, true}, {u"JPEG"_s, true}});
        upload.evidence = cells_.value(u"Datei Beleg"_s);
        return upload;
    }

    void ReadAdvice(TemplateRow& row) {
        const QString cell = cells_.value(u"Richtwert"_s);
        for (const QString& word : cell.split(u',', Qt::SkipEmptyParts)) {
            if (word.trimmed() == u"Kopf"_s) {
                row.headIsAdvice = true;
            } else if (word.trimmed() == u"Augen"_s) {
                row.eyesAreAdvice = true;
            } else {
                faults_.Add(
                    u"Richtwert: „%1“ ist weder „Kopf“ noch „Augen“."_s.arg(word.trimmed()));
            }
        }
    }

    /// "Papier: O; Gesicht: ?".
    void ReadOtherEvidence(TemplateRow& row) {
        static const QRegularExpression entry(
            u"^(Auflösung|Bearbeitung|Gesicht|Papier): (?:\\?|([OTS](?:, [OTS])*))\\z"_s);
        for (const QString& part : cells_.value(u"Belege"_s).split(u';', Qt::SkipEmptyParts)) {
            const QRegularExpressionMatch match = entry.match(part.trimmed());
            if (!match.hasMatch()) {
                faults_.Add(
                    u"Belege: „%1“ nennt keine Spalte mit ihrem Beleg."_s.arg(part.trimmed()));
                continue;
            }
            row.otherEvidence.insert(match.captured(1), match.captured(2));
        }
    }

    QHash<QString, QString> cells_;
    Faults& faults_;
};

/// Names and files seen so far. File names that differ in case alone meet on some systems.
class Duplicates {
 public:
    void Check(const TemplateRow& row, Faults& faults) {
        CheckOne(names_, u"Der Name"_s, row.name, faults);
        CheckOne(files_, u"Die Datei"_s, row.file, faults);
    }

 private:
    static void CheckOne(QSet<QString>& seen, const QString& what, const QString& text,
                         Faults& faults) {
        if (seen.contains(text.toCaseFolded())) {
            faults.Add(u"%1 „%2“ kommt schon vor."_s.arg(what, text));
        }
        seen.insert(text.toCaseFolded());
    }

    QSet<QString> names_;
    QSet<QString> files_{u"masklist.kdr"_s};
};

void CheckColumns(const QStringList& columns, Faults& faults) {
    const QStringList needed = ColumnNames();
    const QStringList known = needed + FurtherColumnNames();
    for (const QString& name : known) {
        if (columns.count(name) > 1) {
            faults.Add(u"Die Spalte „%1“ kommt zweimal vor."_s.arg(name));
        } else if (needed.contains(name) && !columns.contains(name)) {
            faults.Add(u"Die Spalte „%1“ fehlt."_s.arg(name));
        }
    }
    // A misspelt one would read as if nothing were published.
    for (const QString& name : columns) {
        if (!known.contains(name)) {
            faults.Add(u"Die Spalte „%1“ gibt es nicht."_s.arg(name));
        }
    }
    faults.ThrowIfAny();
}

double FreeChin(const TemplateRow& row, double smallest, double middle, double largest) {
    const double height = row.height.value;
    const double crownInUpperQuarter = 0.75 * height - middle;
    double chin = std::max(FreeHeightBelowChin * (height - middle), crownInUpperQuarter);
    if (row.eyes.IsComplete()) {
        chin = std::max(chin, row.eyes.from->value - smallest / 2);
        chin = std::min(chin, row.eyes.to->value - middle / 2);
    }
    const double room = height - largest;
    return std::min(chin, std::max(room - RoomAboveCrown, room / 2));
}

}  // namespace

int ChinAboveLowerEdge(const TemplateRow& row) {
    const Band& head = row.head;
    const double largest = (head.to ? head.to : head.from).value_or(row.height).value;
    const double smallest = (head.from ? head.from : head.to).value_or(row.height).value;
    const double middle = (smallest + largest) / 2;
    double chin = 0;
    if (row.chin.IsComplete()) {
        chin = row.chin.Middle();
    } else if (row.top.IsComplete()) {
        chin = row.height.value - row.top.Middle() - middle;
    } else {
        chin = FreeChin(row, smallest, middle, largest);
        // One end alone gives no place, yet it holds.
        const double fromTop = row.height.value - middle;
        chin = row.top.from ? std::min(chin, fromTop - row.top.from->value) : chin;
        chin = row.top.to ? std::max(chin, fromTop - row.top.to->value) : chin;
        chin = row.chin.from ? std::max<double>(chin, row.chin.from->value) : chin;
        chin = row.chin.to ? std::min<double>(chin, row.chin.to->value) : chin;
    }
    return static_cast<int>(std::lround(std::clamp(chin, 0.0, row.height.value - largest)));
}

std::optional<TemplateRow> TemplateFigures(const QString& templateFolder,
                                           const QString& templateFile) {
    const QString path = platform::JoinPath(templateFolder, TemplateTableFile);
    const auto content = platform::ReadFileIfThere(path, LargestTable);
    if (!content) {
        return std::nullopt;
    }
    const QString text = platform::DecodeText(*content);
    for (TemplateRow& row : ParseTemplateTable(text, path)) {
        if (row.file.compare(templateFile, Qt::CaseInsensitive) == 0) {
            return std::move(row);
        }
    }
    return std::nullopt;
}

std::vector<TemplateRow> ParseTemplateTable(const QString& text, const QString& path) {
    Faults faults(path);
    Duplicates duplicates;
    QStringList columns;
    std::vector<TemplateRow> rows;
    int line = 0;
    for (QString content : text.split(u'\n')) {
        faults.SetLine(++line);
        content.remove(u'\r');
        if (content.trimmed().isEmpty() || content.startsWith(u'#')) {
            continue;
        }
        const QStringList cells = content.split(u'\t');
        if (columns.isEmpty()) {
            columns = cells;
            CheckColumns(columns, faults);
        } else if (cells.size() != columns.size()) {
            faults.Add(
                u"Die Zeile hat %1 Spalten statt %2."_s.arg(cells.size()).arg(columns.size()));
        } else {
            rows.push_back(RowReader(columns, cells, faults).Read());
            duplicates.Check(rows.back(), faults);
        }
    }
    if (columns.isEmpty()) {
        faults.Add(u"Die Zeile mit den Spaltennamen fehlt."_s);
    }
    faults.ThrowIfAny();
    return rows;
}

}  // namespace kadrona::core
