#pragma once

#include <QListWidget>

namespace kadrona::controls {

/// A row of small pictures, newest at the left, each chosen by a click or by Return. As high as one
/// of them; hidden while it has none.
class PhotoStrip : public QListWidget {
    Q_OBJECT

 public:
    /// Longest side of a picture in pixels of the screen.
    static constexpr int PictureSide = 96;

    explicit PhotoStrip(QWidget* parent = nullptr);

    /// Shows these files, in their order; the pictures of those already shown stay, the others show
    /// their names alone.
    void SetFiles(const QStringList& paths);
    /// A picture of PictureSide at most, for a file that is shown.
    void SetPicture(const QString& path, const QImage& picture);
    /// The first file without a picture; empty where all have one.
    QString WithoutPicture() const;

    QSize sizeHint() const override;

 Q_SIGNALS:
    void Chosen(const QString& path);
};

}  // namespace kadrona::controls
