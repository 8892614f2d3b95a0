// Balances the white of photos, for bench/compare-white-balance:
//
//   bench_balance_photo LEFT,TOP,WIDTH,HEIGHT PHOTO RESULT [PHOTO RESULT ...]
//   bench_balance_photo --skin PHOTO...
//
// The rectangle is skin of the face; an empty one, 0,0,0,0, for none. With --skin it prints the one
// that the program finds on each photo, which is empty where it finds no face.

#include <QGuiApplication>
#include <QImage>
#include <cstdio>

#include "imaging/face/FaceFinder.h"
#include "imaging/tone/WhiteBalance.h"

using namespace kadrona;

namespace {

int PrintSkin(const QStringList& photos) {
    for (const QString& name : photos) {
        const imaging::FaceSearch search = imaging::FindFace(imaging::Pixels(QImage(name)));
        const QRect skin = search.face ? imaging::CheeksOf(*search.face) : QRect();
        std::printf("%d,%d,%d,%d\n", skin.x(), skin.y(), skin.width(), skin.height());
    }
    return 0;
}

int Balance(const QRect& skin, const QStringList& names) {
    for (qsizetype i = 0; i + 1 < names.size(); i += 2) {
        const imaging::Pixels photo(QImage(names.at(i)));
        if (!imaging::WhiteBalanced(photo, skin).Tile().save(names.at(i + 1))) {
            return 1;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.value(1) == u"--skin") {
        return PrintSkin(arguments.mid(2));
    }
    const QStringList numbers = arguments.value(1).split(u',');
    const QRect skin(numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
                     numbers.value(3).toInt());
    return Balance(skin, arguments.mid(2));
}
