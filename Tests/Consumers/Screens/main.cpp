// A program with a window: looks for the inspector's button in it, and for a request in the recorder.
// With the argument "nothing" it expects neither.
#include "../Greeter.h"

#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QuorvixClient.h>

#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkReply>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>

static bool shows(const QQuickItem &item, const QString &name)
{
    if (item.objectName() == name && item.isVisible() && item.width() > 0)
        return true;
    const auto children = item.childItems();
    return std::any_of(children.begin(), children.end(),
                       [&name](const QQuickItem *child) { return shows(*child, name); });
}

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const bool records = !application.arguments().contains(QStringLiteral("nothing"));
    QQuickWindow window;
    window.resize(390, 844);
    window.show();
    QuorvixClient::shared().start();

    Greeter greeter;
    QXNetworkAccessManager manager;
    const QNetworkReply *const reply = manager.get(QNetworkRequest(greeter.url()));
    if (!waitFor("the window", [&window] { return window.isExposed(); }) ||
        !waitFor("the reply", [reply] { return reply->isFinished(); }))
        return 1;

    const auto hasButton = [&window] {
        return shows(*window.contentItem(), QStringLiteral("QXFloatingButton"));
    };
    const auto isRecorded = [] {
        return QXRequestRecorder::shared().requests().size() == 1;
    };
    if (records)
        return waitFor("the button", hasButton) && waitFor("the exchange", isRecorded) ? 0 : 2;
    return hasButton() || isRecorded() ? 3 : 0;
}
