#include "Tests/HostTest.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

using namespace HostWindows;
using namespace Qt::StringLiterals;

/// The inspector over the windows of all kinds of hosts, on all kinds of displays.
class HostWindowTest : public HostTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyHost_data();
    void everyHost();
    void waitsForTheHostsFirstWindow();
    void endsWithTheHostsLastWindow();
    void hostClearsItsScene_data();
    void hostClearsItsScene();
    void ownWindowSurvives_data();
    void ownWindowSurvives();
    void windowOfItsContentsSizeShrinks();
};

void HostWindowTest::everyHost_data()
{
    QTest::addColumn<MakeHost>("make");
    QTest::newRow("window") << &makeQuickWindow;
    QTest::newRow("loader") << &makeLoader;
    QTest::newRow("several screens") << &makeWindowOnEachScreen;
    QTest::newRow("modal window") << &makeModalQuickWindow;
    QTest::newRow("quick widget") << &makeQuickWidget;
    QTest::newRow("main window with a modal dialog") << &makeWidgets;
    QTest::newRow("modal dialog over a quick window") << &makeDialogOverQuickWindow;
}

void HostWindowTest::everyHost()
{
    QFETCH(MakeHost, make);
    make(*m_host);
    Exchanges::record(u"1"_s, u"http://host/a"_s);
    QuorvixClient::shared().show();
    press("QXFloatingButton");
    press("QXRequestRow");
    QTRY_VERIFY(has("QXRequestDetailsView"));
    press("QXFloatingButton");
    QTRY_VERIFY(!overlay().isShowingRequestList());

    hold("body");
    QTRY_VERIFY(overlay().breakpointWindow() && overlay().breakpointWindow()->isKeyWindow());
    press("QXStatusCodeField");
    QTest::keyClick(&place(), Qt::Key_End);
    QTest::keyClick(&place(), Qt::Key_Backspace);
    QTest::keyClick(&place(), '3');
    press("QXTextEditor");
    QTest::keyClick(&place(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&place(), 'x');
    press("QXApplyButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"203 x"});
    QTRY_VERIFY(!has("QXBreakpointEditorView"));
}

void HostWindowTest::waitsForTheHostsFirstWindow()
{
    QuorvixClient::shared().start();
    QCoreApplication::processEvents();
    makeQuickWindow(*m_host);
    QTRY_VERIFY(has("QXFloatingButton"));
    QCOMPARE(overlay().window(), m_host->objects.front().get());
    QTest::qWait(QXHostWindow::ownWindowDelay.count() * 3 / 2);
    QCOMPARE(QGuiApplication::topLevelWindows().size(), 1);
}

/// The first window is a dialog, and without a window manager no window is active.
void HostWindowTest::endsWithTheHostsLastWindow()
{
    QuorvixClient::shared().start();
    {
        QDialog first;
        first.setAttribute(Qt::WA_ShowWithoutActivating);
        first.open();
        QTRY_VERIFY(has("QXFloatingButton"));
    }
    auto *const window = m_host->make<QMainWindow>();
    window->setAttribute(Qt::WA_ShowWithoutActivating);
    window->show();
    QTRY_COMPARE(place().transientParent(), window->windowHandle());
    QTimer::singleShot(0, window, &QWidget::close);
    QTimer late;
    connect(&late, &QTimer::timeout, qApp, [] { QCoreApplication::exit(1); });
    late.start(10'000);
    QCOMPARE(QApplication::exec(), 0);
}

void HostWindowTest::hostClearsItsScene_data()
{
    QTest::addColumn<QByteArray>("then");
    for (const char *then : {"hide", "another window", "next scene", "removed only", "exit"})
        QTest::newRow(then) << QByteArray(then);
}

void HostWindowTest::hostClearsItsScene()
{
    QFETCH(QByteArray, then);
    for (const bool isHeld : {false, true}) {
        makeQuickWindow(*m_host);
        auto *const window = qobject_cast<QQuickWindow *>(m_host->objects.back().get());
        QuorvixClient::shared().show();
        press("QXFloatingButton");
        if (isHeld) {
            hold("body");
            press("QXStatusCodeField");
            QTest::keyClick(&place(), Qt::Key_End);
            QTest::keyClick(&place(), '7');
        }
        QTRY_VERIFY(has(isHeld ? "QXBreakpointEditorView" : "QXRequestListView"));
        const auto items = window->contentItem()->childItems();
        if (then == "removed only") {
            for (QQuickItem *const item : items)
                item->setParentItem(nullptr);
        } else {
            qDeleteAll(items);
        }
        if (then == "exit") {
            QVERIFY(QMetaObject::invokeMethod(qApp, "aboutToQuit"));
        } else if (then == "hide") {
            QuorvixClient::shared().hide();
            QuorvixClient::shared().show();
        } else if (then == "another window") {
            makeQuickWindow(*m_host);
            window->hide();
        } else {
            QTRY_VERIFY(has(isHeld ? "QXBreakpointEditorView" : "QXRequestListView"));
        }
        if (then == "next scene" && isHeld)
            QCOMPARE(ScreenDriver::find(place(), "QXStatusCodeField")->property("text").toString(),
                     u"2007"_s);
        if (isHeld && then != "exit")
            press("QXContinueButton");
        ScreenTest::cleanup();
        m_host = std::make_unique<Host>();
    }
}

void HostWindowTest::ownWindowSurvives_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("list") << false;
    QTest::newRow("editor") << true;
}

/// The user closes our window like any other, and the host makes it the parent of a dialog.
void HostWindowTest::ownWindowSurvives()
{
    QFETCH(bool, isHeld);
    m_host->make<QMainWindow>()->show();
    QuorvixClient::shared().show();
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    if (isHeld)
        hold("body");
    QTRY_COMPARE(has("QXContinueButton"), isHeld);
    place().close();
    QTRY_VERIFY(place().isVisible() && !overlay().isShowingRequestList());
    for (int i = 0; i < 2; ++i) {
        auto *const dialog = m_host->make<QDialog>();
        dialog->winId();
        dialog->windowHandle()->setTransientParent(&place());
        dialog->setModal(true);
        dialog->show();
        QTRY_VERIFY(dialog->windowHandle()->isAncestorOf(&place(), QWindow::IncludeTransients));
    }
    if (isHeld)
        press("QXContinueButton");
    QTRY_COMPARE(m_delivered.size(), isHeld ? 1 : 0);
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
}

void HostWindowTest::windowOfItsContentsSizeShrinks()
{
    QObject *const window = m_host->makeQml(R"(
        Window {
            property int side: 400
            visible: true
            width: contentItem.childrenRect.width; height: contentItem.childrenRect.height
            Rectangle { width: parent.Window.window.side; height: parent.Window.window.side }
        })");
    QuorvixClient::shared().show();
    QTRY_VERIFY(has("QXFloatingButton"));
    QTRY_COMPARE(place().contentItem()->width(), 400);
    window->setProperty("side", 200);
    QTRY_COMPARE(place().contentItem()->width(), 200);
}

int main(int argc, char *argv[])
{
    addScreens();
    const QApplication application(argc, argv);
    HostWindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "HostWindowTest.moc"
