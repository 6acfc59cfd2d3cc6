#include "Tests/Exchanges.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXOverlay.h"

#include "Controls/QXSafeArea.h"

#include <QtCore/QLoggingCategory>
#include <QtGui/QInputMethod>

using namespace Qt::StringLiterals;
using namespace ScreenDriver;

namespace {

/// Qt's on-screen keyboard is an input method that is selected before the application starts.
[[maybe_unused]] const bool isSelected =
    qputenv("QT_IM_MODULE", "qtvirtualkeyboard") && qputenv("QT_VIRTUALKEYBOARD_DESKTOP_DISABLE", "1");

/// A host with the keyboard in its scene, as Qt's documentation shows it.
constexpr char hostQml[] = R"(
import QtQuick
import QtQuick.VirtualKeyboard

Window {
    id: root

    width: 390
    height: 844
    visible: true

    TextInput {
        objectName: "hostField"
        width: parent.width
        height: 44
    }
    InputPanel {
        id: panel

        objectName: "panel"
        z: 99
        y: parent.height
        width: parent.width

        states: State {
            name: "visible"
            when: panel.active
            PropertyChanges { target: panel; y: root.height - panel.height }
        }
        transitions: Transition {
            NumberAnimation { properties: "y"; duration: 250; easing.type: Easing.InOutQuad }
        }
    }
}
)";

} // namespace

/// The inspector's screens beside an on-screen keyboard in the host's scene.
class VirtualKeyboardTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void typesIntoTheSearchField();
    void typesIntoTheHeldBody();
    void detailsEndAboveIt();
    void sheetShowsItsField();
    void buttonStaysVisible();

private:
    [[nodiscard]] static bool isOpen() { return QGuiApplication::inputMethod()->isVisible(); }
    [[nodiscard]] QRectF panel() { return sceneRect(*find("panel")); }
    [[nodiscard]] QRectF frame(const char *name) { return sceneRect(*find(name)); }
    /// Waits until the keyboard is where it stays, and an item ends above it.
    [[nodiscard]] bool waitForRoom(const char *name)
    {
        return QTest::qWaitFor([&] {
            return isOpen() && panel().bottom() <= m_window->height() + 0.5 &&
                   qAbs(frame(name).bottom() - panel().top()) <= 1;
        });
    }
    /// Clicks the keys at two places of the keyboard's upper rows.
    void clickLetters();

    std::unique_ptr<QQmlEngine> m_engine;
};

void VirtualKeyboardTest::init()
{
    QLoggingCategory::setFilterRules(u"qt.virtualkeyboard.*=false"_s); // dictionaries are not installed
    startAnew();
    m_engine = std::make_unique<QQmlEngine>();
    m_window = makeWindow(*m_engine, hostQml);
    for (int i = 0; i < 30; ++i)
        Exchanges::record(QString::number(i), u"http://host/%1"_s.arg(i));
    QuorvixClient::shared().show();
}

void VirtualKeyboardTest::clickLetters()
{
    for (const qreal across : {0.35, 0.65})
        click(QPointF(panel().left() + panel().width() * across, panel().top() + panel().height() * 0.35)
                  .toPoint());
}

void VirtualKeyboardTest::typesIntoTheSearchField()
{
    click("QXFloatingButton");
    click("QXSearchField");
    QVERIFY(waitForRoom("QXRequestList"));
    clickLetters();
    QGuiApplication::inputMethod()->commit();
    QTRY_COMPARE(text("QXSearchField").size(), 2);
    QVERIFY(find("QXSearchField")->hasActiveFocus());

    // Taps in the field keep the keyboard, and a tap beside it hides it.
    click("QXSearchClearButton");
    click("QXSearchField");
    QVERIFY(isOpen());
    click(QPoint(195, 22));
    QTRY_VERIFY(!isOpen());
    QTRY_COMPARE(frame("QXRequestList").bottom(), m_window->height());
    QVERIFY(find("QXSearchField")->hasActiveFocus());

    click("QXSearchField");
    QVERIFY(waitForRoom("QXRequestList"));
    drag(*m_window, {195, 500}, {0, -200});
    QTRY_VERIFY(!isOpen());
    QTRY_VERIFY(find("QXRequestList")->property("contentY").toReal() > 0);
    QVERIFY(!find("QXRequestDetailsView"));
}

void VirtualKeyboardTest::typesIntoTheHeldBody()
{
    QVERIFY(hold("", [](auto...) {}));
    QTRY_VERIFY(isOpen()); // for the status code
    QVERIFY(waitForRoom("QXBreakpointEditorForm"));
    click("QXTextEditor");
    QVERIFY(waitForRoom("QXBreakpointEditorForm"));
    clickLetters();
    QGuiApplication::inputMethod()->commit();
    QTRY_COMPARE(text("QXTextEditor").size(), 2);
    click("QXBreakpointTitle");
    QTRY_VERIFY(!isOpen());
    QTRY_COMPARE(frame("QXBreakpointEditorForm").bottom(), m_window->height());
    click("QXContinueButton");
    QTRY_VERIFY(!find("QXBreakpointEditorView"));
}

void VirtualKeyboardTest::detailsEndAboveIt()
{
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestList"));
    find("QXRequestList")->forceActiveFocus();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    QVERIFY(waitFor("QXRequestDetailsView"));
    // The host's own field can have the keyboard beneath the screens.
    find("hostField")->forceActiveFocus();
    QGuiApplication::inputMethod()->show();
    QVERIFY(waitForRoom("QXRequestDetailsPage"));
    QVERIFY(!QuorvixClient::shared().overlayWindow()->hitTest(panel().center()));
}

void VirtualKeyboardTest::sheetShowsItsField()
{
    m_window->resize(390, 520);
    click("QXFloatingButton");
    click("QXExportButton");
    click("QXActivitySaveAs");
    find("QXActivityPath")->forceActiveFocus();
    QGuiApplication::inputMethod()->show();
    QVERIFY(waitForRoom("QXActivitySheet"));
    QTRY_VERIFY(frame("QXActivityPath").bottom() <= panel().top());
    click("QXActivityPath");
    QVERIFY(isOpen());
    // The sheet is light, and the keyboard is dark up to its edge.
    const QImage picture = m_window->grabWindow();
    const QPointF edge = (panel().topLeft() + QPointF(3, 5)) * picture.devicePixelRatio();
    QVERIFY(picture.pixelColor(edge.toPoint()).lightness() < 100);
    // The press takes the focus from the field, but the button stays where it is pressed.
    m_window->resize(390, 844);
    QVERIFY(waitForRoom("QXActivitySheet") && waitFor("QXActivityDone"));
    const QPoint done = middle(*find("QXActivityDone"));
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, done);
    QTRY_VERIFY(!isOpen());
    QVERIFY(waitFor("QXActivityDone"));
    QTest::mouseMove(m_window.get(), done + QPoint(1, 1));
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, done + QPoint(1, 1));
    QTRY_VERIFY(!find("QXActivitySheet"));
}

void VirtualKeyboardTest::buttonStaysVisible()
{
    QXOverlay &overlay = *QuorvixClient::shared().overlayWindow();
    const QPointF before = overlay.buttonCenter();
    click(QPoint(20, 20));
    QTRY_VERIFY(isOpen() && frame("QXFloatingButton").bottom() <= panel().top());
    QVERIFY(waitFor("panel"));
    QVERIFY(frame("QXFloatingButton").top() >= 0 && frame("QXFloatingButton").bottom() <= panel().top());
    clickLetters();
    QGuiApplication::inputMethod()->commit();
    QTRY_COMPARE(text("hostField").size(), 2);
    QGuiApplication::inputMethod()->hide();
    QTRY_COMPARE(overlay.buttonCenter(), before);
    QVERIFY(!QSettings().contains(QXOverlay::dragPositionKey));

    drag(*m_window, before.toPoint(), {100, -500});
    const QPointF high = overlay.buttonCenter();
    click(QPoint(20, 20));
    QTRY_VERIFY(isOpen() && overlay.safeArea()->keyboard() > 0);
    QCOMPARE(overlay.buttonCenter(), high);
}

QTEST_MAIN(VirtualKeyboardTest)
#include "VirtualKeyboardTest.moc"
