// The least that a program with windows costs: nothing but the toolkit and its event loop.

#include <QApplication>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    return QApplication::exec();
}
