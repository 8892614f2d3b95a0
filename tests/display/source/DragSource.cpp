// A foreign program that files are dragged from: drag_source copy|move|link FILE...
// Pressing the mouse in its window starts the drag; when it has ended, one line says what was done.

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextStream>
#include <QUrl>
#include <QWidget>

namespace {

QString NameOf(Qt::DropAction action) {
    switch (action) {
        case Qt::CopyAction:
            return QStringLiteral("copy");
        case Qt::MoveAction:
        case Qt::TargetMoveAction:
            return QStringLiteral("move");
        case Qt::LinkAction:
            return QStringLiteral("link");
        default:
            return QStringLiteral("none");
    }
}

Qt::DropAction ActionOf(const QString& name) {
    return name == QStringLiteral("move")   ? Qt::MoveAction
           : name == QStringLiteral("link") ? Qt::LinkAction
                                            : Qt::CopyAction;
}

class Source : public QWidget {
 public:
    explicit Source(const QStringList& arguments) : action_(ActionOf(arguments.value(1))) {
        for (const QString& file : arguments.mid(2)) {
            urls_.append(QUrl::fromLocalFile(file));
        }
    }

 protected:
    void mousePressEvent(QMouseEvent* /*event*/) override {
        auto* drag = new QDrag(this);
        auto* data = new QMimeData;
        data->setUrls(urls_);
        drag->setMimeData(data);
        QTextStream(stdout) << NameOf(drag->exec(action_)) << Qt::endl;
    }

 private:
    Qt::DropAction action_;
    QList<QUrl> urls_;
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    Source source(QApplication::arguments());
    source.setWindowTitle(QStringLiteral("Drag source"));
    source.setGeometry(20, 40, 160, 160);
    source.show();
    return QApplication::exec();
}
