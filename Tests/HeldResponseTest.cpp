#include "Tests/HostTest.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

using namespace HostWindows;
using namespace Qt::StringLiterals;

/// A held response can be released in every state of the host's windows, and whatever its handler does.
class HeldResponseTest : public HostTest
{
    Q_OBJECT

private Q_SLOTS:
    void dialogThatWaitsForTheHeldResponse_data();
    void dialogThatWaitsForTheHeldResponse();
    void heldWhileThereIsNoWindow();
    void hiddenWindowStaysHidden();
    void handlerWaitsForAnotherHeldResponse();
    void handlerHidesInAnEventLoop();
    void secondPressReleasesNothing();
    void handlerClearsTheScene();
    void focusReturnsToTheNewestWindow();
    void editorKeepsTheKeyboardFromTheLeavingList();
};

void HeldResponseTest::dialogThatWaitsForTheHeldResponse_data()
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

void HeldResponseTest::dialogThatWaitsForTheHeldResponse()
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

void HeldResponseTest::heldWhileThereIsNoWindow()
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

void HeldResponseTest::hiddenWindowStaysHidden()
{
    makeQuickWindow(*m_host);
    auto *const window = qobject_cast<QQuickWindow *>(m_host->objects.front().get());
    QuorvixClient::shared().show();
    QTRY_VERIFY(has("QXFloatingButton"));
    window->hide();
    hold("body");
    QTRY_VERIFY(overlay().isFramed());
    press("QXContinueButton");
    QTRY_COMPARE(m_delivered, QByteArrayList{"200 body"});
    QVERIFY(!window->isVisible());
    QTRY_COMPARE(QGuiApplication::topLevelWindows(), QWindowList{window});
    window->show();
    QTRY_VERIFY(has("QXFloatingButton"));
    QCOMPARE(overlay().window(), window);
}

void HeldResponseTest::handlerWaitsForAnotherHeldResponse()
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

void HeldResponseTest::handlerHidesInAnEventLoop()
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

void HeldResponseTest::secondPressReleasesNothing()
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

/// The next held response comes up before the host has returned from deleting all items.
void HeldResponseTest::handlerClearsTheScene()
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

void HeldResponseTest::focusReturnsToTheNewestWindow()
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
void HeldResponseTest::editorKeepsTheKeyboardFromTheLeavingList()
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

QTEST_MAIN(HeldResponseTest)
#include "HeldResponseTest.moc"
