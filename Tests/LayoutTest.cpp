#include "Tests/Contrast.h"
#include "Tests/EveryScreen.h"

#include <QtGui/QPalette>

using namespace Qt::StringLiterals;
using Exchanges::complete;
using ScreenDriver::turnWheel;

/// What the screens do with the room that windows of unusual sizes have.
class LayoutTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;
    void rowsEndAtTheColumn_data();
    void rowsEndAtTheColumn();
    void shareMenuShowsEveryChoice_data() { sizes(); }
    void shareMenuShowsEveryChoice();
    void breakpointsAreAsHighAsTheirRows_data() { sizes(); }
    void breakpointsAreAsHighAsTheirRows();
    void editorShowsItsTitle_data() { sizes(); }
    void editorShowsItsTitle();
    void hintsAtMoreToScrollTo();
    void keysBreakBetweenWords();
    void menuShowsItsRow_data();
    void menuShowsItsRow();
    void payloadIsFaintlyTinted_data();
    void payloadIsFaintlyTinted();

private:
    static void sizes();
    static void setTextScale(double scale)
    {
        QFont font = QGuiApplication::font();
        font.setPixelSize(qRound(13.3 * scale));
        QGuiApplication::setFont(font);
    }
    [[nodiscard]] QColor pixel(QPointF at)
    {
        return m_window->grabWindow().pixelColor((at * m_window->effectiveDevicePixelRatio()).toPoint());
    }

    const QFont m_usualFont = QGuiApplication::font();
};

void LayoutTest::cleanup()
{
    EveryScreen::cleanup();
    QGuiApplication::setPalette(QPalette());
    QGuiApplication::setFont(m_usualFont);
}

void LayoutTest::sizes()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("small phone") << QSize(320, 568);
    QTest::newRow("turned phone") << QSize(844, 390);
    QTest::newRow("tablet") << QSize(1024, 768);
}

void LayoutTest::rowsEndAtTheColumn_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("margin");
    QTest::newRow("phone") << QSize(390, 844) << 0;
    QTest::newRow("tablet") << QSize(1024, 768) << 152;
    QTest::newRow("desktop") << QSize(1400, 900) << 340;
}

void LayoutTest::rowsEndAtTheColumn()
{
    QFETCH(const QSize, size);
    QFETCH(const int, margin);
    QVERIFY(resize(size));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    openList();
    const QRectF row = sceneRect(*find("QXRequestRow"));
    const auto isTinted = [&](qreal x, qreal y) {
        return pixel({x, y}) != QColor(Qt::white);
    };
    // The tint, and the line below it.
    for (const qreal y : {row.top() + 4, row.bottom() - 1}) {
        QVERIFY(isTinted(row.right() - margin - 2, y));
        QVERIFY(margin == 0 || !isTinted(row.right() - margin + 2, y));
    }
    QVERIFY(isTinted(margin + 2, row.top() + 4) && (margin == 0 || !isTinted(margin - 2, row.top() + 4)));
}

void LayoutTest::shareMenuShowsEveryChoice()
{
    QFETCH(const QSize, size);
    QVERIFY(resize(size));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    openList();
    openDetails();
    const QRectF button = sceneRect(*find("QXShareButton"));
    click("QXShareButton");
    QVERIFY(waitFor("QXCancelButton"));
    const QRectF window(QPointF(), m_window->size());
    const QRectF cancel = sceneRect(*find("QXCancelButton"));
    QVERIFY(window.contains(cancel) && cancel.height() >= 44);
    const QRectF last = sceneRect(*find("QXShareRawDetails"));
    QVERIFY(window.contains(last) && last.bottom() < cancel.top());
    if (size.width() > 640) {
        QCOMPARE(qRound(cancel.right()), qRound(button.right()));
        QVERIFY(sceneRect(*find("QXShareCurl")).top() > button.bottom());
        dismiss("QXConfirmationDialog", button.center().toPoint());
    }
}

void LayoutTest::breakpointsAreAsHighAsTheirRows()
{
    QFETCH(const QSize, size);
    QVERIFY(resize(size));
    for (const auto &path : {u"/a"_s, u"/b"_s})
        QXBreakpointStore::shared().insert(*QXBreakpointKey::make(QUrl(u"http://host"_s + path), {}));
    click("QXFloatingButton");
    click("QXBreakpointsButton");
    QVERIFY(waitFor("QXBreakpointRow"));
    QQuickItem *const list = find("QXBreakpointsListView");
    const auto rowsHeight = [&] {
        qreal height = 0;
        for (const QQuickItem *const row : findAll("QXBreakpointRow"))
            height += row->height();
        return height;
    };
    QTRY_COMPARE(list->height(), rowsHeight());
    const qreal before = rowsHeight();
    const auto shows = [&](const QString &text) {
        qsizetype shown = 0;
        visitVisible(list, [&](const QQuickItem *item) { shown += item->property("text") == text; });
        return shown;
    };
    QCOMPARE(shows(u"Swipe to delete."_s), 2);
    click("QXBreakpointsEditButton");
    QTRY_COMPARE(shows(u"Swipe to delete."_s), 0); // there is no swipe now
    QTRY_COMPARE(rowsHeight(), before);
    click("QXBreakpointMinusButton");
    QTRY_COMPARE(findAll("QXBreakpointRow").size(), 1);
    QTRY_COMPARE(list->height(), rowsHeight());
}

void LayoutTest::editorShowsItsTitle()
{
    QFETCH(const QSize, size);
    QVERIFY(resize(size));
    QVERIFY(hold("{}", [](auto...) {}));
    QVERIFY(waitFor("QXBreakpointEditorView"));
    QCOMPARE(text("QXSmallTitle"), u"Breakpoint"_s);
    QVERIFY(!find("QXSmallTitle")->property("truncated").toBool());
    QVERIFY(sceneRect(*find("QXContinueButton")).right() <= sceneRect(*find("QXSmallTitle")).left());
    QVERIFY(sceneRect(*find("QXSmallTitle")).right() <= sceneRect(*find("QXApplyButton")).left());
}

void LayoutTest::hintsAtMoreToScrollTo()
{
    QVERIFY(resize({844, 390}));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    openList();
    click("QXExportButton");
    QVERIFY(waitFor("QXActivitySheet"));
    QQuickItem *const sheet = find("QXActivitySheet");
    QTRY_VERIFY(ScreenDriver::find(*sheet, "QXScrollHint"));
    const QPoint center = sceneRect(*sheet).center().toPoint();
    QTRY_VERIFY((turnWheel(*m_window, center, 5), !ScreenDriver::find(*sheet, "QXScrollHint")));
}

void LayoutTest::keysBreakBetweenWords()
{
    setTextScale(2);
    QVERIFY(resize({320, 568}));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    complete(u"id"_s, 200, R"({"description":"A mug, and a long text about it, which does not fit"})");
    openList();
    openDetails();
    find("QXLogTreeButton")->forceActiveFocus();
    press(u"Return"_s);
    click("QXLogTreeRow");
    QTRY_COMPARE(text("QXLogTreeKey"), u"description"_s);
    QVERIFY(waitFor("QXLogTreeRow"));
    click("QXLogTreeRow");
    QVERIFY(waitFor("QXLogTreeWholeValue"));
    QCOMPARE(find("QXLogTreeKey")->property("lineCount").toInt(), 1);
    const QRectF badge = sceneRect(*ScreenDriver::findAll(*m_window, "QXLogTreeBadge").constLast());
    QVERIFY(!badge.intersects(sceneRect(*find("QXLogTreeKey"))));
}

void LayoutTest::menuShowsItsRow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("textScale");
    QTest::newRow("small phone, large text") << QSize(320, 568) << 2.0;
    QTest::newRow("turned phone, large text") << QSize(844, 390) << 2.0;
    QTest::newRow("tablet") << QSize(1024, 768) << 1.0;
}

void LayoutTest::menuShowsItsRow()
{
    QFETCH(const QSize, size);
    QFETCH(const double, textScale);
    setTextScale(textScale);
    QVERIFY(resize(size));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    openList();
    openDetails();
    QQuickItem *const row = find("QXValueRow", "label", u"Authorization"_s);
    row->forceActiveFocus(Qt::TabFocusReason);
    press(u"Menu"_s);
    QVERIFY(waitFor("QXContextMenuCard"));
    const QRectF lifted = sceneRect(*find("QXContextMenuSubject"));
    const QRectF card = sceneRect(*find("QXContextMenuCard"));
    QVERIFY(lifted.height() >= 44 && !lifted.intersects(card));
    QVERIFY(QRectF(QPointF(), m_window->size()).contains(card));
    QVERIFY(lifted.width() <= 720 + 32 && lifted.width() >= qMin(size.width() - 8, 720));
}

void LayoutTest::payloadIsFaintlyTinted_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<QColor>("secondary");
    QTest::newRow("light") << false << QColor(0x3c, 0x3c, 0x43);
    QTest::newRow("dark") << true << QColor(0xeb, 0xeb, 0xf5);
}

void LayoutTest::payloadIsFaintlyTinted()
{
    QFETCH(const bool, isDark);
    QFETCH(QColor, secondary);
    if (isDark)
        QGuiApplication::setPalette(QPalette(QColor(0x2c, 0x2c, 0x2e), QColor(0x1c, 0x1c, 0x1e)));
    record(Exchanges::makeRequest(u"http://host/a"_s));
    openList();
    openMenu();
    click("QXDecodeValueItem");
    QVERIFY(waitFor("QXDecodedSectionText"));
    const QRectF block = sceneRect(*find("QXDecodedSectionText"));
    const QPointF left(block.left(), block.center().y());
    secondary.setAlphaF(0.08F);
    const QColor wanted = Contrast::over(secondary, pixel(left - QPointF(5, 0)));
    const QColor shown = pixel(left + QPointF(5, 0));
    const auto differs = [](int one, int other) {
        return qAbs(one - other) > 1;
    };
    QVERIFY2(!differs(shown.red(), wanted.red()) && !differs(shown.green(), wanted.green()) &&
                 !differs(shown.blue(), wanted.blue()),
             qPrintable(shown.name() + u" instead of "_s + wanted.name()));
}

QTEST_MAIN(LayoutTest)
#include "LayoutTest.moc"
