#include QUORVIX_TEST_HEADER

#include <QtCore/QCoreApplication>
#include <QtNetwork/QNetworkReply>

#include <cstdio>

// The least that a program with a network access manager does. It is built with Qt's manager and with ours,
// to see what ours adds.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QUORVIX_TEST_MANAGER manager;
    QNetworkReply *const reply = manager.get(QNetworkRequest(QUrl(QCoreApplication::arguments().value(1))));
    QObject::connect(reply, &QNetworkReply::finished, &application, &QCoreApplication::quit);
    QCoreApplication::exec();
    std::puts(reply->readAll().constData());
    return reply->error() == QNetworkReply::NoError ? 0 : 1;
}
