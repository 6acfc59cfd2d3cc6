#include "Tests/EveryScreen.h"

#include "Controls/QXKeyFilter.h"

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
const QStringList screenKeys =
    u"A, Shift+A, 7, /, Delete, Backspace, Up, Down, Left, Right, PgUp, PgDown, Home, End, Ctrl+C, Ctrl+X, "
    "Ctrl+V, Ctrl+Z, Ctrl+A, Ctrl+F, F3, Ctrl+G, Ctrl+Shift+Z, Ctrl+S, Ctrl+W, Ctrl+Left, Shift+Up, "
    "Ctrl+Home, Ctrl+Backspace, Alt+Left, Alt+F, Ctrl+Delete, Ctrl+K, Ctrl+Tab, F5, Tab, Shift+Tab, "
    "Shift+F10, Menu, Ctrl+Return, Return, Enter, Space, Back, Esc"_s.split(u", "_s);

const QStringList hostKeys({u"Ctrl+Q"_s, u"F11"_s, u"Ctrl+Shift+I"_s, u"Ctrl+Meta+D"_s, u"Volume Up"_s});

} // namespace

/// Which keys reach the host while the inspector has the keyboard.
class KeyboardTest : public EveryScreen
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

private:
    void addShortcuts(const QStringList &keys);
    void send(QEvent::Type type, Qt::Key key, bool isRepeated = false)
    {
        QKeyEvent event(type, key, {}, {}, isRepeated);
        QCoreApplication::sendEvent(m_window.get(), &event);
    }
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

    m_heldPath = u"/held"_s;
    record(Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s));
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
    everyScreen();
    const Open nothing = [] {
    };
    const Open details = [this] {
        openDetails();
    };
    const Open path = through(through(through(details, "QXShareButton"), "QXShareCurl"), "QXActivitySaveAs");
    const Open held = [this] {
        QVERIFY(hold("one two", [](auto...) {}));
        QVERIFY(waitFor("QXTextEditor"));
    };
    const Open editMenu = [=, this] {
        held();
        click(find("QXTextEditor")->mapToScene({10, 20}).toPoint(), Qt::RightButton);
    };
    row("search field", nothing, "QXRequestListView", "QXSearchField");
    row("button in the bar", nothing, "QXRequestListView", "QXBreakpointsButton");
    row("floating button", nothing, "QXRequestListView", "QXFloatingButton");
    row("row of the details", details, "QXRequestDetailsView", "QXValueRow");
    row("path to save to", path, "QXActivitySheet", "QXActivityPath");
    row("held body", held, "QXBreakpointEditorView", "QXTextEditor");
    row("menu of the body", editMenu, "QXContextMenu");
}

void KeyboardTest::screenKeepsItsKeys()
{
    QFETCH(const QByteArray, opened);
    QFETCH(const QByteArray, focused);
    addShortcuts(screenKeys + hostKeys);
    openList();
    open();
    const auto takeFocus = [&] {
        QQuickItem *const item = focused.isEmpty() ? nullptr : find(focused);
        if (item)
            item->forceActiveFocus();
        // The row is about this screen as long as it is there.
        return find(opened) && (item || focused.isEmpty());
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

QTEST_MAIN(KeyboardTest)
#include "KeyboardTest.moc"
