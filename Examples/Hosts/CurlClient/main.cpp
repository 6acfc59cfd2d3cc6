#include "CurlClient.h"

#include <Quorvix/QXRequestRecorder.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTextStream>
#include <QtCore/QThread>

#include <memory>

/// usage: CurlClient URL
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QUrl url = QUrl::fromUserInput(application.arguments().value(1));
    CurlAnswer answer;
    const std::unique_ptr<QThread> worker(QThread::create([&] { answer = curlGet(url); }));
    // Reports of other threads reach the recorder in turns of the main thread's event loop.
    QObject::connect(worker.get(), &QThread::finished, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    worker->start();
    application.exec();
    worker->wait();
    QTextStream(stdout) << answer.body << answer.failure << '\n'
                        << QXRequestRecorder::shared().requests().size() << " exchange was recorded\n";
    return answer.failure.isEmpty() ? 0 : 1;
}
