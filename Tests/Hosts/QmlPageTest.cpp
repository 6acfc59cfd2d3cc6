#include "Tests/Hosts/HostDriver.h"
#include "Tests/ScreenDriver.h"
#include "Tests/ScriptedServer.h"

#include <QtCore/QDirIterator>
#include <QtCore/QHash>
#include <QtCore/QStandardPaths>
#include <QtGui/QFont>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

using namespace HostDriver;
using namespace Qt::StringLiterals;

/// Uses the magazine reader as a person does. The same test runs in the plain and in the captured program.
class QmlPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isChangedInTwoLines();
    void showsThePage();
};

namespace {

constexpr QByteArrayView articles{
    R"([{"title":"How it is made","picture":"/a.png"},{"title":"Glass","picture":"/b.png"}])"};
constexpr QByteArrayView feed{"<?xml version=\"1.0\"?><rss><channel><item><title>News of glass</title></item>"
                              "<item><title>A new vase</title></item></channel></rss>"};

QByteArray typeface()
{
    const QString name = u"DejaVuSansMono.ttf"_s;
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::FontsLocation);
    for (const QString &folder : folders) {
        QDirIterator files(folder, {name}, QDir::Files, QDirIterator::Subdirectories);
        if (files.hasNext())
            return textOf(files.next());
    }
    qFatal("There is no %s", qPrintable(name));
}

/// What a person sees in an item: texts with their typefaces, and pictures that are loaded.
QStringList shownIn(const QQuickItem &item)
{
    QStringList shown;
    if (item.inherits("QQuickText"))
        shown += item.property("text").toString() + u" in "_s + item.property("font").value<QFont>().family();
    if (item.inherits("QQuickImage")) {
        constexpr int ready = 1;
        shown += item.property("status").toInt() == ready ? u"picture"_s : u"no picture"_s;
    }
    for (const QQuickItem *const child : item.childItems())
        shown += shownIn(*child);
    return shown;
}

} // namespace

void QmlPageTest::isChangedInTwoLines()
{
    verifyChange(QStringLiteral(QUORVIX_PLAIN), QStringLiteral(QUORVIX_CAPTURED), 0);
}

void QmlPageTest::showsThePage()
{
    failOnWarnings();
    const auto windows = QGuiApplication::topLevelWindows();
    const auto found = std::find_if(windows.cbegin(), windows.cend(),
                                    [](const QWindow *window) { return window->title() == u"Magazine"_s; });
    QVERIFY(found != windows.cend());
    auto &window = dynamic_cast<QQuickWindow &>(**found);
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(window.isActive()); // a window drops the keys that come before
    const auto *const page = ScreenDriver::find(window, "page");
    QVERIFY(page);

    const auto http = [](QByteArrayView body, const QByteArray &type) {
        return QList{ScriptedServer::Answer{
            {httpAnswer("200 OK", body.toByteArray(), "Content-Type: " + type + "\r\n")}}};
    };
    const QHash<QString, QByteArray> bodies{{u"/articles"_s, articles.toByteArray()},
                                            {u"/a.png"_s, picture(Qt::red)},
                                            {u"/b.png"_s, picture(Qt::blue)},
                                            {u"/feed.xml"_s, feed.toByteArray()},
                                            {u"/typeface.ttf"_s, typeface()}};
    ScriptedServer server;
    for (auto it = bodies.cbegin(); it != bodies.cend(); ++it)
        server.answer(it.key().toLatin1(),
                      http(it.value(), "application/" + it.key().section(u'.', 1).toLatin1()));

    const QString address = server.url({}).toString();
    for (const QChar &character : address)
        QTest::keyClick(&window, character.toLatin1());
    QTest::keyClick(&window, Qt::Key_Return);
    const QStringList expected{u"2 articles, application/ in DejaVu Sans Mono"_s,
                               u"picture"_s,
                               u"How it is made in DejaVu Sans Mono"_s,
                               u"picture"_s,
                               u"Glass in DejaVu Sans Mono"_s,
                               u"News of glass in DejaVu Sans Mono"_s,
                               u"A new vase in DejaVu Sans Mono"_s};
    QTRY_COMPARE(shownIn(*page), expected);

    if (!isCaptured()) {
        QCOMPARE(traces().size(), 0);
        return;
    }
    QTRY_COMPARE(QXRequestRecorder::shared()
                     .findRequests([](const auto &trace) { return trace.duration.has_value(); })
                     .size(),
                 bodies.size());
    QCOMPARE(traces().size(), bodies.size());
    for (const QXRequestTrace &trace : traces()) {
        const QString path = trace.url->path();
        QCOMPARE(trace.method, path == u"/articles"_s ? u"POST"_s : u"GET"_s);
        QCOMPARE(trace.body.value_or(QByteArray()), path == u"/articles"_s ? R"({"section":"front"})" : "");
        QVERIFY(trace.response && !trace.error);
        QCOMPARE(trace.response->statusCode, 200);
        QVERIFY2(trace.response->body == bodies.value(path), qPrintable(path));
    }
}

class QmlPagePlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "HostDriver.json")

public:
    QObject *create(const QString &, const QString &) override { return start<QmlPageTest>(); }
};

#include "QmlPageTest.moc"
