#include "Tests/EveryScreen.h"

#include <QtCore/QMetaEnum>
#include <QtCore/QRegularExpression>

using namespace Quorvix;
using namespace Qt::StringLiterals;

/// What assistive technologies learn of every screen.
class AccessibilityTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void screensAreTold_data();
    void screensAreTold();
    void rowsTellTheFocus_data();
    void rowsTellTheFocus();
    void actionsWork();

private:
    [[nodiscard]] QStringList told(const QQuickItem &screen, QAccessibleInterface *place = nullptr);
    [[nodiscard]] QStringList toldOutside(const QQuickItem &screen);
};

void AccessibilityTest::init()
{
    ScreenTest::init();
    QAccessible::setActive(false);
    m_heldPath = u"/held"_s;
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(QUrl(u"https://shop.test/rule"_s), {}));
    record(Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s));
    openList();
}

/// The role and the name of each element in a screen that is shown, in order, from a place on.
QStringList AccessibilityTest::told(const QQuickItem &screen, QAccessibleInterface *place)
{
    QStringList lines;
    if (!place)
        place = QAccessible::queryAccessibleInterface(m_window.get());
    const auto *const item = qobject_cast<QQuickItem *>(place->object());
    if (const QAccessible::State state = place->state(); screen.isAncestorOf(item) && !state.invisible) {
        QString line =
            QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(place->role()));
        line += u' ' + place->text(QAccessible::Name).section(u'\n', 0, 0).left(40);
        if (state.checkable)
            line += state.checked ? u" (on)"_s : u" (off)"_s;
        lines << line;
    }
    for (int child = 0; child < place->childCount(); ++child) {
        if (QAccessibleInterface *const inner = place->child(child))
            lines << told(screen, inner);
    }
    return lines;
}

/// What the window tells besides a screen.
QStringList AccessibilityTest::toldOutside(const QQuickItem &screen)
{
    QStringList all = told(*m_window->contentItem());
    for (const QString &line : told(screen))
        all.removeOne(line);
    return all;
}

void AccessibilityTest::screensAreTold_data()
{
    everyScreen();
}

void AccessibilityTest::screensAreTold()
{
    /// After the screen itself. An asterisk stands for what differs each time.
    static const QHash<QByteArray, QString> expected{
        {"list",
         u"LayeredPane |Heading Network Requests|Button Close|Button Breakpoints|Button Clear requests|"
         "Button Export requests|EditableText Search requests...|List Network Requests|"
         "ListItem GET /v1/users/42, 200"_s},
        {"breakpoints", u"List Breakpoints|ListItem GET shop.test/rule"_s},
        {"details",
         u"Heading Request Details|Button Back|Button Share Request|Pane Request Details|"
         "Heading REQUEST|StaticText URL, https://shop.test/v1/users/42|StaticText Method, GET|"
         "StaticText Time, *|StaticText Duration, *|Heading BREAKPOINT|"
         "CheckBox Enable response breakpoint (off)|Heading REQUEST HEADERS|"
         "StaticText Authorization, *|Heading RESPONSE|StaticText Status Code, 200|StaticText Time, *|"
         "Button RESPONSE CACHE|Heading RESPONSE BODY|Button Show as tree|StaticText {"_s},
        {"share menu",
         u"Heading Share Request|Button Share cURL|Button Share HAR File|Button Share Mock Server File|"
         "Button Share Swift Model|Button Share Raw Details|Button Cancel"_s},
        {"share sheet",
         u"Button Done|Heading cURL command, *|StaticText curl *|Button Copy|Button Save As"_s},
        {"tree", u"Button Back|Heading /v1/users/42|Button Share Swift Model|Tree /v1/users/42|"
                 "TreeItem {1 key}, Object"_s},
        {"list's alert", u"Button OK"_s},
        {"menu", u"MenuItem Copy|MenuItem Decode Base64"_s},
        {"alert", u"Button OK"_s},
        {"payload", u"Heading Decoded Base64|Button OK|Heading JSON|StaticText ["_s},
        {"held response", u"Button Continue|Heading Breakpoint|Button Apply Changes|StaticText GET host/held|"
                          "StaticText Edit response and continue.|EditableText Status Code|Button Copy|"
                          "Button Delete|EditableText RESPONSE BODY"_s}};
    QFETCH(const QByteArray, opened);
    open();
    // Also for what was made before an assistive technology came.
    QAccessible::setActive(true);
    const QString escaped = QRegularExpression::escape(expected.value(QTest::currentDataTag()));
    const QRegularExpression pattern(
        QRegularExpression::anchoredPattern(QString(escaped).replace(u"\\*"_s, u"[^|]*"_s)));
    QString lines;
    const bool isTold = QTest::qWaitFor([&] {
        lines = told(*find(opened)).join(u'|');
        return pattern.match(lines).hasMatch();
    });
    QVERIFY2(isTold, qPrintable(lines));
    // What is covered is not told: neither the button, which floats over pages only, nor the pages.
    const QStringList outside = toldOutside(*find(opened));
    const bool isPage = QByteArrayList{"list", "details", "tree"}.contains(QTest::currentDataTag());
    QCOMPARE(outside.contains(u"Button Network Trace"_s), isPage);
    QVERIFY(!outside.contains(u"Heading Network Requests"_s) &&
            !outside.contains(u"Heading Request Details"_s));
}

void AccessibilityTest::rowsTellTheFocus_data()
{
    QTest::addColumn<bool>("isTree");
    QTest::newRow("list") << false;
    QTest::newRow("tree") << true;
}

/// A list has the keyboard focus for its rows, so a screen reader has to learn of the current one.
void AccessibilityTest::rowsTellTheFocus()
{
    QFETCH(const bool, isTree);
    QAccessible::setActive(true);
    if (isTree) {
        openDetails();
        find("QXLogTreeButton")->forceActiveFocus();
        press(Qt::Key_Return);
        QVERIFY(waitFor("QXLogTreeRow"));
    }
    press(Qt::Key_Down);
    QAccessibleInterface *const row =
        QAccessible::queryAccessibleInterface(find(isTree ? "QXLogTreeNode" : "QXRequestRow"));
    QVERIFY(row && row->state().focused && row->state().selected);
}

void AccessibilityTest::actionsWork()
{
    QAccessible::setActive(true);
    const auto act = [this](const char *name,
                            const QString &action = QAccessibleActionInterface::pressAction()) {
        QAccessible::queryAccessibleInterface(find(name))->actionInterface()->doAction(action);
    };
    act("QXRequestRow");
    QVERIFY(waitFor("QXRequestDetailsView"));
    act("QXBreakpointSwitch");
    QTRY_COMPARE(QXBreakpointStore::shared().rules().size(), 2);
    act("QXBreakpointSwitch", QAccessibleActionInterface::toggleAction());
    QTRY_COMPARE(QXBreakpointStore::shared().rules().size(), 1);
    act("QXLogTreeButton");
    QVERIFY(waitFor("QXLogTreeRow"));
    act("QXLogTreeNode");
    QTRY_COMPARE(findAll("QXLogTreeRow").size(), 2);
    QCOMPARE(spoken(findAll("QXLogTreeNode").constFirst(), QAccessible::Description), u"Expanded"_s);
    act("QXShareModelButton");
    QVERIFY(waitFor("QXActivitySheet"));
}

QTEST_MAIN(AccessibilityTest)
#include "AccessibilityTest.moc"
