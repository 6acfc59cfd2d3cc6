#include "Text/QXTextDocument.h"
#include "Text/QXTextEditor.h"

#include <QtCore/QThread>
#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethodEvent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

using Change = void (*)(QXTextEditor &);

/// The editor in a window of its own. The threaded render loop has a thread for each window, which ends with
/// the window or when the window releases its resources.
std::unique_ptr<QQuickWindow> makeWindow(QXTextEditor &editor)
{
    auto window = std::make_unique<QQuickWindow>();
    window->setPersistentGraphics(false);
    window->setPersistentSceneGraph(false);
    window->resize(400, 400);
    editor.setParentItem(window->contentItem());
    editor.setSize(window->size());
    window->show();
    return window;
}

bool waitForFrame(QQuickWindow &window)
{
    const QSignalSpy swapped(&window, &QQuickWindow::frameSwapped);
    window.update();
    return QTest::qWaitFor([&] { return !swapped.isEmpty(); });
}

} // namespace

/// A text stays the same when the thread that paints it ends and another one goes on.
class RenderThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOnTheDisplayThatWasAskedFor();
    void paintsTheSame_data();
    void paintsTheSame();
    void repaintsAfterEveryChange_data();
    void repaintsAfterEveryChange();
};

/// The other tests for displays would also pass if Qt had fallen back to software or to the main thread.
void RenderThreadTest::isOnTheDisplayThatWasAskedFor()
{
    QXTextEditor editor;
    const auto window = makeWindow(editor);
    std::atomic<QThread *> painter = nullptr;
    connect(
        window.get(), &QQuickWindow::beforeRendering, this, [&] { painter = QThread::currentThread(); },
        Qt::DirectConnection);
    QVERIFY(waitForFrame(*window));
    QCOMPARE(QGuiApplication::platformName(), qEnvironmentVariable("QT_QPA_PLATFORM"));
    const bool hasOpenGL = qEnvironmentVariable("QSG_RHI_BACKEND") == u"opengl";
    QCOMPARE(window->rendererInterface()->graphicsApi(),
             hasOpenGL ? QSGRendererInterface::OpenGL : QSGRendererInterface::Software);
    const bool hasThread = qEnvironmentVariable("QSG_RENDER_LOOP") == u"threaded";
    QCOMPARE(painter != QThread::currentThread(), hasThread);
    QCOMPARE(window->effectiveDevicePixelRatio(), qEnvironmentVariable("QT_SCALE_FACTOR", u"1"_s).toDouble());
}

void RenderThreadTest::paintsTheSame_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hasOtherWindow");
    const auto latin = u"GET /orders?page=1\nAccept: */*\n"_s.repeated(20);
    // The letters come from several fonts.
    const auto mixed = u"abc \u0627\u0644\u0633\u0644\u0627\u0645 \u4E2D\u6587 \U0001F600 x\n"_s.repeated(20);
    QTest::newRow("other window, one font") << latin << true;
    QTest::newRow("other window, several fonts") << mixed << true;
    QTest::newRow("released window, one font") << latin << false;
    QTest::newRow("released window, several fonts") << mixed << false;
}

void RenderThreadTest::paintsTheSame()
{
    QFETCH(const QString, text);
    QFETCH(const bool, hasOtherWindow);
    QXTextEditor editor;
    editor.setText(text);
    auto window = makeWindow(editor);
    QVERIFY(waitForFrame(*window));
    const QImage before = window->grabWindow();
    for (int round = 0; round < 5; ++round) {
        if (hasOtherWindow) {
            editor.setParentItem(nullptr);
            window.reset();
            window = makeWindow(editor);
        } else {
            window->hide();
            window->releaseResources();
            window->show();
        }
        QVERIFY(waitForFrame(*window));
        QVERIFY(window->grabWindow() == before);
        editor.selectAll();
        QVERIFY(waitForFrame(*window));
        QVERIFY(window->grabWindow() != before);
        editor.setSelection({});
        QVERIFY(editor.positionAt({100, 30}) > 0);
    }
}

void RenderThreadTest::repaintsAfterEveryChange_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("scrolled") << Change([](QXTextEditor &editor) { editor.setScrollOffset(30); });
    QTest::newRow("selected") << Change([](QXTextEditor &editor) { editor.selectAll(); });
    QTest::newRow("edited") << Change([](QXTextEditor &editor) { editor.insert(u"new"_s); });
    QTest::newRow("other text") << Change([](QXTextEditor &editor) { editor.setText(u"new"_s); });
    QTest::newRow("colour") << Change(
        [](QXTextEditor &editor) { editor.setProperty("color", QColor(Qt::red)); });
    QTest::newRow("background") << Change(
        [](QXTextEditor &editor) { editor.setProperty("fillColor", QColor(Qt::green)); });
    QTest::newRow("font") << Change([](QXTextEditor &editor) {
        QFont font = editor.font();
        font.setPixelSize(31);
        editor.setFont(font);
    });
    QTest::newRow("narrower") << Change([](QXTextEditor &editor) { editor.setWidth(60); });
    QTest::newRow("lower") << Change([](QXTextEditor &editor) { editor.setHeight(50); });
    QTest::newRow("composed") << Change([](QXTextEditor &editor) {
        QInputMethodEvent event(u"\u4E2D"_s, {});
        QCoreApplication::sendEvent(&editor, &event);
    });
}

void RenderThreadTest::repaintsAfterEveryChange()
{
    QFETCH(const Change, change);
    QXTextEditor editor;
    editor.setText(u"GET /orders?page=1\nAccept: */*\n"_s.repeated(20));
    const auto window = makeWindow(editor);
    QVERIFY(waitForFrame(*window));
    const QImage before = window->grabWindow();
    change(editor);
    const QSignalSpy swapped(window.get(), &QQuickWindow::frameSwapped);
    QTRY_VERIFY(!swapped.isEmpty());
    QVERIFY(window->grabWindow() != before);
}

QTEST_MAIN(RenderThreadTest)
#include "RenderThreadTest.moc"
