#pragma once

#include <QHash>
#include <QString>
#include <optional>
#include <vector>

#include "core/sheet/SheetLayout.h"
#include "core/sheet/UploadFigures.h"
#include "platform/Error.h"

namespace kadrona::core {

/// What an authority allows of a length; an end that it does not publish is empty.
struct Band {
    std::optional<TenthsOfMillimetre> from;
    std::optional<TenthsOfMillimetre> to;

    bool IsComplete() const { return from && to; }
    /// The middle of a complete band in tenths of a millimetre.
    double Middle() const { return (from->value + to->value) / 2.0; }
};

/// What an authority counts as the top of the head.
enum class Crown {
    Hair,   ///< hair included, as it lies; also where nothing is published
    Skull,  ///< the skull: the hair's volume does not count
};

/// What an authority allows to be done to a picture beside cutting, scaling and turning it.
enum class AllowedEditing {
    Unregulated,       ///< nothing is published
    GeometryOnly,      ///< neither tone nor colours nor retouching
    BackgroundUnmade,  ///< the background must not be replaced
    ShapeKept,         ///< neither mirrored nor reproportioned
};

/// One document of the template table.
struct TemplateRow {
    QString name;
    QString file;
    TenthsOfMillimetre width;
    TenthsOfMillimetre height;
    Band head;                                      ///< chin to crown
    Band eyes;                                      ///< pupils above the lower edge
    Band top;                                       ///< crown to upper edge
    Band face;                                      ///< width of the face
    Band chin;                                      ///< chin above the lower edge
    Band axis;                                      ///< middle of the face from the left edge
    std::optional<TenthsOfMillimetre> eyeDistance;  ///< smallest distance of the pupils
    std::optional<int> resolution;                  ///< advised least dots per inch of the print
    bool headIsAdvice = false;
    bool eyesAreAdvice = false;
    Crown crown = Crown::Hair;
    AllowedEditing editing = AllowedEditing::Unregulated;
    bool whiteBackgroundForbidden = false;
    QString paper;         ///< why pictures on paper are no longer taken; empty where they are
    UploadFigures upload;  ///< what portals take
    QString hint;
    QString evidence;  ///< of the figures: letters as the table's head explains them
    /// Of the columns whose evidence is another one, by their subjects ("Papier"); empty where it
    /// is not known.
    QHash<QString, QString> otherEvidence;
    QString readOn;  ///< date, yyyy-mm-dd

    /// Only its file is known: the millimetres are the shape of the file, no size on paper.
    bool IsFileOnly() const { return name.endsWith(QStringLiteral("(Datei)")); }

    /// Of one column's figures; empty where it is not known.
    QString EvidenceOf(const QString& subject) const {
        return otherEvidence.value(subject, evidence);
    }
};

/// Where the chin line of a template lies, in tenths of a millimetre above the lower edge. Without
/// a published place the head of middle size stands a little above the middle of the photo, its
/// crown in the upper quarter, lifted where its eyes would else lie below their band, and never so
/// high that the largest head comes near the upper edge.
int ChinAboveLowerEdge(const TemplateRow& row);

/// The table's name in the template folder.
inline const QString TemplateTableFile = QStringLiteral("Vorgaben.tsv");

/// The figures of one template of a folder by its file's name; nothing where the folder has no
/// table or the table no such row, as with a template that a user added. Throws TemplateTableError
/// where the table is damaged, platform::FileError where it cannot be read.
std::optional<TemplateRow> TemplateFigures(const QString& templateFolder,
                                           const QString& templateFile);

/// The table cannot be used; one line "file:line: reason" for each fault.
class TemplateTableError : public platform::Error {
    using Error::Error;
};

/// Reads the template table: lines of cells separated by tabs, "#" starts a comment line, the first
/// other line names the columns. Lengths are millimetres with at most one decimal after a point or
/// a comma. The columns of a file for portals ("Datei Breite von" ...) may be missing, as in tables
/// of older versions. `path` is named in faults. Throws TemplateTableError with every fault found.
std::vector<TemplateRow> ParseTemplateTable(const QString& text, const QString& path);

}  // namespace kadrona::core
