#pragma once

#include <QFrame>
#include <QString>

class QFileDialog;
class QLabel;
class QTimer;

namespace kadrona::app {

/// Shows the photo that is chosen in the toolkit's own file dialog beside its list. The dialog of a
/// desktop shows pictures by itself.
class FilePreview : public QFrame {
    Q_OBJECT

 public:
    /// Adds a preview to a dialog, which owns it from then on and grows by it as far as the screen
    /// has room; does nothing with a desktop's dialog.
    static void AddTo(QFileDialog& dialog);

 private:
    explicit FilePreview(QFileDialog& dialog);

    void Follow(const QString& path);
    void Show();

    QLabel* picture_;
    /// Until the choice has settled: arrow keys run through a folder.
    QTimer* settled_;
    QString path_;
};

}  // namespace kadrona::app
