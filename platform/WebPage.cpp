#include "platform/WebPage.h"

#include <QProcess>

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

bool StartBrowser(const QString& address) {
    for (const QString& program : {u"xdg-open"_s, u"x-www-browser"_s}) {
        QProcess browser;
        browser.setProgram(program);
        browser.setArguments({address});
        browser.setStandardOutputFile(QProcess::nullDevice());
        browser.setStandardErrorFile(QProcess::nullDevice());
        if (browser.startDetached()) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool OpenWebPage(const QUrl& address) {
    // Anything else would start whatever program is registered for it.
    const bool isPage = address.scheme() == u"https" || address.scheme() == u"http";
    return isPage && address.isValid() && StartBrowser(QString::fromLatin1(address.toEncoded()));
}

}  // namespace kadrona::platform
