#include "platform/ProgramPart.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/mman.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

namespace {

/// Empty where the program is not installed: those of the build know its folder by themselves.
QString InstalledPath(const QString& name) {
    for (const QString& folder : {u"../lib/kadrona"_s, u"parts"_s, u"."_s}) {
        QString path = QDir::cleanPath(JoinPath(ProgramFolder(), JoinPath(folder, name)));
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    return {};
}

/// As libraries are looked for; empty where it is in none of their folders.
QString PathAmongLibraries(const QString& name) {
    Dl_serinfo head{};
    void* const self = dlopen(nullptr, RTLD_LAZY);
    if (self == nullptr || dlinfo(self, RTLD_DI_SERINFOSIZE, &head) != 0) {
        return {};
    }
    std::vector<std::max_align_t> room(head.dls_size / sizeof(std::max_align_t) + 1);
    auto* const folders = reinterpret_cast<Dl_serinfo*>(room.data());
    if (dlinfo(self, RTLD_DI_SERINFOSIZE, folders) != 0 ||
        dlinfo(self, RTLD_DI_SERINFO, folders) != 0) {
        return {};
    }
    for (unsigned i = 0; i < folders->dls_cnt; ++i) {
        QString path = JoinPath(QFile::decodeName(folders->dls_serpath[i].dls_name), name);
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    return {};
}

/// Whether there is no room for a part with its libraries, which may be a hundred megabytes. Of a
/// library that cannot be opened only a text says why, with the system's own in the user's language
/// at its end.
bool IsMemoryShort(const char* failure) {
    if (failure != nullptr && std::strstr(failure, std::strerror(ENOMEM)) != nullptr) {
        return true;
    }
    constexpr size_t RoomOfPart = size_t{32} << 20U;
    void* const room =
        mmap(nullptr, RoomOfPart, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return room == MAP_FAILED || munmap(room, RoomOfPart) != 0;
}

}  // namespace

void* AddressInPart(const char* part, const char* function) {
    const QString name = QString::fromLatin1(part) + u".so"_s;
    const QString installed = InstalledPath(name);
    const QString path = installed.isEmpty() ? name : installed;
    void* const library = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_LOCAL);
    void* const address = library != nullptr ? dlsym(library, function) : nullptr;
    const char* const failure = address == nullptr ? dlerror() : nullptr;
    if (library == nullptr && !installed.isEmpty() && IsMemoryShort(failure)) {
        throw Error(
            u"Für einen Teil des Programms, „%1“, reicht der Arbeitsspeicher nicht aus."_s.arg(
                name));
    }
    if (address == nullptr) {
        throw PartMissing(
            u"Ein Teil des Programms, „%1“, fehlt oder passt nicht zu ihm (%2). "
            u"Installieren Sie Kadrona neu."_s.arg(name, QString::fromLocal8Bit(failure)));
    }
    return address;
}

QString PartProgram(const char* program) {
    const QString name = QString::fromLatin1(program);
    const QString installed = InstalledPath(name);
    QString path = installed.isEmpty() ? PathAmongLibraries(name) : installed;
    if (path.isEmpty()) {
        throw PartMissing(
            u"Ein Teil des Programms, „%1“, fehlt. Installieren Sie Kadrona neu."_s.arg(name));
    }
    return path;
}

}  // namespace kadrona::platform
