#pragma once

#include <QListWidget>

class QLabel;

namespace kadrona::controls {

/// A row of small pictures, newest at the left, each chosen by a click or by Return. As high as one
/// of them; hidden while it has none.
class PhotoStrip : public QListWidget {
    Q_OBJECT

 public:
    /// Longest side of a picture in the program's pixels.
    static constexpr int PictureSide = 96;

    /// The caption stands above the pictures and is the strip's name for screen readers.
    explicit PhotoStrip(const QString& caption, QWidget* parent = nullptr);

    /// Shows these files, in their order; the pictures of those already shown stay, the others show
    /// their names alone.
    void SetFiles(const QStringList& paths);
    /// A picture of PictureSide at most, in pixels of the screen, for a file that is shown.
    void SetPicture(const QString& path, const QImage& picture);
    /// Shows a file as such, whose picture is not made.
    void SetNoPicture(const QString& path);
    /// The first file without a picture; empty where all have one.
    QString WithoutPicture() const;

    QSize sizeHint() const override;

 Q_SIGNALS:
    void Chosen(const QString& path);

 protected:
    void resizeEvent(QResizeEvent* event) override;

 private:
    QLabel* caption_;
};

}  // namespace kadrona::controls
