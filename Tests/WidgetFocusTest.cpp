#include "Tests/WidgetTest.h"

#include "Quorvix/QXFramedWindow.h"

#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>

#include <chrono>
#include <cstdlib>
#include <thread>

using namespace HostWindows;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using MakeWidget = QWidget *(*)();

QWidget *makeLine()
{
    return new QLineEdit;
}

QWidget *makeQuickField()
{
    auto *const widget = new QQuickWidget;
    QQmlComponent component(widget->engine());
    component.setData("import QtQuick; TextInput { focus: true; width: 200; height: 40 }", QUrl());
    widget->setContent({}, &component, component.create());
    return widget;
}

QWidget *makeWorkspace()
{
    auto *const area = new QMdiArea;
    auto *const line = new QLineEdit;
    area->addSubWindow(line)->show();
    area->setFocusProxy(line);
    return area;
}

/// What the widget with the keyboard, or the item in it, shows.
QString typed(const QWidget *widget)
{
    const auto *const quick = qobject_cast<const QQuickWidget *>(widget);
    return (quick ? static_cast<const QObject *>(quick->rootObject()) : widget)->property("text").toString();
}

constexpr auto drawingHost = "--drawing-host"_L1;

/// A host that calls exit() while the inspector draws.
int runDrawingHost(QXPresentation presentation)
{
    QMainWindow window;
    window.resize(600, 500);
    window.show();
    auto &client = QuorvixClient::shared();
    client.setPresentation(presentation);
    client.start();
    QXOverlay &overlay = *client.overlayWindow();
    int frames = 0;
    QTimer opening;
    QObject::connect(&opening, &QTimer::timeout, &window, [&] {
        if (!overlay.window())
            return;
        opening.stop();
        overlay.handleFloatingButtonTap();
        QQuickWindow *const screens = overlay.screenWindow();
        // In the thread that draws, which then needs no other thread for the next frame.
        QObject::connect(
            screens, &QQuickWindow::frameSwapped, screens, [screens] { screens->update(); },
            Qt::DirectConnection);
        QObject::connect(screens, &QQuickWindow::frameSwapped, screens, [&frames] {
            if (++frames == 10)
                std::exit(0);
        });
        screens->update();
    });
    opening.start(10);
    return QApplication::exec();
}

} // namespace

/// What the host keeps while the inspector comes and goes: its keyboard, its dialogs, and its end.
class WidgetFocusTest : public WidgetTest
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheHostsFocus_data();
    void keepsTheHostsFocus();
    void dialogThatWaits_data() { eachPresentation(); }
    void dialogThatWaits();
    void framedWindow_data();
    void framedWindow();
    void framedEditorComesBack();
    void hostLosesItsWindow_data() { eachPresentation(); }
    void hostLosesItsWindow();
    void endsWithTheHost_data() { eachPresentation(); }
    void endsWithTheHost();
    void exitsWhileItDraws_data() { eachPresentation(); }
    void exitsWhileItDraws();

private:
    static void eachPresentation()
    {
        QTest::addColumn<QXPresentation>("presentation");
        QTest::newRow("panel") << QXPresentation::panel;
        QTest::newRow("window") << QXPresentation::window;
    }
};

void WidgetFocusTest::keepsTheHostsFocus_data()
{
    QTest::addColumn<MakeWidget>("make");
    QTest::addColumn<bool>("isDialog");
    QTest::addColumn<QXPresentation>("presentation");
    QTest::newRow("line, panel") << &makeLine << false << QXPresentation::panel;
    QTest::newRow("line, window") << &makeLine << false << QXPresentation::window;
    QTest::newRow("quick widget, panel") << &makeQuickField << false << QXPresentation::panel;
    QTest::newRow("quick widget, window") << &makeQuickField << false << QXPresentation::window;
    QTest::newRow("workspace") << &makeWorkspace << false << QXPresentation::panel;
    QTest::newRow("modal dialog, panel") << &makeLine << true << QXPresentation::panel;
    QTest::newRow("modal dialog, window") << &makeLine << true << QXPresentation::window;
}

void WidgetFocusTest::keepsTheHostsFocus()
{
    QFETCH(MakeWidget, make);
    QFETCH(bool, isDialog);
    QFETCH(QXPresentation, presentation);
    if (!QXWindowSystem::placesWindows() && presentation == QXPresentation::window)
        QSKIP("The panel is in such a window there, too.");
    QuorvixClient::shared().setPresentation(presentation);
    QWidget *window = makeMain(*m_host, make());
    if (isDialog) {
        auto *const dialog = m_host->make<QDialog>(window);
        dialog->resize(500, 450);
        make()->setParent(dialog);
        dialog->setModal(true);
        dialog->show();
        window = dialog;
    }
    QVERIFY(waitForActive(*window->windowHandle()));
    QTRY_VERIFY(QApplication::focusWidget());
    const QPointer<QWidget> focused = QApplication::focusWidget();
    QString expected;
    const auto isKept = [&] {
        if (QApplication::activeWindow() != window || QApplication::focusWidget() != focused)
            return false;
        QTest::keyClick(QGuiApplication::focusWindow(), 'k');
        expected += u'k';
        return typed(focused) == expected;
    };
    start(*window);
    QVERIFY(isKept());
    for (const bool isHeld : {false, true}) {
        if (isHeld)
            hold("body");
        else
            press("QXFloatingButton");
        QTRY_VERIFY(has(isHeld ? "QXBreakpointEditorView" : "QXRequestListView"));
        QTRY_COMPARE(QGuiApplication::focusWindow(), &place());
        QVERIFY(ScreenDriver::waitForRest(place(), isHeld ? "QXContinueButton" : "QXSearchField"));
        if (isHeld)
            press("QXContinueButton");
        else
            QTest::keyClick(&place(), Qt::Key_Escape);
        QTRY_COMPARE(QApplication::activeWindow(), window);
        QTRY_VERIFY(!has(isHeld ? "QXBreakpointEditorView" : "QXRequestListView"));
        QVERIFY(isKept());
    }
    QCOMPARE(m_delivered.size(), 1);
}

/// The list opens over the dialog, and then the response that the dialog waits for is held.
void WidgetFocusTest::dialogThatWaits()
{
    QFETCH(QXPresentation, presentation);
    QuorvixClient::shared().setPresentation(presentation);
    auto *const main = makeMain(*m_host);
    start(*main);
    for (const bool isSmall : {false, true}) {
        const std::unique_ptr<QDialog> dialog(isSmall ? new QMessageBox(main) : new QDialog(main));
        if (!isSmall)
            dialog->resize(500, 450);
        QTimer::singleShot(100, dialog.get(), [&] {
            QTRY_VERIFY(QGuiApplication::modalWindow());
            openList();
            hold("body");
            press("QXContinueButton");
        });
        QTimer closing;
        connect(&closing, &QTimer::timeout, dialog.get(), [&] {
            if (!m_delivered.isEmpty())
                dialog->accept();
        });
        closing.start(20);
        QTimer::singleShot(20'000, dialog.get(), &QDialog::reject);
        QCOMPARE(dialog->exec(), int(QDialog::Accepted));
        m_delivered.clear();
        dialog->close();
        QTRY_VERIFY(covers(*main));
        // On Wayland, the window of the list may close with the dialog to which it belongs.
        if (QXWindowSystem::placesWindows())
            press("QXFloatingButton");
        else
            overlay().dismissRequestList();
        QTRY_VERIFY(!overlay().isShowingRequestList());
    }
}

void WidgetFocusTest::framedWindow_data()
{
    QTest::addColumn<MakeHost>("make");
    QTest::newRow("widgets") << MakeHost([](Host &host) { makeMain(host); });
    QTest::newRow("quick window") << &makeQuickWindow;
    QTest::newRow("modal dialog over a quick window") << &makeDialogOverQuickWindow;
}

void WidgetFocusTest::framedWindow()
{
    QFETCH(MakeHost, make);
    make(*m_host);
    QuorvixClient::shared().setPresentation(QXPresentation::window);
    QCOMPARE(QuorvixClient::shared().presentation(), QXPresentation::window);
    QuorvixClient::shared().start();
    QSize size = QSize(480, 800).boundedTo(QGuiApplication::primaryScreen()->availableSize() - QSize(16, 48));
    for (const QSize &next : {QSize(500, 450), QSize(400, 420)}) {
        press("QXFloatingButton");
        QTRY_VERIFY(overlay().isFramed() && has("QXRequestListView"));
        QVERIFY(!ScreenDriver::find(*overlay().window(), "QXRequestListView"));
        QVERIFY(!ScreenDriver::find(place(), "QXFloatingButton"));
        QTRY_COMPARE(QGuiApplication::focusWindow(), &place());
        QVERIFY(!place().title().isEmpty() && !place().flags().testFlag(Qt::FramelessWindowHint));
        const QSize screen = place().screen()->availableSize();
        QCOMPARE(place().frameGeometry().size().boundedTo(screen), place().frameGeometry().size());
        QTRY_VERIFY(isNear({{}, place().size()}, {{}, size}));
        place().resize(next);
        // The window manager may still be about to show the window in its first size.
        QTest::qWait(100);
        QTRY_VERIFY(isNear({{}, place().size()}, {{}, next}));
        size = next;
        place().close();
        QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
    }
    QVERIFY(isNear({{}, QSettings().value(QXFramedWindow::sizeKey).toSize()}, {{}, size}));
    openList();
    press("QXFloatingButton");
    QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
}

/// The list is open when the response is held, and both are in the window that the user closes.
void WidgetFocusTest::framedEditorComesBack()
{
    makeMain(*m_host);
    QuorvixClient::shared().setPresentation(QXPresentation::window);
    QuorvixClient::shared().start();
    openList();
    hold("body");
    press("QXStatusCodeField");
    QTest::keyClick(&place(), Qt::Key_End);
    QTest::keyClick(&place(), '7');
    place().close();
    QTRY_VERIFY(!overlay().isShowingRequestList() && place().isVisible());
    QCOMPARE(ScreenDriver::find(place(), "QXStatusCodeField")->property("text").toString(), u"2007"_s);
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
    QTRY_VERIFY(!overlay().isFramed());
}

/// The list is open when the host's last window goes, and the next screen has no window of the host.
void WidgetFocusTest::hostLosesItsWindow()
{
    QFETCH(QXPresentation, presentation);
    makeQuickWindow(*m_host);
    QuorvixClient::shared().start();
    QuorvixClient::shared().setPresentation(presentation);
    openList();
    QuorvixClient::shared().setPresentation(QXPresentation::window);
    m_host->objects.clear();
    QTRY_VERIFY(!overlay().window());
    hold("body");
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
    overlay().dismissRequestList();
    QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
}

void WidgetFocusTest::endsWithTheHost()
{
    QFETCH(QXPresentation, presentation);
    QuorvixClient::shared().setPresentation(presentation);
    auto *const window = makeMain(*m_host);
    start(*window);
    openList();
    QTimer::singleShot(0, window, &QWidget::close);
    QTimer::singleShot(10'000, window, [] { QCoreApplication::exit(1); });
    QCOMPARE(QApplication::exec(), 0);
}

void WidgetFocusTest::exitsWhileItDraws()
{
    QFETCH(QXPresentation, presentation);
    QProcess host;
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // exit() leaves what only the end of an application destroys.
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, environment.value(u"ASAN_OPTIONS"_s) + u":detect_leaks=0"_s);
    host.setProcessEnvironment(environment);
    host.start(QCoreApplication::applicationFilePath(), {drawingHost, QString::number(int(presentation))});
    QVERIFY(host.waitForFinished());
    QCOMPARE(host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(host.exitCode(), 0);
}

int main(int argc, char *argv[])
{
    const bool isDrawingHost = argc == 3 && QLatin1StringView(argv[1]) == drawingHost;
    // Registered first and called last: then another thread has time to use what is destroyed.
    if (isDrawingHost)
        std::atexit([] { std::this_thread::sleep_for(300ms); });
    else
        addScreens();
    const QApplication application(argc, argv);
    if (isDrawingHost)
        return runDrawingHost(static_cast<QXPresentation>(QString::fromLatin1(argv[2]).toInt()));
    WidgetFocusTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WidgetFocusTest.moc"
