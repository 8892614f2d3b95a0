#include "app/commandline/WindowRequest.h"

#include <QFileInfo>

#include "app/commandline/SheetRequest.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

WindowRequest ParseWindowRequest(const QStringList& arguments) {
    WindowRequest request;
    bool named = false;  // behind "--" a name may begin with "-"
    for (const QString& argument : arguments) {
        const bool isOption = !named && argument.startsWith(u'-');
        if (isOption && argument == u"--"_s) {
            named = true;
        } else if (isOption && argument == u"--open"_s && request.photo.isEmpty()) {
            request.chooses = true;
        } else if (isOption && argument == u"--new-window"_s) {
            request.newWindow = true;
        } else if (isOption || request.chooses || !request.photo.isEmpty()) {
            throw UsageError(u"Mit „%1“ kann Kadrona nicht gestartet werden."_s.arg(argument));
        } else if (!argument.isEmpty()) {
            request.photo = QFileInfo(LocalPath(argument)).absoluteFilePath();
        }
    }
    return request;
}

}  // namespace kadrona::app
