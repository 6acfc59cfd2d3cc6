#include <Quorvix/Platform/NSHTTPURLResponse.h>
#include <Quorvix/Platform/NSURLSession.h>
#include <Quorvix/QXArchiveWriter.h>
#include <Quorvix/QXBreakpointCenter.h>
#include <Quorvix/QXBreakpointStore.h>
#include <Quorvix/QXExchange.h>
#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QXNetworkCapture.h>
#include <Quorvix/QXRecorderWatcher.h>
#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QuorvixClient.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>
#include <QtCore/QThread>
#include <QtNetwork/QNetworkReply>

#include <atomic>

// A program that uses what a host without windows can use, and prints what it sees: in lines with "=" what
// has to be the same with the inspector and without it, in lines with ":" what may differ. It knows nothing
// of how it is built.

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QString currentThread()
{
    const bool isMain = QThread::currentThread() == QCoreApplication::instance()->thread();
    return isMain ? u"main"_s : u"session"_s;
}

template<typename Condition>
void runUntil(const Condition &isReached)
{
    while (!isReached())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

/// Prints the thread of the handlers of a session, and what they get.
void useSession(const QString &server)
{
    for (const bool isSwitched : {false, true}) {
        NSURLSessionConfiguration configuration;
        configuration.completesOnMainThread = isSwitched;
        NSURLSession session(configuration);
        for (const auto &[outcome, path] : {std::pair(u"success"_s, u"/echo?q=1"_s),
                                            {u"error"_s, u"/drop"_s},
                                            {u"cancelled"_s, u"/slow?ms=15000"_s}}) {
            std::atomic<bool> isDone = false;
            QString thread;
            QString result;
            URLRequest request(QUrl(server + path));
            request.setValue(u"value"_s, u"X-Host"_s);
            const auto task = session.dataTaskWithRequest(request, [&](auto data, auto response, auto error) {
                thread = currentThread();
                const auto *const http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
                result = u"%1 %2 %3"_s.arg(http ? http->statusCode() : 0)
                             .arg(error ? error->code : 0)
                             .arg(QString::fromUtf8(data.value_or(QByteArray())));
                isDone = true;
            });
            task->resume();
            if (outcome == u"cancelled"_s)
                task->cancel();
            runUntil([&] { return isDone.load(); });
            out() << "thread: switch " << (isSwitched ? "on " : "off ") << outcome << ' ' << thread << '\n';
            out() << "session " << outcome << " = " << result << '\n';
        }
    }
}

/// The host's own manager.
class HostManager : public QNetworkAccessManager
{
public:
    QNetworkReply *inner = nullptr;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        inner = QNetworkAccessManager::createRequest(operation, request, body);
        return inner;
    }
};

/// The same, which captures by itself.
class ThoroughManager final : public HostManager
{
protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        return QXNetworkCapture::capture(this, operation, request, body, [&](QIODevice *upload) {
            return HostManager::createRequest(operation, request, upload);
        });
    }
};

/// Prints what the slots of a reply see.
void useManager(const char *name, QNetworkAccessManager &manager, const QString &server)
{
    const QNetworkRequest request(QUrl(server + u"/echo"_s));
    bool isDone = false;
    QStringList diary;
    QNetworkReply *const reply = manager.sendCustomRequest(request, "PATCH", QByteArray("body"));
    const auto note = [&](const char *event) {
        return [&diary, event] {
            diary += QLatin1StringView(event) + u'@' + currentThread();
        };
    };
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, note("metaDataChanged"));
    QObject::connect(reply, &QNetworkReply::finished, reply, note("finished"));
    QObject::connect(&manager, &QNetworkAccessManager::finished, reply, [&](QNetworkReply *finished) {
        diary += finished == reply ? u"same reply"_s : u"other reply"_s;
        isDone = true;
    });
    runUntil([&] { return isDone; });
    out() << name << " = " << diary.join(u' ') << ' '
          << reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() << ' ' << reply->readAll()
          << '\n';
    if (const auto *const host = dynamic_cast<HostManager *>(&manager))
        out() << "reply of " << name << ": " << (host->inner == reply ? "the host's" : "another") << '\n';
    delete reply;
}

/// Another client of HTTP, which hands its response to the host through an exchange.
void useExchange(const QString &server)
{
    bool isDone = false;
    QXExchange exchange{URLRequest(QUrl(server))};
    out() << "identifier = " << exchange.id().size() << (exchange.id() == QXExchange::makeId() ? " !" : "")
          << '\n';
    exchange.amend(URLRequest(QUrl(server + u"/other"_s)));
    exchange.setRefresher([] {});
    exchange.progress(nullptr, {});
    exchange.complete(nullptr, "body"_ba, std::nullopt, [&](auto data, auto, auto) {
        out() << "exchange = " << data.value() << ' ' << currentThread() << '\n';
        isDone = true;
    });
    runUntil([&] { return isDone; });
}

/// Breakpoints that are set and released by the program itself.
void useRules(const QString &server)
{
    auto &store = QXBreakpointStore::shared();
    auto &center = QXBreakpointCenter::shared();
    const auto key = QXBreakpointKey::make(QUrl(server + u"/echo"_s), u"PATCH"_s);
    store.insert(*key);
    out() << "rule = " << key->displayText().section(u' ', 0, 0) << '\n';
    out() << "rules: " << store.sortedRules().size() << ' ' << store.contains(*key) << '\n';
    int held = 0;
    const auto observer =
        NSNotificationCenter::defaultCenter().addObserver(QuorvixBreakpointChanged, [&held, &center] {
            held += center.activeBreakpoint().has_value();
            center.continueActive();
        });
    QXNetworkAccessManager manager;
    useManager("held", manager, server);
    out() << "held: " << held << '\n';
    store.setRules({});
}

void useRecorder()
{
    auto &recorder = QXRequestRecorder::shared();
    int changes = 0;
    const QXRecorderWatcher watcher;
    QObject::connect(&watcher, &QXRecorderWatcher::requestsChanged, [&changes] { ++changes; });
    runUntil(
        [&] { return recorder.findRequests([](const auto &trace) { return !trace.duration; }).isEmpty(); });
    out() << "recorded: " << recorder.requests().size() << ' '
          << recorder.findRequestsByMethod(u"PATCH"_s).size() << '\n';
    recorder.clear();
    out() << "changes: " << (changes > 0) << '\n';
    out() << "cleared = " << recorder.requests().size() << '\n';
    const QByteArray archive = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(recorder.requests()));
    out() << "archive = " << archive.toPercentEncoding() << '\n';
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"empty.har"_s);
    const auto error = QXArchiveWriter::write(QXArchiveWriter::sourceOf(recorder.requests()), path);
    QFile file(path);
    out() << "file = " << error.has_value() << ' '
          << (file.open(QFile::ReadOnly) && file.readAll() == archive) << '\n';

    // Records are values, which a host may make itself.
    QXTraceList list;
    list.prepend(std::make_shared<QXTraceList::Cell>(
        QXTraceList::Cell{QXRequestTrace(u"id"_s, URLRequest(QUrl(u"https://example.org/a"_s))), {}}));
    out() << "list = " << list.size() << ' ' << list.indexOf(u"id"_s) << ' ' << list[0].url->path() << '\n';
    out() << "archive of one: " << QXArchiveWriter::archive(QXArchiveWriter::sourceOf(list)).size() << '\n';
}

void printLoadedLibraries()
{
    QFile maps(u"/proc/self/maps"_s);
    if (!maps.open(QFile::ReadOnly))
        return;
    QSet<QByteArray> libraries;
    for (const QByteArray &line : maps.readAll().split('\n')) {
        const QByteArray path = line.mid(line.indexOf('/'));
        if (path.contains(".so"))
            libraries.insert(path.mid(path.lastIndexOf('/') + 1));
    }
    for (const QByteArray &library : libraries)
        out() << "library: " << library << '\n';
}

} // namespace

/// The arguments are the root of a server, and "start" if the inspector is to be started.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString server = application.arguments().value(1);
    if (application.arguments().contains(u"start"_s)) {
        QuorvixClient::shared().start();
        QuorvixClient::shared().setLogLevel(QXLogLevel::error);
        out() << "level = " << int(QuorvixClient::shared().logLevel()) << '\n';
        QuorvixClient::shared().setPresentation(QXPresentation::window);
        out() << "presentation = " << int(QuorvixClient::shared().presentation()) << '\n';
        QuorvixClient::shared().hide();
    }
    useSession(server);
    QXNetworkAccessManager drop;
    useManager("drop-in", drop, server);
    QXCapturing<HostManager> wrapped;
    useManager("wrapped", wrapped, server);
    ThoroughManager thorough;
    useManager("thorough", thorough, server);
    useExchange(server);
    useRules(server);
    useRecorder();
    printLoadedLibraries();
    return 0;
}
