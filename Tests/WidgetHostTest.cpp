#include "Tests/HostTest.h"

#include "Quorvix/QXFramedWindow.h"
#include "Quorvix/QXWindowSystem.h"

#include <QtCore/QProcess>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMdiArea>
#include <QtWidgets/QMdiSubWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressDialog>
#include <QtWidgets/QSplashScreen>
#include <QtWidgets/QTextEdit>

#include <chrono>
#include <cstdlib>
#include <thread>

using namespace HostWindows;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// A main window around a widget that takes the keyboard.
QMainWindow *makeMain(Host &host, QWidget *center = new QLineEdit)
{
    auto *const window = host.make<QMainWindow>();
    auto *const page = new QWidget;
    center->setParent(page);
    center->resize(300, 200);
    window->setCentralWidget(page);
    window->setGeometry(220, 140, 600, 500);
    window->show();
    center->setFocus();
    return window;
}

QWidget *makeQuickField()
{
    auto *const widget = new QQuickWidget;
    auto *const engine = widget->engine();
    QQmlComponent component(engine);
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
    if (const auto *const line = qobject_cast<const QLineEdit *>(widget))
        return line->text();
    if (const auto *const text = qobject_cast<const QTextEdit *>(widget))
        return text->toPlainText();
    if (const auto *const quick = qobject_cast<const QQuickWidget *>(widget))
        return quick->rootObject()->property("text").toString();
    return {};
}

bool isNear(const QRect &one, const QRect &other)
{
    // Where a device pixel is no whole number of units, each edge may differ by one.
    const QRect rest(one.topLeft() - other.topLeft(), one.bottomRight() - other.bottomRight());
    return qAbs(rest.left()) <= 1 && qAbs(rest.top()) <= 1 && qAbs(rest.right()) <= 1 &&
           qAbs(rest.bottom()) <= 1;
}

QColor colorOnScreen(const QPoint &place)
{
    const QPixmap pixel = QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1);
    return pixel.toImage().pixelColor(0, 0);
}

/// The windows that make the host's part of a row: what has the keyboard, and in which window.
using MakeWidget = QWidget *(*)();
using Act = void (*)(QWidget &);

QXOverlay &overlayOfClient()
{
    return *QuorvixClient::shared().overlayWindow();
}

} // namespace

/// The inspector over hosts that consist of widgets.
class WidgetHostTest : public HostTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;
    void liesExactlyOverTheWindow_data();
    void liesExactlyOverTheWindow();
    void comesAndGoesWithTheWindow_data();
    void comesAndGoesWithTheWindow();
    void keepsTheHostsFocus_data();
    void keepsTheHostsFocus();
    void followsTheActiveWindow_data();
    void followsTheActiveWindow();
    void openScreensStay();
    void staysAboveItsDialog_data();
    void staysAboveItsDialog();
    void dialogThatWaits_data();
    void dialogThatWaits();
    void smallDialogGetsARoomyPanel();
    void framedWindow_data();
    void framedWindow();
    void framedEditorComesBack();
    void hostLosesItsWindow_data();
    void hostLosesItsWindow();
    void modalDialogsSideBySide();
    void endsWithTheHost_data();
    void endsWithTheHost();
    void exitsWhileItDraws_data();
    void exitsWhileItDraws();

private:
    void start(QWidget &window);
    /// Whether the cover lies over a window, and over nothing else.
    [[nodiscard]] static bool covers(const QWidget &window);
    /// Whether the user sees the button over a window that is magenta. True on platforms on which a program
    /// cannot look at the screen.
    [[nodiscard]] static bool showsButton(const QWidget &window);
};

void WidgetHostTest::cleanup()
{
    QuorvixClient::shared().setPresentation(QXPresentation::panel);
    HostTest::cleanup();
}

void WidgetHostTest::start(QWidget &window)
{
    QVERIFY(waitForActive(*window.windowHandle()));
    QuorvixClient::shared().start();
    QTRY_VERIFY(has("QXFloatingButton") && covers(window));
    // Some platforms activate each window that is shown; ours then gives the keyboard back.
    QTRY_VERIFY(place().isExposed() && QApplication::activeWindow() == &window);
}

bool WidgetHostTest::covers(const QWidget &window)
{
    const QWindow *const host = window.windowHandle();
    const QQuickWindow *const cover = overlayOfClient().window();
    if (!host || !cover || !cover->isVisible())
        return false;
    if (!QXWindowSystem::placesWindows())
        return cover->parent() == host && cover->geometry() == QRect(QPoint(), host->size());
    return cover->screen() == host->screen() && isNear(cover->geometry(), host->geometry()) &&
           cover->transientParent() && !(cover->windowStates() & Qt::WindowMinimized);
}

bool WidgetHostTest::showsButton(const QWidget &window)
{
    if (QGuiApplication::platformName() != "xcb"_L1)
        return true;
    const QPoint button = overlayOfClient().buttonCenter().toPoint() - QPoint(0, 16);
    return colorOnScreen(window.mapToGlobal(window.rect().center())) == Qt::magenta &&
           colorOnScreen(window.mapToGlobal(button)) != Qt::magenta;
}

void WidgetHostTest::liesExactlyOverTheWindow_data()
{
    QTest::addColumn<Act>("act");
    QTest::newRow("at first") << Act([](QWidget &) {});
    QTest::newRow("moved") << Act([](QWidget &window) { window.move(20, 60); });
    QTest::newRow("resized") << Act([](QWidget &window) { window.resize(800, 450); });
    QTest::newRow("maximised") << Act([](QWidget &window) { window.showMaximized(); });
    QTest::newRow("full screen") << Act([](QWidget &window) { window.showFullScreen(); });
    QTest::newRow("normal again") << Act([](QWidget &window) {
        window.showMaximized();
        QTRY_VERIFY(window.isMaximized() && covers(window));
        window.showNormal();
    });
    QTest::newRow("another screen") << Act([](QWidget &window) {
        window.move(QGuiApplication::screens().constLast()->geometry().topLeft() + QPoint(40, 60));
    });
    QTest::newRow("other flags") << Act([](QWidget &window) {
        window.setWindowFlag(Qt::WindowStaysOnTopHint);
        window.show();
    });
    QTest::newRow("new native window") << Act([](QWidget &window) {
        window.windowHandle()->destroy();
        window.windowHandle()->show();
    });
}

void WidgetHostTest::liesExactlyOverTheWindow()
{
    QFETCH(Act, act);
    auto *const window = makeMain(*m_host);
    start(*window);
    window->setPalette(Qt::magenta);
    act(*window);
    QTRY_VERIFY(covers(*window) && showsButton(*window));
    const auto flags = overlay().window()->flags();
    QVERIFY(flags & Qt::WindowDoesNotAcceptFocus);
    QCOMPARE(flags.testFlag(Qt::WindowStaysOnTopHint),
             window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    if (QXWindowSystem::placesWindows())
        QTRY_VERIFY(covers(*window));
}

void WidgetHostTest::comesAndGoesWithTheWindow_data()
{
    QTest::addColumn<Act>("leave");
    QTest::addColumn<Act>("comeBack");
    QTest::newRow("hidden") << Act([](QWidget &window) { window.hide(); })
                            << Act([](QWidget &window) { window.show(); });
    QTest::newRow("minimised") << Act([](QWidget &window) { window.showMinimized(); })
                               << Act([](QWidget &window) { window.showNormal(); });
    QTest::newRow("closed") << Act([](QWidget &window) { window.close(); })
                            << Act([](QWidget &window) { window.show(); });
}

void WidgetHostTest::comesAndGoesWithTheWindow()
{
    QFETCH(Act, leave);
    QFETCH(Act, comeBack);
    if (!QXWindowSystem::placesWindows() && QLatin1StringView(QTest::currentDataTag()) == "minimised"_L1)
        QSKIP("A program is not told there that its window is minimised.");
    QApplication::setQuitOnLastWindowClosed(false);
    auto *const window = makeMain(*m_host);
    start(*window);
    for (const bool isOpen : {false, true}) {
        if (isOpen) {
            press("QXFloatingButton");
            QTRY_VERIFY(has("QXRequestListView"));
        }
        leave(*window);
        QTRY_VERIFY(!overlay().window() || !overlay().window()->isVisible());
        comeBack(*window);
        QTRY_VERIFY(covers(*window));
        // On Wayland, the window of the list may close with the window to which it belongs.
        if (QXWindowSystem::placesWindows())
            QCOMPARE(overlay().isShowingRequestList(), isOpen);
    }
    // The host deletes the window while the list is open.
    m_host->objects.clear();
    QTRY_VERIFY(!overlay().window());
    auto *const next = makeMain(*m_host);
    QTRY_VERIFY(covers(*next));
    QApplication::setQuitOnLastWindowClosed(true);
}

void WidgetHostTest::keepsTheHostsFocus_data()
{
    QTest::addColumn<MakeWidget>("make");
    QTest::addColumn<bool>("isDialog");
    QTest::addColumn<QXPresentation>("presentation");
    const auto add = [](const char *name, MakeWidget make, bool isDialog) {
        QTest::addRow("%s, panel", name) << make << isDialog << QXPresentation::panel;
        QTest::addRow("%s, window", name) << make << isDialog << QXPresentation::window;
    };
    add(
        "line", [] { return static_cast<QWidget *>(new QLineEdit); }, false);
    add(
        "text", [] { return static_cast<QWidget *>(new QTextEdit); }, false);
    add("quick widget", &makeQuickField, false);
    add("workspace", &makeWorkspace, false);
    add(
        "modal dialog", [] { return static_cast<QWidget *>(new QLineEdit); }, true);
}

void WidgetHostTest::keepsTheHostsFocus()
{
    QFETCH(MakeWidget, make);
    QFETCH(bool, isDialog);
    QFETCH(QXPresentation, presentation);
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

namespace {

/// Opens something beside a main window and returns the widget over which the button is then.
using Open = QWidget *(*)(Host &, QMainWindow &);

template<typename Widget>
Widget *open(Host &host, QMainWindow &parent, QSize size)
{
    auto *const widget = host.make<Widget>(&parent);
    widget->resize(size);
    widget->show();
    widget->activateWindow();
    return widget;
}

} // namespace

void WidgetHostTest::followsTheActiveWindow_data()
{
    QTest::addColumn<Open>("open");
    QTest::newRow("main window") << Open(
        [](Host &host, QMainWindow &) -> QWidget * { return makeMain(host); });
    QTest::newRow("small main window") << Open([](Host &host, QMainWindow &) -> QWidget * {
        auto *const window = makeMain(host);
        window->resize(240, 200);
        return window;
    });
    QTest::newRow("large dialog") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        return open<QDialog>(host, main, {500, 450});
    });
    QTest::newRow("small dialog") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        open<QDialog>(host, main, {300, 200});
        return &main;
    });
    QTest::newRow("small modal dialog") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        auto *const box = host.make<QMessageBox>(&main);
        box->setText(u"text"_s);
        box->open();
        return QXWindowSystem::placesWindows() ? static_cast<QWidget *>(&main) : box;
    });
    QTest::newRow("small modal dialog of no window") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        auto *const box = host.make<QMessageBox>();
        box->setText(u"text"_s);
        box->setModal(true);
        box->show();
        return QXWindowSystem::placesWindows() ? static_cast<QWidget *>(&main) : box;
    });
    QTest::newRow("floating dock") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        auto *const dock = host.make<QDockWidget>(&main);
        dock->setFloating(true);
        dock->resize(500, 500);
        dock->show();
        dock->activateWindow();
        return &main;
    });
    QTest::newRow("splash screen") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        host.make<QSplashScreen>(QPixmap(500, 500))->show();
        return &main;
    });
    QTest::newRow("menu") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        auto *const menu = host.make<QMenu>(&main);
        for (int i = 0; i < 30; ++i)
            menu->addAction(u"an action with a long name that makes the menu wide enough for a screen"_s);
        menu->popup(main.pos());
        return &main;
    });
    QTest::newRow("combo box") << Open([](Host &, QMainWindow &main) -> QWidget * {
        auto *const box = new QComboBox(&main);
        box->addItems({u"one"_s, u"two"_s});
        box->show();
        box->showPopup();
        return &main;
    });
}

void WidgetHostTest::followsTheActiveWindow()
{
    QFETCH(Open, open);
    auto *const main = makeMain(*m_host);
    start(*main);
    const auto before = m_host->objects.size();
    const QWidget *const covered = open(*m_host, *main);
    const bool comesFirst = QXWindowSystem::placesWindows() || covered == main || covered->isModal();
    if (!comesFirst && !QTest::qWaitFor([&] { return covered->isActiveWindow(); }))
        QSKIP("The compositor did not make the window active.");
    QWindow *const modal = QGuiApplication::modalWindow();
    QTRY_VERIFY(!modal || QGuiApplication::focusWindow() == modal);
    QTest::qWait(50); // what does not follow has the time to do so
    QTRY_VERIFY(covers(*covered));
    // In some versions of Qt a click beside a popup only closes the popup.
    while (QWidget *const popup = QApplication::activePopupWidget())
        popup->close();
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    QTRY_COMPARE(QGuiApplication::focusWindow(), &place());
    QTest::keyClick(&place(), Qt::Key_Escape);
    QTRY_VERIFY(!overlay().isShowingRequestList());
    QTRY_VERIFY(covers(*covered));
    while (m_host->objects.size() > before)
        m_host->objects.pop_back();
    QTRY_VERIFY(covers(*main));
}

/// The user works in one window while the list is open over another one.
void WidgetHostTest::openScreensStay()
{
    if (!QXWindowSystem::placesWindows())
        QSKIP("Screens have a window of their own there.");
    auto *const first = makeMain(*m_host);
    start(*first);
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    auto *const second = makeMain(*m_host);
    second->move(0, 0);
    second->activateWindow();
    QVERIFY(waitForActive(*second->windowHandle()));
    QTest::qWait(50);
    QVERIFY(covers(*first));
    overlay().dismissRequestList();
    QTRY_VERIFY(covers(*second));
    QCOMPARE(QApplication::activeWindow(), second);
}

void WidgetHostTest::staysAboveItsDialog_data()
{
    QTest::addColumn<Qt::WindowModality>("modality");
    QTest::newRow("modeless") << Qt::NonModal;
    QTest::newRow("of the window") << Qt::WindowModal;
    QTest::newRow("of the application") << Qt::ApplicationModal;
}

/// Looks at the screen, because only there one sees which window is above the other.
void WidgetHostTest::staysAboveItsDialog()
{
    if (QGuiApplication::platformName() != "xcb"_L1)
        QSKIP("A program can look at the screen only there.");
    QFETCH(Qt::WindowModality, modality);
    auto *const main = makeMain(*m_host);
    start(*main);
    auto *const dialog = m_host->make<QDialog>(main);
    dialog->setPalette(Qt::magenta);
    dialog->resize(500, 450);
    dialog->setWindowModality(modality);
    dialog->show();
    QTRY_VERIFY(covers(*dialog));
    QTRY_VERIFY(showsButton(*dialog));
    // As the window manager does when the user clicks the dialog.
    dialog->raise();
    QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, {}, QPoint(250, 100));
    QTRY_VERIFY(showsButton(*dialog));
    dialog->move(dialog->pos() + QPoint(30, 20));
    QTRY_VERIFY(covers(*dialog) && showsButton(*dialog));
}

void WidgetHostTest::dialogThatWaits_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isHeldFirst");
    QTest::addColumn<QXPresentation>("presentation");
    const char *const kinds[] = {"large dialog", "message box", "progress dialog"};
    for (int kind = 0; kind < 3; ++kind) {
        QTest::addRow("%s", kinds[kind]) << kind << false << QXPresentation::panel;
        QTest::addRow("%s, held first", kinds[kind]) << kind << true << QXPresentation::panel;
        QTest::addRow("%s, framed", kinds[kind]) << kind << (kind == 1) << QXPresentation::window;
    }
}

void WidgetHostTest::dialogThatWaits()
{
    QFETCH(int, kind);
    QFETCH(bool, isHeldFirst);
    QFETCH(QXPresentation, presentation);
    QuorvixClient::shared().setPresentation(presentation);
    auto *const main = makeMain(*m_host);
    start(*main);
    std::unique_ptr<QDialog> dialog;
    if (kind == 0)
        dialog = std::make_unique<QDialog>(main);
    else if (kind == 1)
        dialog = std::make_unique<QMessageBox>(QMessageBox::Information, u"title"_s, u"text"_s,
                                               QMessageBox::Ok, main);
    else
        dialog = std::make_unique<QProgressDialog>(u"Waiting"_s, u"Cancel"_s, 0, 0, main);
    if (kind == 0)
        dialog->resize(500, 450);
    if (isHeldFirst) {
        hold("body");
        QTRY_VERIFY(has("QXContinueButton"));
    }
    QTimer::singleShot(100, dialog.get(), [&] {
        QTRY_VERIFY(QGuiApplication::modalWindow());
        if (!isHeldFirst) {
            press("QXFloatingButton");
            QTRY_VERIFY(has("QXRequestListView"));
            hold("body");
        }
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
    dialog.reset();
    QTRY_VERIFY(covers(*main));
    // On Wayland, the window of the list may close with the dialog to which it belongs.
    if (!isHeldFirst && QXWindowSystem::placesWindows()) {
        press("QXFloatingButton");
        QTRY_VERIFY(!overlay().isShowingRequestList());
    }
}

/// There is no other window, so the panel is larger than the dialog, but not than the screen.
void WidgetHostTest::smallDialogGetsARoomyPanel()
{
    if (!QXWindowSystem::placesWindows())
        QSKIP("Screens have a window of their own there.");
    auto *const box = m_host->make<QMessageBox>();
    box->setText(u"text"_s);
    box->open();
    start(*box);
    for (const QPoint &place : {QPoint(500, 300), QPoint(30, 40)}) {
        box->move(place);
        QTRY_VERIFY(covers(*box));
        press("QXFloatingButton");
        QTRY_COMPARE(overlay().window()->size(), QSize(390, 600));
        QTRY_VERIFY(box->screen()
                        ->availableGeometry()
                        .adjusted(-1, -1, 1, 1)
                        .contains(overlay().window()->geometry()));
        QTRY_VERIFY(has("QXRequestListView"));
        press("QXFloatingButton");
        QTRY_VERIFY(!overlay().isShowingRequestList() && covers(*box));
    }
}

void WidgetHostTest::framedWindow_data()
{
    QTest::addColumn<MakeHost>("make");
    QTest::newRow("widgets") << MakeHost([](Host &host) { makeMain(host); });
    QTest::newRow("quick widget") << &makeQuickWidget;
    QTest::newRow("quick window") << &makeQuickWindow;
    QTest::newRow("modal dialog over a quick window") << &makeDialogOverQuickWindow;
}

void WidgetHostTest::framedWindow()
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
        QTest::qWait(
            100); // for the window manager, which may still be about to show the window in its first size
        QTRY_VERIFY(isNear({{}, place().size()}, {{}, next}));
        size = next;
        place().close();
        QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
    }
    QVERIFY(isNear({{}, QSettings().value(QXFramedWindow::sizeKey).toSize()}, {{}, size}));
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    press("QXFloatingButton");
    QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
}

/// The list is open when the response is held, and both are in the window that the user closes.
void WidgetHostTest::framedEditorComesBack()
{
    makeMain(*m_host);
    QuorvixClient::shared().setPresentation(QXPresentation::window);
    QuorvixClient::shared().start();
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
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

void WidgetHostTest::hostLosesItsWindow_data()
{
    QTest::addColumn<bool>("isFramed");
    QTest::newRow("list in the host's window") << false;
    QTest::newRow("list in a window of its own") << true;
}

/// The list is open when the host's last window goes, and the next screen has no window of the host.
void WidgetHostTest::hostLosesItsWindow()
{
    QFETCH(bool, isFramed);
    makeQuickWindow(*m_host);
    QuorvixClient::shared().start();
    if (isFramed)
        QuorvixClient::shared().setPresentation(QXPresentation::window);
    press("QXFloatingButton");
    QTRY_VERIFY(has("QXRequestListView"));
    QuorvixClient::shared().setPresentation(QXPresentation::window);
    m_host->objects.clear();
    QTRY_VERIFY(!overlay().window());
    hold("body");
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
    overlay().dismissRequestList();
    QTRY_VERIFY(!overlay().isFramed() && !overlay().isShowingRequestList());
}

/// Neither of two dialogs that block the whole program is the newest one.
void WidgetHostTest::modalDialogsSideBySide()
{
    auto *const main = makeMain(*m_host);
    QDialog first;
    QDialog second;
    QDialog newest(main);
    for (QDialog *const dialog : {&first, &second, &newest}) {
        dialog->setWindowModality(dialog == &newest ? Qt::WindowModal : Qt::ApplicationModal);
        dialog->show();
    }
    QCOMPARE(QGuiApplication::modalWindow(), newest.windowHandle());
    QCOMPARE(QXWindowSystem::blocker(*first.windowHandle()), second.windowHandle());
    QCOMPARE(QXWindowSystem::blocker(*main->windowHandle()), newest.windowHandle());
}

void WidgetHostTest::endsWithTheHost_data()
{
    QTest::addColumn<bool>("isOpen");
    QTest::addColumn<QXPresentation>("presentation");
    QTest::newRow("button") << false << QXPresentation::panel;
    QTest::newRow("panel") << true << QXPresentation::panel;
    QTest::newRow("window") << true << QXPresentation::window;
}

void WidgetHostTest::endsWithTheHost()
{
    QFETCH(bool, isOpen);
    QFETCH(QXPresentation, presentation);
    QuorvixClient::shared().setPresentation(presentation);
    auto *const window = makeMain(*m_host);
    start(*window);
    if (isOpen)
        press("QXFloatingButton");
    QTRY_COMPARE(has("QXRequestListView"), isOpen);
    QTimer::singleShot(0, window, &QWidget::close);
    QTimer::singleShot(10'000, window, [] { QCoreApplication::exit(1); });
    QCOMPARE(QApplication::exec(), 0);
}

namespace {

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
    int frames = 0;
    QTimer opening;
    QObject::connect(&opening, &QTimer::timeout, &window, [&] {
        if (!overlayOfClient().window())
            return;
        opening.stop();
        overlayOfClient().handleFloatingButtonTap();
        QQuickWindow *const screens = overlayOfClient().screenWindow();
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

void WidgetHostTest::exitsWhileItDraws_data()
{
    QTest::addColumn<QXPresentation>("presentation");
    QTest::newRow("panel") << QXPresentation::panel;
    QTest::newRow("window") << QXPresentation::window;
}

void WidgetHostTest::exitsWhileItDraws()
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
    WidgetHostTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WidgetHostTest.moc"
