#pragma once

#include <QLocale>
#include <QString>

namespace kadrona::platform {

/// A number with its noun, in German: "1 Bild", "1.234 Bilder".
inline QString CountedText(qint64 count, const QString& one, const QString& many) {
    return QLocale(QLocale::German).toString(count) + u' ' + (count == 1 ? one : many);
}

}  // namespace kadrona::platform
