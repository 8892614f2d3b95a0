// Balances the white of photos, for bench/compare-white-balance:
//
//   bench_balance_photo LEFT,TOP,WIDTH,HEIGHT PHOTO RESULT [PHOTO RESULT ...]
//
// The rectangle is skin of the face; an empty one, 0,0,0,0, for none.

#include <QGuiApplication>
#include <QImage>

#include "imaging/tone/WhiteBalance.h"

using namespace kadrona;

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const QStringList numbers = arguments.value(1).split(u',');
    const QRect skin(numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
                     numbers.value(3).toInt());
    for (qsizetype i = 2; i + 1 < arguments.size(); i += 2) {
        const imaging::Pixels photo(QImage(arguments.at(i)));
        if (!imaging::WhiteBalanced(photo, skin).Tile().save(arguments.at(i + 1))) {
            return 1;
        }
    }
    return 0;
}
