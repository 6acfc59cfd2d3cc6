// ArchiveHost URL END: a program that does not know that it is captured, but for the name of its network
// access manager. It makes requests on two threads and ends as END says: "return", "exit", "leak" or
// "static".

#include <Quorvix/Platform/NSURLSession.h>
#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QXRedaction.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtNetwork/QNetworkReply>

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

QUrl address;

/// Makes a request and waits for its end in an event loop of this thread.
void load(const QString &path)
{
    QXNetworkAccessManager manager;
    QNetworkRequest request(address.resolved(QUrl(path)));
    request.setRawHeader("Authorization", "secret");
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

void loadBySession(const QString &path)
{
    QEventLoop loop;
    Quorvix::NSURLSession::shared()
        .dataTaskWithRequest(Quorvix::URLRequest(address.resolved(QUrl(path))),
                             [&loop](auto, auto, auto) { loop.quit(); })
        ->resume();
    loop.exec();
}

/// The main thread does not get to record what this other thread does.
void loadOnAnotherThread(const QString &path)
{
    const std::unique_ptr<QThread> thread(QThread::create([path] { load(path); }));
    thread->start();
    thread->wait();
}

} // namespace

int main(int argc, char *argv[])
{
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    address = QUrl(QString::fromLocal8Bit(argv[1]));
    const QByteArray end = argv[2];
    QXRedaction::setHeaders(QXRedaction::credentials());

    load(u"first"_s);
    loadBySession(u"session"_s);
    auto *const manager = new QXNetworkAccessManager;
    manager->get(QNetworkRequest(address.resolved(QUrl(u"silent"_s)))); // is running at the end
    loadOnAnotherThread(u"thread"_s);

    if (end == "exit")
        std::exit(0);
    if (end == "leak")
        static_cast<void>(application.release());
    static std::unique_ptr<QCoreApplication> last;
    if (end == "static")
        last = std::move(application);
    return 0;
}
