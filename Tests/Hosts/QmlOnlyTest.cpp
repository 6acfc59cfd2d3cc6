#include "Tests/Hosts/HostDriver.h"
#include "Tests/ScreenDriver.h"
#include "Tests/ScriptedServer.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

using namespace HostDriver;
using namespace ScreenDriver;
using namespace Qt::StringLiterals;

/// Uses the travel guide, whose code is QML, and the inspector in it as a person does. The test does not link
/// the inspector, so it also runs in a program that links it statically.
class QmlOnlyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsItsRequests();
};

namespace {

QQuickWindow *guide()
{
    for (QWindow *const window : QGuiApplication::topLevelWindows()) {
        if (window->title() == u"Places")
            return qobject_cast<QQuickWindow *>(window);
    }
    return nullptr;
}

QString textOf(QQuickWindow &window, const char *name)
{
    const QQuickItem *const item = find(window, name);
    return item ? item->property("text").toString() : QString();
}

/// All texts of each row of the inspector's list, in a line.
QStringList rows(QQuickWindow &window)
{
    QStringList lines;
    for (QQuickItem *const row : findAll(window, "QXRequestRow")) {
        QStringList texts;
        visitVisible(row, [&](QQuickItem *item) { texts += item->property("text").toString(); });
        lines += texts.join(u' ');
    }
    return lines;
}

} // namespace

void QmlOnlyTest::showsItsRequests()
{
    failOnWarnings();
    QTRY_VERIFY(guide());
    QQuickWindow &window = *guide();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(find(window, "QXFloatingButton"));
    QTRY_VERIFY(window.isActive()); // a window drops the keys that come before

    ScriptedServer server;
    const auto answer = [&server](const QByteArray &path, const QByteArray &type, const QByteArray &body) {
        server.answer(path, {{{httpAnswer("200 OK", body, "Content-Type: " + type + "\r\n")}}});
    };
    answer("/places", "application/json",
           R"([{"name":"Old Harbour","country":"Norway","picture":"/harbour.png"}])");
    answer("/harbour.png", "image/png", picture(Qt::darkCyan));
    type(window, server.url({}).toString().toLatin1().constData());
    QTest::keyClick(&window, Qt::Key_Return);
    QTRY_COMPARE(textOf(window, "note"), u"1 places to see"_s);
    constexpr int ready = 1;
    QTRY_COMPARE(find(window, "picture")->property("status").toInt(), ready);
    QTRY_COMPARE(textOf(window, "count"), u"2 requests so far"_s);
    QTRY_COMPARE(textOf(window, "QXBadgeLabel"), u"2"_s);

    click(window, "QXFloatingButton");
    QTRY_COMPARE(rows(window).size(), 2);
    const QStringList paths{u"/harbour.png"_s, u"/places"_s};
    for (qsizetype row = 0; row < paths.size(); ++row) {
        for (const QString &text : {paths[row], u"GET"_s, u"200"_s})
            QTRY_VERIFY2(rows(window).value(row).contains(text), qPrintable(rows(window).value(row)));
    }
    QCOMPARE(server.arrived().size(), 2);
}

class QmlOnlyPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "HostDriver.json")

public:
    QObject *create(const QString &, const QString &) override { return start<QmlOnlyTest>(); }
};

#include "QmlOnlyTest.moc"
