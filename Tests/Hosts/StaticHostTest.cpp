#include "Tests/ScreenDriver.h"

#include <Quorvix/QuorvixClient.h>

using namespace ScreenDriver;

/// A program that links the static libraries. The linker drops code without a reference, but QML modules,
/// screens and symbols are found by name only, so this test checks that they are there.
class StaticHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensTheList();
};

namespace {

bool showsSymbol(QQuickItem &button)
{
    constexpr int ready = 1;
    bool isReady = false;
    visitVisible(&button, [&](QQuickItem *item) {
        isReady = isReady || (item->inherits("QQuickImage") && item->property("status").toInt() == ready);
    });
    return isReady;
}

} // namespace

void StaticHostTest::opensTheList()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QQuickWindow window;
    window.resize(390, 844);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QuorvixClient::shared().start();
    QTRY_VERIFY(find(window, "QXFloatingButton"));
    click(window, "QXFloatingButton");
    QTRY_VERIFY(find(window, "QXRequestListView"));
    QTRY_VERIFY(find(window, "QXCloseButton"));
    QTRY_VERIFY(showsSymbol(*find(window, "QXCloseButton")));
    QuorvixClient::shared().hide();
}

QTEST_MAIN(StaticHostTest)
#include "StaticHostTest.moc"
