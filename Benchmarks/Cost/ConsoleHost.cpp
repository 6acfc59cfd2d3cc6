// A program without a window: makes a manager. Ends when its event loop runs and nothing is left to do.
#include "Footprint.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtNetwork/QNetworkAccessManager>

#ifdef WITH_QUORVIX
#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QXSessionHook.h>
using Manager = QXNetworkAccessManager;
#else
using Manager = QNetworkAccessManager;
#endif

int main(int argc, char *argv[])
{
    Footprint footprint;
    QCoreApplication application(argc, argv);
#ifdef WITH_QUORVIX
    QXSessionHook::install();
#endif
    const Manager manager;
    QTimer::singleShot(0, &application, [&footprint] {
        footprint.ready();
        footprint.print();
        QCoreApplication::quit();
    });
    return application.exec();
}
