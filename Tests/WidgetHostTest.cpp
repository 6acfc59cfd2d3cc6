#include "Tests/WidgetTest.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSplashScreen>

using namespace HostWindows;
using namespace Qt::StringLiterals;

namespace {

using Act = void (*)(QWidget &);
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

/// A dialog in which the button stands out, and has room. It is not shown yet.
QDialog *makeDialog(Host &host, QMainWindow &parent, Qt::WindowModality modality)
{
    auto *const dialog = host.make<QDialog>(&parent);
    dialog->setPalette(Qt::magenta);
    dialog->resize(500, 450);
    dialog->setWindowModality(modality);
    return dialog;
}

QWidget *openBox(Host &host, QMainWindow &main, QMainWindow *parent)
{
    auto *const box = host.make<QMessageBox>(parent);
    box->setText(u"text"_s);
    box->setModal(true);
    box->show();
    return QXWindowSystem::placesWindows() ? static_cast<QWidget *>(&main) : box;
}

QColor colorOnScreen(const QPoint &place)
{
    const QPixmap pixel = QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), 1, 1);
    return pixel.toImage().pixelColor(0, 0);
}

} // namespace

/// Where the inspector lies over hosts that consist of widgets.
class WidgetHostTest : public WidgetTest
{
    Q_OBJECT

private Q_SLOTS:
    void liesExactlyOverTheWindow_data();
    void liesExactlyOverTheWindow();
    void comesAndGoesWithTheWindow_data();
    void comesAndGoesWithTheWindow();
    void followsTheActiveWindow_data();
    void followsTheActiveWindow();
    void openScreensStay();
    void staysAboveItsDialog_data();
    void staysAboveItsDialog();
    void staysAboveAnEarlyDialog();
    void smallDialogGetsARoomyPanel();
    void modalDialogsSideBySide();

private:
    /// Whether the user sees the button over a window that is magenta. True on platforms on which a program
    /// cannot look at the screen.
    [[nodiscard]] static bool showsButton(const QWidget &window);
    /// Waits until the button is over a window and stays there: windows come and go before all are shown.
    [[nodiscard]] static bool waitForButton(const QWidget &window);
};

bool WidgetHostTest::showsButton(const QWidget &window)
{
    if (QGuiApplication::platformName() != "xcb"_L1)
        return true;
    const QPoint button = overlay().buttonCenter().toPoint() - QPoint(0, 16);
    return colorOnScreen(window.mapToGlobal(window.rect().center())) == Qt::magenta &&
           colorOnScreen(window.mapToGlobal(button)) != Qt::magenta;
}

bool WidgetHostTest::waitForButton(const QWidget &window)
{
    QDeadlineTimer rest(200);
    return QTest::qWaitFor([&] {
        if (!covers(window) || !showsButton(window))
            rest.setRemainingTime(200);
        return rest.hasExpired();
    });
}

void WidgetHostTest::liesExactlyOverTheWindow_data()
{
    QTest::addColumn<Act>("act");
    QTest::newRow("moved") << Act([](QWidget &window) { window.move(20, 60); });
    QTest::newRow("resized") << Act([](QWidget &window) { window.resize(800, 450); });
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
    QVERIFY(waitForButton(*window));
    const auto flags = overlay().window()->flags();
    QVERIFY(flags & Qt::WindowDoesNotAcceptFocus);
    QCOMPARE(flags.testFlag(Qt::WindowStaysOnTopHint),
             window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    openList();
    if (QXWindowSystem::placesWindows())
        QTRY_VERIFY(covers(*window));
}

void WidgetHostTest::comesAndGoesWithTheWindow_data()
{
    QTest::addColumn<Act>("leave");
    QTest::addColumn<Act>("comeBack");
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
        if (isOpen)
            openList();
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

void WidgetHostTest::followsTheActiveWindow_data()
{
    QTest::addColumn<Open>("open");
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
    QTest::newRow("small modal dialog")
        << Open([](Host &host, QMainWindow &main) { return openBox(host, main, &main); });
    QTest::newRow("small modal dialog of no window")
        << Open([](Host &host, QMainWindow &main) { return openBox(host, main, nullptr); });
    QTest::newRow("floating dock") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        open<QDockWidget>(host, main, {500, 500})->setFloating(true);
        return &main;
    });
    QTest::newRow("splash screen") << Open([](Host &host, QMainWindow &main) -> QWidget * {
        host.make<QSplashScreen>(QPixmap(500, 500))->show();
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
    openList();
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
    openList();
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
    auto *const dialog = makeDialog(*m_host, *main, modality);
    dialog->show();
    QVERIFY(waitForButton(*dialog));
    // As the window manager does when the user clicks the dialog.
    dialog->raise();
    QTest::mouseClick(dialog->windowHandle(), Qt::LeftButton, {}, QPoint(250, 100));
    QVERIFY(waitForButton(*dialog));
    dialog->move(dialog->pos() + QPoint(30, 20));
    QVERIFY(waitForButton(*dialog));
}

/// The window manager has not yet shown the cover when a dialog blocks it.
void WidgetHostTest::staysAboveAnEarlyDialog()
{
    auto *const main = makeMain(*m_host);
    start(*main);
    auto *const dialog = makeDialog(*m_host, *main, Qt::ApplicationModal);
    for (int attempt = 0; attempt < 5; ++attempt) {
        dialog->hide();
        main->hide();
        QTRY_VERIFY(!overlay().window() || !overlay().window()->isVisible());
        main->show();
        QTRY_VERIFY(overlay().window() && overlay().window()->isVisible());
        dialog->show();
        QVERIFY(waitForButton(*dialog));
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
        // One pixel can be missing where a device pixel is no whole number of units.
        const auto missing = [] {
            return QSize(390, 600) - overlay().window()->size();
        };
        QTRY_VERIFY(qAbs(missing().width()) <= 1 && qAbs(missing().height()) <= 1);
        QTRY_VERIFY(box->screen()
                        ->availableGeometry()
                        .adjusted(-1, -1, 1, 1)
                        .contains(overlay().window()->geometry()));
        QTRY_VERIFY(has("QXRequestListView"));
        press("QXFloatingButton");
        QTRY_VERIFY(!overlay().isShowingRequestList() && covers(*box));
    }
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

int main(int argc, char *argv[])
{
    addScreens();
    const QApplication application(argc, argv);
    WidgetHostTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WidgetHostTest.moc"
