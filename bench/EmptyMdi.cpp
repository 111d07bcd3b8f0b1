// The yardstick of bench/measure-start: a program that shows an empty document area and nothing else.

#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QString>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QMdiArea);
    window.resize(960, 675);
    window.setWindowTitle(QStringLiteral("Empty"));
    window.show();
    return QApplication::exec();
}
