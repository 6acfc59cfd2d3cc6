#include "Tests/HostWindows.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXOverlay.h"

#include <QtCore/QTemporaryFile>
#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMainWindow>

using namespace HostWindows;
using namespace Qt::StringLiterals;

namespace {

QXOverlay &overlay()
{
    return *QuorvixClient::shared().overlayWindow();
}

} // namespace

/// The inspector over the windows of all kinds of hosts, on all kinds of displays.
class HostWindowTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;
    void everyHost_data();
    void everyHost();
    void waitsForTheHostsFirstWindow();
    void endsWithTheHostsLastWindow();
    void dialogThatWaitsForTheHeldResponse_data();
    void dialogThatWaitsForTheHeldResponse();
    void heldWhileThereIsNoWindow();
    void hiddenWindowStaysHidden();
    void handlerWaitsForAnotherHeldResponse();
    void handlerHidesInAnEventLoop();
    void secondPressReleasesNothing();
    void hostClearsItsScene_data();
    void hostClearsItsScene();
    void handlerClearsTheScene();
    void focusReturnsToTheNewestWindow();
    void editorKeepsTheKeyboardFromTheLeavingList();
    void ownWindowSurvives_data();
    void ownWindowSurvives();
    void windowOfItsContentsSizeShrinks();

private:
    /// Where the inspector is now.
    [[nodiscard]] static QQuickWindow &place() { return *overlay().window(); }
    static bool has(const char *name) { return overlay().window() && ScreenDriver::find(place(), name); }
    static void press(const char *name)
    {
        QTRY_VERIFY(has(name));
        ScreenDriver::click(place(), name);
    }
    void hold(const QByteArray &body)
    {
        QVERIFY(ScreenTest::hold(body, [this](const auto &data, const auto &response, const auto &) {
            const auto &http = dynamic_cast<const Quorvix::NSHTTPURLResponse &>(*response);
            m_delivered.append(QByteArray::number(http.statusCode()) + ' ' + *data);
        }));
    }

    std::unique_ptr<Host> m_host;
    QByteArrayList m_delivered;
};

void HostWindowTest::init()
{
    startAnew();
    m_host = std::make_unique<Host>();
    m_delivered.clear();
}

void HostWindowTest::cleanup()
{
    ScreenTest::cleanup();
    m_host.reset();
}

void HostWindowTest::everyHost_data()
{
    QTest::addColumn<MakeHost>("make");
    QTest::newRow("window") << &makeQuickWindow;
    QTest::newRow("view") << &makeQuickView;
    QTest::newRow("loader") << &makeLoader;
    QTest::newRow("several windows") << &makeSeveralWindows;
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

void HostWindowTest::dialogThatWaitsForTheHeldResponse_data()
{
    QTest::addColumn<bool>("isHeldFirst");
    QTest::addColumn<bool>("hasQuickWindow");
    for (const bool isHeldFirst : {true, false}) {
        for (const bool hasQuickWindow : {true, false}) {
            QTest::addRow("held %s, %s", isHeldFirst ? "before" : "after",
                          hasQuickWindow ? "quick" : "widgets")
                << isHeldFirst << hasQuickWindow;
        }
    }
}

void HostWindowTest::dialogThatWaitsForTheHeldResponse()
{
    QFETCH(bool, isHeldFirst);
    QFETCH(bool, hasQuickWindow);
    if (hasQuickWindow)
        makeQuickWindow(*m_host);
    else
        m_host->make<QMainWindow>()->show();
    QuorvixClient::shared().show();
    QDialog dialog;
    if (isHeldFirst)
        hold("body");
    QTimer::singleShot(100, &dialog, [&] {
        if (!isHeldFirst)
            hold("body");
        // The editor leaves the blocked window some time after the dialog has opened.
        QTRY_VERIFY(overlay().window() && QGuiApplication::modalWindow() &&
                    QGuiApplication::modalWindow()->isAncestorOf(&place(), QWindow::IncludeTransients));
        press("QXContinueButton");
    });
    QTimer closing;
    connect(&closing, &QTimer::timeout, &dialog, [&] {
        if (!m_delivered.isEmpty())
            dialog.accept();
    });
    closing.start(20);
    QTimer::singleShot(20'000, &dialog, &QDialog::reject);
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    if (hasQuickWindow)
        QTRY_COMPARE(overlay().window(), m_host->objects.front().get());
}

void HostWindowTest::heldWhileThereIsNoWindow()
{
    makeQuickWindow(*m_host);
    QuorvixClient::shared().show();
    QTRY_VERIFY(has("QXFloatingButton"));
    m_host = std::make_unique<Host>();
    QTRY_VERIFY(!overlay().window());
    hold("body");
    makeQuickWindow(*m_host);
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
}

void HostWindowTest::hiddenWindowStaysHidden()
{
    makeQuickWindow(*m_host);
    auto *const window = qobject_cast<QQuickWindow *>(m_host->objects.front().get());
    QuorvixClient::shared().show();
    QTRY_VERIFY(has("QXFloatingButton"));
    window->hide();
    hold("body");
    QTRY_VERIFY(overlay().window() != window); // a window of its own
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
    QVERIFY(!window->isVisible());
    QTRY_COMPARE(QGuiApplication::topLevelWindows(), QWindowList{window});
    window->show();
    QTRY_VERIFY(has("QXFloatingButton"));
    QCOMPARE(overlay().window(), window);
}

void HostWindowTest::handlerWaitsForAnotherHeldResponse()
{
    makeQuickWindow(*m_host);
    QuorvixClient::shared().show();
    QVERIFY(ScreenTest::hold("first", [this](const auto &...) {
        hold("third");
        const auto released = [this] {
            if (has("QXContinueButton"))
                ScreenDriver::click(place(), "QXContinueButton");
            return m_delivered.size() == 2;
        };
        QTRY_VERIFY(released());
        m_delivered.append("first");
    }));
    hold("second"); // waits in line already when the first is released
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList({"200 second", "200 third", "first"}));
    QTRY_VERIFY(!has("QXBreakpointEditorView"));
}

void HostWindowTest::handlerHidesInAnEventLoop()
{
    makeQuickWindow(*m_host);
    for (const char *button : {"QXContinueButton", "QXApplyButton"}) {
        QuorvixClient::shared().show();
        bool hasReturned = false;
        QVERIFY(ScreenTest::hold("body", [&](const auto &...) {
            const QPointer<QXOverlay> before = &overlay();
            QTimer::singleShot(0, qApp, [] { QuorvixClient::shared().hide(); });
            hasReturned = QTest::qWaitFor([&] { return !before; });
        }));
        press(button);
        QTRY_VERIFY(hasReturned);
    }
}

void HostWindowTest::secondPressReleasesNothing()
{
    makeQuickWindow(*m_host);
    QuorvixClient::shared().show();
    hold("first");
    hold("second");
    QTRY_VERIFY(has("QXContinueButton"));
    auto *const model =
        ScreenDriver::find(place(), "QXBreakpointEditorView")->property("model").value<QObject *>();
    QVERIFY(QMetaObject::invokeMethod(model, "continueResponse"));
    QVERIFY(QMetaObject::invokeMethod(model, "applyChanges"));
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 first"});
    QCoreApplication::processEvents();
    QCOMPARE(m_delivered.size(), 1);
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

/// The next held response comes up before the host has returned from deleting all items.
void HostWindowTest::handlerClearsTheScene()
{
    makeQuickWindow(*m_host);
    QuorvixClient::shared().show();
    QVERIFY(
        ScreenTest::hold("first", [](const auto &...) { qDeleteAll(place().contentItem()->childItems()); }));
    hold("second");
    press("QXContinueButton");
    QTRY_VERIFY(has("QXTextEditor"));
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 second"});
}

void HostWindowTest::ownWindowSurvives_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("list") << false;
    QTest::newRow("editor") << true;
}

void HostWindowTest::focusReturnsToTheNewestWindow()
{
    if (QGuiApplication::platformName() == "wayland"_L1)
        QSKIP("A program cannot activate its windows there");
    makeQuickWindow(*m_host);
    QuorvixClient::shared().show();
    QTRY_VERIFY(has("QXFloatingButton"));
    auto *const first = m_host->make<QDialog>();
    first->show();
    QVERIFY(waitForActive(*first->windowHandle()));
    hold("body");
    QTRY_COMPARE(QGuiApplication::focusWindow(), &place());
    auto *const second = m_host->make<QDialog>();
    second->show();
    second->activateWindow();
    QVERIFY(waitForActive(*second->windowHandle()));
    place().requestActivate();
    press("QXContinueButton");
    QTRY_COMPARE(QGuiApplication::focusWindow(), second->windowHandle());
}

/// The list gives the keyboard back to the host in the same moment in which the editor asks for it.
void HostWindowTest::editorKeepsTheKeyboardFromTheLeavingList()
{
    auto *const window = m_host->make<QMainWindow>();
    window->show();
    QVERIFY(waitForActive(*window->windowHandle()));
    QuorvixClient::shared().show();
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView") && QGuiApplication::focusWindow() == &place());
    connect(&overlay(), &QXOverlay::presentationChanged, this, [this] {
        if (!overlay().isShowingRequestList())
            hold("body");
    });
    overlay().dismissRequestList();
    QTRY_VERIFY(has("QXBreakpointEditorView"));
    QTest::qWait(100); // for what is on its way
    QVERIFY(overlay().breakpointWindow()->isKeyWindow());
}

/// The user closes our window like any other, and the host makes it the parent of a dialog.
void HostWindowTest::ownWindowSurvives()
{
    QFETCH(bool, isHeld);
    m_host->make<QMainWindow>()->show();
    QuorvixClient::shared().show();
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    if (isHeld) {
        hold("body");
        QTRY_VERIFY(has("QXContinueButton"));
    }
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

namespace {

/// Without a display there is one screen unless a file describes several.
void addScreens()
{
    static QTemporaryFile file;
    if (qgetenv("QT_QPA_PLATFORM") != "offscreen" || !file.open())
        return;
    file.write(R"({"screens": [
        {"name": "first", "x": 0, "y": 0, "width": 1280, "height": 1024, "logicalDpi": 96, "dpr": 1},
        {"name": "second", "x": 1280, "y": 0, "width": 1600, "height": 1200, "logicalDpi": 96, "dpr": 2}]})");
    file.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toUtf8());
}

} // namespace

int main(int argc, char *argv[])
{
    addScreens();
    const QApplication application(argc, argv);
    HostWindowTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "HostWindowTest.moc"
