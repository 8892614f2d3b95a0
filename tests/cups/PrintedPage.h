#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <vector>

namespace kadrona::testing {

/// A printed page as an outside program (poppler) sees it; all lengths in millimetres, the origin
/// at the page's top left.
struct PrintedPage {
    struct Copy {
        QRectF place;
        /// Whether the image lies on its side.
        bool turned = false;
    };

    QSizeF page;
    std::vector<Copy> copies;
    /// Pages of the document.
    int count = 0;

    /// The rectangle around all copies.
    QRectF Sheet() const;
};

/// Measures the first page of a PDF. Throws std::runtime_error where it cannot be read.
PrintedPage Measured(const QString& pdf);

}  // namespace kadrona::testing
