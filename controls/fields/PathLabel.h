#pragma once

#include <QWidget>

namespace kadrona::controls {

/// One line that shows a path, shortened in its middle to the width there is (see ShortenPath). The
/// whole path is its tool tip and accessible name; the context menu copies it.
class PathLabel : public QWidget {
    Q_OBJECT

 public:
    explicit PathLabel(QWidget* parent = nullptr);

    void SetPath(const QString& path);
    const QString& Path() const { return path_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

 private:
    void CopyPath() const;

    QString path_;
};

}  // namespace kadrona::controls
