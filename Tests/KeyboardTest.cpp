#include "Tests/Exchanges.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXOverlay.h"

#include "Controls/QXKeyFilter.h"

#include <QtGui/QRasterWindow>
#include <QtGui/QShortcut>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using namespace ScreenDriver;

namespace {

/// A window whose subclass handles keys itself, as that of a game does.
class HostWindow final : public QQuickWindow
{
public:
    int presses = 0;
    int releases = 0;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        ++presses;
        QQuickWindow::keyPressEvent(event);
    }
    void keyReleaseEvent(QKeyEvent *event) override
    {
        ++releases;
        QQuickWindow::keyReleaseEvent(event);
    }
};

constexpr char contentQml[] = R"(
import QtQuick

Item {
    id: root

    property int heard: 0
    property int activated: 0

    function hear(item: Item) {
        item.Keys.pressed.connect(event => { root.heard++; event.accepted = true });
    }
    function addShortcut(keys: string) {
        shortcut.createObject(root, { sequence: keys });
    }

    Component {
        id: shortcut

        Shortcut { onActivated: root.activated++ }
    }
}
)";

/// Keys that an inspector's screen uses or may be meant for. A screen may close for the last ones.
const QStringList screenKeys = QStringList({u"A"_s,
                                            u"Shift+A"_s,
                                            u"7"_s,
                                            u"/"_s,
                                            u"Delete"_s,
                                            u"Backspace"_s,
                                            u"Up"_s,
                                            u"Down"_s,
                                            u"Left"_s,
                                            u"Right"_s,
                                            u"PgUp"_s,
                                            u"PgDown"_s,
                                            u"Home"_s,
                                            u"End"_s,
                                            u"Ctrl+C"_s,
                                            u"Ctrl+X"_s,
                                            u"Ctrl+V"_s,
                                            u"Ctrl+Z"_s,
                                            u"Ctrl+A"_s,
                                            u"Ctrl+F"_s,
                                            u"F3"_s,
                                            u"Ctrl+G"_s,
                                            u"Ctrl+Shift+Z"_s,
                                            u"Ctrl+S"_s,
                                            u"Ctrl+W"_s,
                                            u"Ctrl+Left"_s,
                                            u"Shift+Up"_s,
                                            u"Ctrl+Home"_s,
                                            u"Ctrl+Backspace"_s,
                                            u"Alt+Left"_s,
                                            u"Alt+F"_s,
                                            u"Ctrl+Delete"_s,
                                            u"Ctrl+K"_s,
                                            u"Ctrl+Tab"_s,
                                            u"F5"_s,
                                            u"Tab"_s,
                                            u"Shift+Tab"_s,
                                            u"Shift+F10"_s,
                                            u"Menu"_s,
                                            u"Ctrl+Return"_s,
                                            u"Return"_s,
                                            u"Enter"_s,
                                            u"Space"_s,
                                            u"Back"_s,
                                            u"Esc"_s});

const QStringList hostKeys({u"Ctrl+Q"_s, u"F11"_s, u"Ctrl+Shift+I"_s, u"Ctrl+Meta+D"_s, u"Volume Up"_s});

using Open = std::function<void()>;

} // namespace

/// Which keys reach the host while the inspector has the keyboard.
class KeyboardTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void hostKeepsItsKeys_data();
    void hostKeepsItsKeys();
    void screenKeepsItsKeys_data();
    void screenKeepsItsKeys();
    void keyStaysWithItsScreen();
    void keyStaysWithTheHost();
    void typesDespiteShortcuts();
    void ownWindowGivesTheKeyboardBack();

private:
    void addShortcuts(const QStringList &keys);
    void press(const QString &key)
    {
        const QKeyCombination combination = QKeySequence::fromString(key)[0];
        QTest::keyClick(m_window.get(), combination.key(), combination.keyboardModifiers());
    }
    void send(QEvent::Type type, Qt::Key key, bool isRepeated = false)
    {
        QKeyEvent event(type, key, {}, {}, isRepeated);
        QCoreApplication::sendEvent(m_window.get(), &event);
    }
    void openList();
    [[nodiscard]] HostWindow &host() { return static_cast<HostWindow &>(*m_window); }
    [[nodiscard]] int count(const char *name) const { return m_content->property(name).toInt(); }
    /// The keys that any part of the host has got.
    [[nodiscard]] int heard()
    {
        return count("heard") + count("activated") + m_nativeShortcuts + host().presses + host().releases;
    }

    std::unique_ptr<QQmlEngine> m_engine;
    QQuickItem *m_content = nullptr;
    int m_nativeShortcuts = 0;
};

void KeyboardTest::init()
{
    startAnew();
    m_window = std::make_unique<HostWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QVERIFY(waitForActive(*m_window));

    m_engine = std::make_unique<QQmlEngine>();
    QQmlComponent component(m_engine.get());
    component.setData(contentQml, {});
    m_content = qobject_cast<QQuickItem *>(component.create());
    QVERIFY2(m_content, qPrintable(component.errorString()));
    m_content->setParent(m_window->contentItem());
    m_content->setParentItem(m_window->contentItem());
    QMetaObject::invokeMethod(m_content, "hear", Q_ARG(QQuickItem *, m_window->contentItem()));
    m_content->setFocus(true);
    m_nativeShortcuts = 0;

    URLRequest request = Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s);
    request.allHTTPHeaderFields = {
        {u"Authorization"_s, QString::fromLatin1(("[1" + QByteArray(",2").repeated(60) + "]").toBase64())}};
    QXRequestRecorder::shared().record(u"id"_s, request);
    Exchanges::complete(u"id"_s, 200, "{\"a\":1}");
    QuorvixClient::shared().show();
}

/// Gives the host a shortcut for each key: in turn one of Qt Quick, and one of the window.
void KeyboardTest::addShortcuts(const QStringList &keys)
{
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (i % 2 == 0) {
            QMetaObject::invokeMethod(m_content, "addShortcut", Q_ARG(QString, keys[i]));
        } else {
            auto *const shortcut = new QShortcut(QKeySequence(keys[i]), m_window.get());
            connect(shortcut, &QShortcut::activated, this, [this] { ++m_nativeShortcuts; });
        }
    }
}

void KeyboardTest::openList()
{
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestRow"));
}

void KeyboardTest::hostKeepsItsKeys_data()
{
    QTest::addColumn<bool>("onButton");
    QTest::addColumn<bool>("wasOpen");
    QTest::newRow("button beside the host's content") << false << false;
    QTest::newRow("button with focus") << true << false;
    QTest::newRow("list that was closed") << false << true;
}

void KeyboardTest::hostKeepsItsKeys()
{
    QFETCH(const bool, onButton);
    QFETCH(const bool, wasOpen);
    const QStringList keys = screenKeys + hostKeys;
    addShortcuts(keys);
    if (wasOpen) {
        openList();
        click("QXCloseButton");
        QTRY_VERIFY(!find("QXRequestListView"));
    }
    if (onButton)
        find("QXFloatingButton")->forceActiveFocus();
    for (int i = 0; i < keys.size(); ++i) {
        press(keys[i]);
        QVERIFY2(count("activated") + m_nativeShortcuts == i + 1, qPrintable(keys[i]));
    }
    QVERIFY(count("activated") > 20 && m_nativeShortcuts > 20);
    const int before = count("heard");
    press(u"Q"_s);
    QVERIFY(count("heard") == before + 1 && host().presses > 0 && host().releases > 0);
}

void KeyboardTest::screenKeepsItsKeys_data()
{
    QTest::addColumn<Open>("open");
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("focused");
    const auto through = [this](const Open &before, const char *item) {
        return Open([=, this] {
            before();
            click(item);
        });
    };
    const auto rightClick = [this](const QQuickItem &item, QPointF at) {
        click(item.mapToScene(at).toPoint(), Qt::RightButton);
    };
    const Open list = [this] {
        openList();
    };
    const Open details = through(list, "QXRequestRow");
    const Open tree = [=, this] {
        details();
        QVERIFY(waitFor("QXLogTreeButton"));
        find("QXLogTreeButton")->forceActiveFocus();
        press(u"Return"_s);
    };
    const Open menu = [=, this] {
        details();
        QVERIFY(waitFor("QXRequestDetailsView"));
        rightClick(*find("QXValueRow", "label", u"Authorization"_s), {30, 20});
    };
    const Open dialog = through(details, "QXShareButton");
    const Open sheet = through(dialog, "QXShareCurl");
    const Open emptyList = [=, this] {
        list();
        QXRequestRecorder::shared().clear();
        click("QXExportButton");
    };
    const Open held = [] {
        QVERIFY(hold("one two", [](auto...) {}));
    };
    const Open editMenu = [=, this] {
        held();
        QVERIFY(waitFor("QXTextEditor"));
        rightClick(*find("QXTextEditor"), {10, 20});
    };
    QTest::newRow("list") << list << u"QXRequestListView"_s << u"QXRequestList"_s;
    QTest::newRow("search field") << list << u"QXRequestListView"_s << u"QXSearchField"_s;
    QTest::newRow("button in the bar") << list << u"QXRequestListView"_s << u"QXBreakpointsButton"_s;
    QTest::newRow("floating button") << list << u"QXRequestListView"_s << u"QXFloatingButton"_s;
    QTest::newRow("breakpoints") << through(list, "QXBreakpointsButton") << u"QXBreakpointsListView"_s
                                 << QString();
    QTest::newRow("alert") << emptyList << u"QXAlert"_s << QString();
    QTest::newRow("details") << details << u"QXRequestDetailsView"_s << QString();
    QTest::newRow("row of the details") << details << u"QXRequestDetailsView"_s << u"QXValueRow"_s;
    QTest::newRow("tree") << tree << u"QXLogTreeView"_s << QString();
    QTest::newRow("menu") << menu << u"QXContextMenu"_s << QString();
    QTest::newRow("payload") << through(menu, "QXDecodeValueItem") << u"QXDecodedPayloadSheet"_s << QString();
    QTest::newRow("dialog") << dialog << u"QXConfirmationDialog"_s << QString();
    QTest::newRow("share sheet") << sheet << u"QXActivitySheet"_s << QString();
    QTest::newRow("path to save to") << through(sheet, "QXActivitySaveAs") << u"QXActivitySheet"_s
                                     << u"QXActivityPath"_s;
    QTest::newRow("status code") << held << u"QXBreakpointEditorView"_s << QString();
    QTest::newRow("held body") << held << u"QXBreakpointEditorView"_s << u"QXTextEditor"_s;
    QTest::newRow("menu of the body") << editMenu << u"QXContextMenu"_s << QString();
}

void KeyboardTest::screenKeepsItsKeys()
{
    QFETCH(const Open, open);
    QFETCH(const QString, opened);
    QFETCH(const QString, focused);
    addShortcuts(screenKeys + hostKeys);
    open();
    QTRY_VERIFY(find(opened.toLatin1()));
    QVERIFY(waitFor(opened.toLatin1()));
    const auto takeFocus = [&] {
        QQuickItem *const item = focused.isEmpty() ? nullptr : find(focused.toLatin1());
        if (item)
            item->forceActiveFocus();
        // The row is about this screen as long as it is there.
        return find(opened.toLatin1()) && (item || focused.isEmpty());
    };
    for (const QString &key : hostKeys) {
        QVERIFY(takeFocus());
        const int before = count("activated") + m_nativeShortcuts;
        press(key);
        QVERIFY2(count("activated") + m_nativeShortcuts == before + 1, qPrintable(key));
    }
    const int before = heard();
    int pressed = 0;
    for (const QString &key : screenKeys) {
        if (!takeFocus())
            break;
        press(key);
        ++pressed;
        QVERIFY2(heard() == before, qPrintable(key));
    }
    QVERIFY(pressed > screenKeys.indexOf(u"Menu"_s));
}

void KeyboardTest::keyStaysWithItsScreen()
{
    QVERIFY(hold("body", [](auto...) {}));
    QVERIFY(waitFor("QXContinueButton"));
    find("QXContinueButton")->forceActiveFocus();
    send(QEvent::KeyPress, Qt::Key_Return);
    QTRY_VERIFY(!find("QXBreakpointEditorView"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(m_content->hasActiveFocus());
    send(QEvent::KeyRelease, Qt::Key_Return, true);
    send(QEvent::KeyPress, Qt::Key_Return, true);
    send(QEvent::KeyRelease, Qt::Key_Return);
    QCOMPARE(heard(), 0);
    send(QEvent::KeyPress, Qt::Key_Return);
    QCOMPARE(host().presses, 1);

    // Nothing watches the host's keys after the inspector has gone.
    openList();
    QVERIFY(m_window->findChild<QXKeyFilter *>());
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_VERIFY(!m_window->findChild<QXKeyFilter *>());
}

void KeyboardTest::keyStaysWithTheHost()
{
    send(QEvent::KeyPress, Qt::Key_W);
    openList();
    send(QEvent::KeyRelease, Qt::Key_W);
    QVERIFY(host().presses == 1 && host().releases == 1);
}

void KeyboardTest::typesDespiteShortcuts()
{
    addShortcuts(screenKeys);
    openList();
    for (const QString &key : {u"Ctrl+F"_s, u"A"_s, u"Space"_s, u"7"_s, u"Left"_s, u"Backspace"_s})
        press(key);
    QCOMPARE(text("QXSearchField"), u"a7"_s);
    for (const QString &key : {u"Ctrl+A"_s, u"Ctrl+X"_s, u"Ctrl+V"_s, u"Ctrl+V"_s, u"Ctrl+Z"_s})
        press(key);
    QCOMPARE(text("QXSearchField"), u"a7"_s);
    QCOMPARE(heard(), 0);
}

void KeyboardTest::ownWindowGivesTheKeyboardBack()
{
    if (QGuiApplication::platformName().startsWith(u"wayland"_s))
        QSKIP("A program cannot choose its active window here.");
    QuorvixClient::shared().hide();
    m_window.reset();
    QRasterWindow plain; // not a Qt Quick window
    plain.resize(390, 844);
    plain.show();
    QVERIFY(waitForActive(plain));
    QuorvixClient::shared().show();
    QTRY_VERIFY(QuorvixClient::shared().overlayWindow()->window());
    QQuickWindow &own = *QuorvixClient::shared().overlayWindow()->window();
    for (int i = 0; i < 2; ++i) {
        QVERIFY(own.flags() & Qt::WindowDoesNotAcceptFocus);
        plain.requestActivate();
        QVERIFY(waitForActive(plain));
        ScreenDriver::click(own, "QXFloatingButton");
        QTRY_COMPARE(QGuiApplication::focusWindow(), &own);
        QVERIFY(waitForRest(own, "QXRequestRow"));
        QTest::keyClick(&own, Qt::Key_Escape);
        QTRY_COMPARE(QGuiApplication::focusWindow(), &plain);
    }
}

QTEST_MAIN(KeyboardTest)
#include "KeyboardTest.moc"
