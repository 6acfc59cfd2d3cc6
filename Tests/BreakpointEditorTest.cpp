#include "Tests/ScreenTest.h"

#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXOverlay.h"

#include "Text/QXTextEditor.h"

#include "Controls/QXSafeArea.h"

#include <QtGui/QRasterWindow>
#include <QtTest/QSignalSpy>

#include <functional>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr char hostQml[] = R"(
import QtQuick

Window {
    id: root

    property int escapes: 0

    width: 390; height: 844; visible: true
    Shortcut {
        sequences: ["Esc", "Back"]
        onActivated: root.escapes++
    }
    TextInput { objectName: "field"; focus: true }
}
)";

const QUrl heldUrl(u"http://host/a/long/path/to/what/is/held?with=a&query=too"_s);

QtMessageHandler formerHandler = nullptr;
QStringList breakpointLines;

void hear(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.startsWith("[Breakpoint]"_L1))
        breakpointLines.append((type == QtInfoMsg ? u"info "_s : u"debug "_s) + message);
    else
        formerHandler(type, context, message);
}

} // namespace

class BreakpointEditorTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;
    void deletedBodyComesBack();
    void bytesSurviveUntouched();
    void hostHearsNoEscape();
    void keepsTheKeyboardFromTheLeavingList();
    void comesToTheFront();
    void movesToAnotherWindow();
    void fitsEveryWindow_data();
    void fitsEveryWindow();
    void scrollsByWheelAndFinger();
    void menuEdits();

private:
    [[nodiscard]] QXTextEditor *editor() { return qobject_cast<QXTextEditor *>(find("QXTextEditor")); }
    [[nodiscard]] QQuickItem *form() { return find("QXBreakpointEditorForm"); }
    [[nodiscard]] bool hasFocus(const char *name) { return find(name) && find(name)->hasActiveFocus(); }
    void hold(const QByteArray &body)
    {
        QVERIFY(QXBreakpointCenter::shared().check(
            URLRequest(heldUrl), u"1"_s, body, Exchanges::makeResponse(200), {},
            [this](const auto &data, auto, auto) { m_delivered.append(data.value_or(QByteArray())); }));
    }

    QQmlEngine m_engine;
    const QFont m_font = QGuiApplication::font();
    QByteArrayList m_delivered;
};

void BreakpointEditorTest::init()
{
    startAnew();
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(heldUrl, {}));
    m_delivered.clear();
    m_window = makeWindow(m_engine, hostQml);
    QuorvixClient::shared().show();
}

void BreakpointEditorTest::cleanup()
{
    ScreenTest::cleanup();
    QGuiApplication::setFont(m_font);
}

void BreakpointEditorTest::deletedBodyComesBack()
{
    hold("one two three");
    click("QXTextEditor");
    press(u"Ctrl+End, X"_s);
    click("QXDeleteBodyButton");
    QCOMPARE(editor()->text(), QString());
    press(u"Tab, B"_s);
    QCOMPARE(editor()->text(), u"b"_s);
    press(u"Ctrl+Z, Ctrl+Z"_s);
    QCOMPARE(editor()->text(), u"one two threex"_s);
    QCOMPARE(editor()->font().weight(), int(QFont::Normal));

    // The program changes the text.
    press(u"Ctrl+End, Shift+Left"_s);
    auto *const model = find("QXBreakpointEditorView")->property("model").value<QObject *>();
    QVERIFY(QMetaObject::invokeMethod(model, "deleteBody"));
    QVERIFY(!editor()->canUndo() && !editor()->hasSelection());
    press(u"Ctrl+Left, Ctrl+Z, Ctrl+Backspace, A, B"_s);
    editor()->document()->replace(0, 1, {});
    QVERIFY(!editor()->canUndo());
    press(u"Left, C"_s);
    QCOMPARE(editor()->text(), u"cb"_s);
}

void BreakpointEditorTest::bytesSurviveUntouched()
{
    const QByteArray cutOff = "a\xE2\x82";
    for (const QByteArray &held : {"\xEF\xBB\xBF{}"_ba, "\xEF\xBB\xBF"_ba, cutOff}) {
        hold(held);
        click("QXApplyButton");
        QCOMPARE(m_delivered.takeFirst(), held == cutOff ? QString::fromUtf8(cutOff).toUtf8() : held);
    }

    // Another thread loads a large body, and converts it again.
    const QByteArray large = "lÃ­ne\n"_ba.repeated(4'000'000);
    hold(large);
    QTRY_VERIFY(
        find("QXBreakpointEditorView")->property("model").value<QObject *>()->property("isLoaded").toBool());
    QTRY_VERIFY(!find("QXProgressCard"));
    click("QXTextEditor");
    press(u"Ctrl+Home, X"_s);
    click("QXApplyButton");
    QTRY_VERIFY_WITH_TIMEOUT(!m_delivered.isEmpty(), 20'000);
    QCOMPARE(m_delivered.takeFirst(), "x" + large);
}

void BreakpointEditorTest::hostHearsNoEscape()
{
    hold("body");
    for (const char *name : {"QXStatusCodeField", "QXTextEditor", "QXContinueButton", "QXCopyBodyButton"}) {
        find(name)->forceActiveFocus();
        press(u"Esc, Back"_s);
        QCOMPARE(m_window->property("escapes").toInt(), 0);
    }
    QVERIFY(m_delivered.isEmpty());
    click("QXContinueButton");
    press(u"Esc, Back"_s);
    QCOMPARE(m_window->property("escapes").toInt(), 2);
}

void BreakpointEditorTest::keepsTheKeyboardFromTheLeavingList()
{
    QXOverlay &overlay = *QuorvixClient::shared().overlayWindow();
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestListView"));
    overlay.dismissRequestList();
    hold("body");
    QTRY_VERIFY(!overlay.isShowingRequestList());
    press(u"End, 4"_s);
    QCOMPARE(text("QXStatusCodeField"), u"2004"_s);
    click("QXContinueButton");
    QTRY_VERIFY(hasFocus("field"));
}

void BreakpointEditorTest::comesToTheFront()
{
    QuorvixClient::shared().setLogLevel(QXLogLevel::debug);
    formerHandler = qInstallMessageHandler(hear);
    for (const bool hasQuickWindow : {true, false}) {
        if (!hasQuickWindow) {
            QuorvixClient::shared().hide();
            m_window.reset();
            QuorvixClient::shared().show();
        }
        QXOverlay &overlay = *QuorvixClient::shared().overlayWindow();
        QRasterWindow other;
        other.resize(500, 500);
        other.show();
        other.requestActivate();
        QTRY_VERIFY(overlay.window());
        QTRY_COMPARE(QGuiApplication::focusWindow(), &other);
        breakpointLines.clear();
        QStringList expected;
        const auto expect = [&](QLatin1StringView isKey) {
            const QUuid id = QXBreakpointCenter::shared().activeBreakpoint()->id;
            expected << u"info [Breakpoint] change active=true showingList=false"_s
                     << u"debug [Breakpoint] show window id=%1 key=%2"_s.arg(
                            id.toString(QUuid::WithoutBraces).toUpper(), isKey);
        };
        hold("first");
        hold("second");
        expect("false"_L1);
        QTRY_VERIFY(overlay.breakpointWindow()->isKeyWindow());
        QCOMPARE(QGuiApplication::focusWindow(), overlay.window());
        QSignalSpy moved(qGuiApp, &QGuiApplication::focusWindowChanged);
        ScreenDriver::click(*overlay.window(), "QXContinueButton");
        expect("true"_L1);
        QCOMPARE(moved.size(), 0); // it was already in front
        ScreenDriver::click(*overlay.window(), "QXContinueButton");
        QTRY_COMPARE(QGuiApplication::focusWindow(), &other);
        expected << u"info [Breakpoint] change active=false showingList=false"_s
                 << u"debug [Breakpoint] hide window key=true"_s;
        QCOMPARE(breakpointLines.filter(QRegularExpression(u" (change|show|hide) "_s)), expected);
    }
    qInstallMessageHandler(formerHandler);
}

void BreakpointEditorTest::movesToAnotherWindow()
{
    hold("body");
    click("QXDeleteBodyButton");
    find("QXStatusCodeField")->forceActiveFocus();
    const auto safeArea = [this] {
        return find("QXBreakpointEditorView")->property("safeArea").value<QXSafeArea *>();
    };
    const auto fieldStart = [this] {
        return sceneRect(*find("QXStatusCodeField")).left();
    };
    const qreal start = fieldStart();
    safeArea()->setMargins({30, 0, 0, 0});
    QVERIFY(fieldStart() > start);
    m_window->resize(800, 600);
    QTRY_VERIFY(safeArea()->margins().isNull());

    safeArea()->setMargins({30, 0, 0, 0});
    auto next = makeWindow(m_engine, hostQml);
    next->resize(800, 600);
    QTRY_COMPARE(next->contentItem()->size(), QSizeF(800, 600));
    m_window->hide();
    m_window.swap(next);
    QTRY_VERIFY(find("QXStatusCodeField") && hasFocus("QXStatusCodeField"));
    QVERIFY(safeArea()->margins().isNull());
    click("QXApplyButton");
    QCOMPARE(m_delivered, QByteArrayList{""}); // edits survive
    QTRY_VERIFY(hasFocus("field"));
    QVERIFY(ScreenDriver::find(*next, "field")->hasFocus());
}

void BreakpointEditorTest::fitsEveryWindow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("fontScale");
    QTest::addColumn<bool>("scrolls");
    QTest::newRow("phone") << QSize(390, 844) << 1 << false;
    QTest::newRow("landscape above a keyboard") << QSize(844, 190) << 1 << true;
    QTest::newRow("narrow with large text") << QSize(320, 480) << 2 << true;
    QTest::newRow("low with large text") << QSize(844, 190) << 2 << true;
}

void BreakpointEditorTest::fitsEveryWindow()
{
    QFETCH(const QSize, size);
    QFETCH(const int, fontScale);
    QFont font = m_font;
    font.setPixelSize(14 * fontScale);
    QGuiApplication::setFont(font);
    hold("line\n"_ba.repeated(100));
    QVERIFY(resize(size));
    QTEST(form()->property("interactive").toBool(), "scrolls");
    const QQuickItem *const body = find("QXBodyArea");
    QVERIFY(body->height() >= 4 * editor()->rowHeight());
    const QRectF caption = sceneRect(*find("QXBodyCaption"));
    QVERIFY(caption.right() <= sceneRect(*find("QXCopyBodyButton")).left());
    QVERIFY(caption.bottom() <= sceneRect(*body).top());

    const auto isSeen = [&](const QRectF &frame) {
        return sceneRect(*form()).contains(frame);
    };
    const auto caretIsSeen = [&] {
        return isSeen(editor()->mapRectToScene(editor()->inputMethodQuery(Qt::ImCursorRectangle).toRectF()));
    };
    for (const char *name : {"QXStatusCodeField", "QXCopyBodyButton", "QXDeleteBodyButton"}) {
        QVERIFY2(hasFocus(name), name);
        QTRY_VERIFY2(isSeen(sceneRect(*find(name))), name);
        press(u"Tab"_s);
    }
    QTRY_VERIFY(hasFocus("QXTextEditor") && caretIsSeen());
    press(u"Ctrl+End, X"_s);
    QTRY_VERIFY(caretIsSeen());
    press(u"Backtab, Backtab, Backtab"_s);
    QTRY_VERIFY(hasFocus("QXStatusCodeField") && isSeen(sceneRect(*find("QXStatusCodeField"))));
}

void BreakpointEditorTest::scrollsByWheelAndFinger()
{
    hold("line\n"_ba.repeated(200));
    QVERIFY(resize({844, 190}));
    const auto scrolled = [this] {
        return form()->property("contentY").toReal();
    };
    const auto turnUntil = [&](int notches, const auto &isEnough) {
        return QTest::qWaitFor([&] {
            ScreenDriver::turnWheel(*m_window, ScreenDriver::middle(*editor()), notches);
            return isEnough();
        });
    };
    press(u"Tab, Tab, Tab"_s);
    QVERIFY(waitFor("QXTextEditor"));
    const QPoint inBody = ScreenDriver::middle(*editor());
    const qreal top = editor()->scrollOffset();
    QVERIFY(turnUntil(1, [&] { return editor()->scrollOffset() > top; }));
    QTRY_VERIFY(!form()->property("moving").toBool());
    const qreal before = scrolled();
    const qreal turned = editor()->scrollOffset();
    QVERIFY(QTest::qWaitFor([&] {
        touch(inBody);
        for (int y = 10; y <= 60; y += 10) {
            QTest::qWait(16); // a frame
            moveFinger(inBody - QPoint(0, y));
        }
        lift(inBody - QPoint(0, 60));
        return editor()->scrollOffset() > turned;
    }));
    QCOMPARE(scrolled(), before);
    press(u"Ctrl+Home"_s);
    QVERIFY(turnUntil(-1, [&] { return scrolled() < before; })); // past the beginning of the text
    QVERIFY(editor()->scrollOffset() <= 0);
    m_window->resize(390, 844);
    QTRY_COMPARE(scrolled(), 0);
}

void BreakpointEditorTest::menuEdits()
{
    hold("word");
    QVERIFY(waitFor("QXTextEditor"));
    editor()->forceActiveFocus();
    const QPoint place = editor()->mapToScene(QPointF(10, 12 + editor()->rowHeight() / 2)).toPoint();
    const std::function<void()> rightClick = [&] {
        click(place, Qt::RightButton);
    };
    const std::function<void()> menuKey = [&] {
        press(u"Menu"_s);
    };
    const std::function<void()> heldFinger = [&] {
        touch(place);
        QTRY_COMPARE(editor()->selectedText(), u"word"_s);
        lift(place);
    };
    const auto choose = [&](const std::function<void()> &open, const char *item, const QString &text) {
        open();
        QVERIFY(waitFor("QXContextMenuCard"));
        press(u"Esc"_s);
        QTRY_VERIFY2(!find("QXContextMenu") && editor()->hasActiveFocus(), item);
        open();
        click(item);
        QTRY_VERIFY2(!find("QXContextMenu") && editor()->hasActiveFocus(), item);
        QCOMPARE(editor()->text(), text);
    };
    choose(heldFinger, "QXCutItem", {});
    choose(rightClick, "QXUndoItem", u"word"_s);
    choose(menuKey, "QXRedoItem", {});
    choose(rightClick, "QXPasteItem", u"word"_s);
    choose(rightClick, "QXSelectAllItem", u"word"_s);
    QGuiApplication::clipboard()->clear();
    choose(menuKey, "QXCopyItem", u"word"_s);
    QCOMPARE(clipboard(), u"word"_s);
    QCOMPARE(m_window->property("escapes").toInt(), 0);
}

QTEST_MAIN(BreakpointEditorTest)
#include "BreakpointEditorTest.moc"
