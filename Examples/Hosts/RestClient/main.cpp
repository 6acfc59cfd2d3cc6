#include "RestWindow.h"

#include <QtWidgets/QApplication>

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    RestWindow window;
    window.show();
    return application.exec();
}
