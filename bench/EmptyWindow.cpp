// The least that the toolkit can show, as the peer of the program's start.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Empty window"));
    window.show();
    return QApplication::exec();
}
