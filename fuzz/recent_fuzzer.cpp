// The list of photos opened last.

#include <cstdint>
#include <cstdlib>

#include "core/base/RecentPhotos.h"

using namespace kadrona::core;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const RecentList list = ParseRecentList(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    if (list.photos.size() > RecentPhotos::MostPhotos) {
        std::abort();
    }
    for (const RecentPhoto& photo : list.photos) {
        if (!photo.path.startsWith(u'/') || photo.path.contains(QChar::Null) ||
            photo.picture.size() > RecentPhotos::MostPictureBytes) {
            std::abort();
        }
    }
    if (ParseRecentList(RecentListBytes(list)) != list) {
        std::abort();  // what is written must read as the same
    }
    return 0;
}
