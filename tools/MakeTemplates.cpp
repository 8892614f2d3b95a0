// Writes the template files, the catalogue and the figures from the template table.

#include <QDir>
#include <QFileInfo>

#include "core/check/TemplateTable.h"
#include "core/templates/TemplateFile.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/TextDecoding.h"
#include "tools/TemplateDesign.h"
#include "tools/ToolMain.h"

using namespace kadrona;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LargestTable = 1 << 20;

void MakeTemplates(const QString& table, const QString& folder) {
    const QString text = platform::DecodeText(platform::ReadWholeFile(table, LargestTable));
    if (!platform::CreateFolder(folder)) {
        throw platform::FileError(u"Der Ordner „%1“ kann nicht angelegt werden."_s.arg(folder));
    }
    QString catalogue;
    for (const core::TemplateRow& row : core::ParseTemplateTable(text, table)) {
        platform::WriteFileAtomically(platform::JoinPath(folder, row.file),
                                      core::SerializeTemplate(tools::DesignTemplate(row)));
        catalogue += row.name + u'=' + row.file + u'\n';
    }
    // The program reads the figures themselves from a copy beside the drawings.
    platform::WriteFileAtomically(platform::JoinPath(folder, core::TemplateTableFile),
                                  text.toUtf8());
    platform::WriteFileAtomically(platform::JoinPath(folder, u"MaskList.kdr"), catalogue.toUtf8());
}

}  // namespace

int main(int argc, char** argv) {
    return tools::ToolMain(argc, argv, u"Aufruf: kadrona-make-templates TABELLE ZIELORDNER"_s,
                           MakeTemplates);
}
