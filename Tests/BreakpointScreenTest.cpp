#include "Tests/ScreenTest.h"

using namespace Quorvix;
using namespace Qt::StringLiterals;
using ScreenDriver::middle;

namespace {

QXBreakpointStore &store()
{
    return QXBreakpointStore::shared();
}

QXBreakpointKey rule(const QString &path)
{
    return *QXBreakpointKey::make(QUrl(u"http://host/"_s + path), {});
}

} // namespace

class BreakpointScreenTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void releasesWhatIsShown();
    void showsAndCopiesTheHeldResponse();
    void worksByKeyboardAlone();
    void rulesAreDeleted_data();
    void rulesAreDeleted();
    void listFollowsTheStore();

private:
    void hold(const QByteArray &body);
    QByteArray release(const QByteArray &held, const char *status, bool deletesBody, const char *body,
                       const char *button = "QXApplyButton");
    void openRules();
    void tabTo(const char *name);
    void selectAll() { QTest::keySequence(m_window.get(), QKeySequence::SelectAll); }

    QByteArrayList m_delivered;
};

void BreakpointScreenTest::hold(const QByteArray &body)
{
    m_delivered.clear();
    QVERIFY(ScreenTest::hold(body, [this](const auto &data, const auto &response, const auto &) {
        const auto &http = dynamic_cast<const NSHTTPURLResponse &>(*response);
        m_delivered.append(QByteArray::number(http.statusCode()) + ' ' + *data);
    }));
    QTRY_VERIFY(find("QXBreakpointEditorView"));
}

void BreakpointScreenTest::tabTo(const char *name)
{
    for (int i = 0; i < 10 && !find(name)->hasActiveFocus(); ++i)
        press(Qt::Key_Tab);
    QVERIFY2(find(name)->hasActiveFocus(), name);
}

QByteArray BreakpointScreenTest::release(const QByteArray &held, const char *status, bool deletesBody,
                                         const char *body, const char *button)
{
    hold(held);
    if (*status) {
        click("QXStatusCodeField");
        selectAll();
        type(status);
    }
    if (deletesBody)
        click("QXDeleteBodyButton");
    if (*body) {
        click("QXTextEditor");
        QTest::keySequence(m_window.get(), QKeySequence::MoveToEndOfDocument);
        type(body);
    }
    click(button);
    const bool isGone = QTest::qWaitFor([this] { return !find("QXBreakpointEditorView"); });
    return isGone && m_delivered.size() == 1 ? m_delivered[0] : QByteArray("none");
}

void BreakpointScreenTest::releasesWhatIsShown()
{
    QCOMPARE(release("old", "404", true, "{\"new\":1}"), "404 {\"new\":1}");
    QCOMPARE(release("old", "", false, " and new"), "200 old and new");
    QCOMPARE(release("old", "abc", false, ""), "200 old");
    QCOMPARE(release("old", "404", true, "new", "QXContinueButton"), "200 old");
    QCOMPARE(release("a\r\nb\rc\n", "", false, ""), "200 a\r\nb\rc\n");
    QCOMPARE(release("\x00\xff|"_ba, "", false, ""), "200 \0\xEF\xBF\xBD|"_ba); // as shown
    QCOMPARE(release("\xff\xfe", "", false, "", "QXContinueButton"), "200 \xff\xfe");
}

void BreakpointScreenTest::showsAndCopiesTheHeldResponse()
{
    hold("the body");
    QCOMPARE(text("QXBreakpointTitle"), u"GET host/held"_s);
    QCOMPARE(text("QXStatusCodeField"), u"200"_s);
    QCOMPARE(text("QXTextEditor"), u"the body"_s);
    for (const char *name : {"QXContinueButton", "QXApplyButton", "QXStatusCodeField", "QXCopyBodyButton",
                             "QXDeleteBodyButton", "QXTextEditor"})
        QVERIFY2(isUsable(name), name);
    click("QXCopyBodyButton");
    QCOMPARE(clipboard(), u"the body"_s);
    QVERIFY(m_delivered.isEmpty());
}

void BreakpointScreenTest::worksByKeyboardAlone()
{
    hold("old");
    QTRY_VERIFY(find("QXStatusCodeField")->hasActiveFocus());
    selectAll();
    type("201");
    tabTo("QXTextEditor");
    selectAll();
    type("new");
    tabTo("QXApplyButton");
    press(Qt::Key_Return);
    QCOMPARE(m_delivered, QByteArrayList{"201 new"});
}

void BreakpointScreenTest::openRules()
{
    click("QXFloatingButton");
    click("QXBreakpointsButton");
    QVERIFY(waitFor("QXBreakpointsListView"));
}

void BreakpointScreenTest::rulesAreDeleted_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"swipe by mouse", "swipe by touch", "swipe across", "edit mode", "key"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void BreakpointScreenTest::rulesAreDeleted()
{
    QFETCH(const QString, way);
    store().insert(rule(u"a"_s));
    openRules();
    QVERIFY(find("QXBreakpointRow"));
    const QPoint at = middle(*find("QXBreakpointRow"));
    if (way == "edit mode"_L1) {
        click("QXBreakpointsEditButton");
        click("QXBreakpointMinusButton");
    } else if (way == "key"_L1) {
        find("QXBreakpointsListView")->forceActiveFocus();
        press(Qt::Key_Down);
        press(Qt::Key_Delete);
    } else if (way == "swipe across"_L1) {
        ScreenDriver::drag(*m_window, at + QPoint(140, 0), QPoint(-300, 0));
    } else {
        if (way == "swipe by touch"_L1) {
            touch(at);
            for (int step = 1; step <= 8; ++step)
                moveFinger(at - QPoint(20 * step, 0));
            lift(at - QPoint(160, 0));
        } else {
            ScreenDriver::drag(*m_window, at, QPoint(-160, 0));
        }
        QCOMPARE(store().rules().size(), 1); // the swipe only shows the button
        click("QXBreakpointDeleteButton");
    }
    QTRY_VERIFY(store().rules().isEmpty());
    QTRY_VERIFY(!find("QXBreakpointRow"));
    QVERIFY(find("QXNoBreakpoints"));
}

void BreakpointScreenTest::listFollowsTheStore()
{
    openRules();
    QVERIFY(find("QXNoBreakpoints"));
    store().setRules({rule(u"b"_s), rule(u"a"_s)});
    QTRY_COMPARE(findAll("QXBreakpointRow").size(), 2);
    store().remove(rule(u"b"_s));
    QTRY_COMPARE(findAll("QXBreakpointRow").size(), 1);
    QCOMPARE(text("QXBreakpointRow", "displayText"), u"GET host/a"_s);
}

QTEST_MAIN(BreakpointScreenTest)
#include "BreakpointScreenTest.moc"
