// Balances the white of photos, for bench/compare-white-balance:
//
//   bench_balance_photo PHOTO RESULT [PHOTO RESULT ...]

#include <QGuiApplication>
#include <QImage>

#include "imaging/tone/WhiteBalance.h"

using namespace kadrona;

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    for (qsizetype i = 1; i + 1 < arguments.size(); i += 2) {
        const imaging::Pixels photo(QImage(arguments.at(i)));
        if (!imaging::WhiteBalanced(photo).Tile().save(arguments.at(i + 1))) {
            return 1;
        }
    }
    return 0;
}
