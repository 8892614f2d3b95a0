#include "platform/WebPage.h"

#include <QFileInfo>
#include <QProcess>

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

bool StartProgram(const QString& program, const QString& argument) {
    QProcess process;
    process.setProgram(program);
    process.setArguments({argument});
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

bool StartBrowser(const QString& address) {
    return StartProgram(u"xdg-open"_s, address) || StartProgram(u"x-www-browser"_s, address);
}

}  // namespace

bool OpenWebPage(const QUrl& address) {
    // Anything else would start whatever program is registered for it.
    const bool isPage = address.scheme() == u"https" || address.scheme() == u"http";
    return isPage && address.isValid() && StartBrowser(QString::fromLatin1(address.toEncoded()));
}

bool OpenFolder(const QString& path) {
    const QFileInfo folder(path);
    return folder.isDir() && StartProgram(u"xdg-open"_s, folder.absoluteFilePath());
}

}  // namespace kadrona::platform
