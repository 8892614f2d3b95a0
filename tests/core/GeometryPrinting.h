#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <ostream>

// How failed comparisons show Qt's values; found beside the types, in the global namespace.

inline void PrintTo(const QSize& size, std::ostream* out) {
    *out << size.width() << "x" << size.height();
}

inline void PrintTo(const QRect& rectangle, std::ostream* out) {
    *out << rectangle.width() << "x" << rectangle.height() << " at " << rectangle.x() << ","
         << rectangle.y();
}

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
