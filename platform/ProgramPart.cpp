#include "platform/ProgramPart.h"

#include <dlfcn.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

void* AddressInPart(const char* part, const char* function) {
    const QString name = QString::fromLatin1(part) + u".so"_s;
    const QString installed =
        QDir::cleanPath(JoinPath(ProgramFolder(), u"../lib/kadrona/"_s + name));
    // Programs of the build know its folder by themselves.
    const QString path = QFileInfo::exists(installed) ? installed : name;
    void* const library = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    void* const address = library != nullptr ? dlsym(library, function) : nullptr;
    if (address == nullptr) {
        throw PartMissing(
            u"Ein Teil des Programms, „%1“, fehlt oder passt nicht zu ihm (%2). "
            u"Installieren Sie Kadrona neu."_s.arg(name, QString::fromLocal8Bit(dlerror())));
    }
    return address;
}

}  // namespace kadrona::platform
