#include "Tests/Contrast.h"
#include "Tests/EveryScreen.h"
#include "Tests/TestKit.h"

#include "Controls/QXControlsModule.h"

#include <QtCore/QScopeGuard>
#include <QtGui/QPalette>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using namespace ScreenDriver;

/// What holds for all that comes up over a screen, and for every way back.
class ModalTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void isFencedAndLeft_data() { pages(), popups(); }
    void isFencedAndLeft();
    void growsWithText_data() { everyScreen(); }
    void growsWithText();
    void isTranslated_data() { everyScreen(); }
    void isTranslated();
    void endsWithItsCarrier_data() { everyScreen(); }
    void endsWithItsCarrier();
    void survivesTinyWindows_data() { everyScreen(); }
    void survivesTinyWindows();
    void longTextsAreCut_data() { pages(), heldResponse(); }
    void longTextsAreCut();
    void secondTapIsIgnored();
    void keysScrollSheets();
    void colorsContrast_data();
    void colorsContrast();

private:
    QQuickItem *m_hostField = nullptr;
};

void ModalTest::init()
{
    ScreenTest::init();
    m_heldPath = u"/held"_s;
    m_hostField = new QQuickItem(m_window->contentItem());
    m_hostField->setSize(m_window->size());
    m_hostField->setZ(-1);
    m_hostField->setActiveFocusOnTab(true);
    m_hostField->forceActiveFocus();

    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(QUrl(u"https://shop.test/held"_s), {}));
    record(Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s));
    openList();
}

void ModalTest::isFencedAndLeft()
{
    open();
    QFETCH(const QByteArray, opened);
    const QQuickItem *const root = find(opened);
    if (!opened.endsWith("View"))
        QVERIFY(!spoken(find(opened)).isEmpty());

    for (int i = 0; i < 24; ++i) {
        press(Qt::Key_Tab, i < 12 ? Qt::NoModifier : Qt::ShiftModifier);
        QVERIFY2(root->isAncestorOf(m_window->activeFocusItem()) || root->hasActiveFocus() ||
                     opened == "QXBreakpointsListView",
                 "Tab leads out of it");
        QVERIFY(!m_hostField->hasActiveFocus());
    }
    press(Qt::Key_Back);
    QTRY_VERIFY(!find(opened));
    const bool isClosed = opened == "QXRequestListView";
    QTRY_VERIFY(isClosed == m_hostField->hasActiveFocus());
    // The way back goes on until nothing of the inspector is left.
    const auto depth = [this] {
        return findAll("QXRequestListView").size() + findAll("QXRequestDetailsView").size() +
               findAll("QXConfirmationDialog").size() + findAll("QXContextMenu").size();
    };
    for (int i = 0; i < 5 && find("QXRequestListView"); ++i) {
        const auto before = depth();
        press(Qt::Key_Escape);
        QTRY_VERIFY(depth() < before);
    }
    QTRY_VERIFY(m_hostField->hasActiveFocus());
}

void ModalTest::growsWithText()
{
    const QFont usual = QGuiApplication::font();
    QFont large = usual;
    large.setPixelSize(28);
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QGuiApplication::setFont(large);
        QGuiApplication::setLayoutDirection(direction);
        const auto restore = qScopeGuard([&] {
            QGuiApplication::setFont(usual);
            QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        });
        if (direction == Qt::LeftToRight)
            open();
        QFETCH(const QByteArray, opened);
        QVERIFY(waitFor(opened));
        visitVisible(m_window->contentItem(), [&](const QQuickItem *item) {
            if (!item->inherits("QQuickText") || item->property("text").toString().isEmpty())
                return;
            const QRectF place = sceneRect(*item);
            const bool mayBeShort = item->property("elide").toInt() != Qt::ElideNone;
            QVERIFY2(item->property("contentHeight").toReal() <= item->height() + 1 &&
                         (mayBeShort || item->property("contentWidth").toReal() <= item->width() + 1) &&
                         place.left() >= 0 && place.right() <= m_window->width(),
                     qPrintable(item->property("text").toString()));
        });
    }
}

void ModalTest::isTranslated()
{
    ShoutingTranslator host;
    QuorvixClient::shared().hide();
    QCoreApplication::installTranslator(&host);
    QuorvixClient::shared().show();
    openList();
    open();
    // What comes of the exchange, and numbers with their units, stays as it is.
    const QRegularExpression data(
        u"/v1/users|/held$|curl|Authorization|^[A-Za-z0-9=]{60,}$|, \\d\\d:|seconds|bytes|\\.har$"_s);
    visitVisible(m_window->contentItem(), [&](const QQuickItem *item) {
        const QString text = item->property("text").toString();
        if (!item->inherits("QXTextView") && !text.contains(data))
            QCOMPARE(text, text.toUpper());
    });
}

/// Nothing complains when a screen is deleted with everything that it shows.
void ModalTest::endsWithItsCarrier()
{
    open();
    QuorvixClient::shared().overlayWindow()->dismissRequestList();
    QTRY_VERIFY(!find("QXRequestListView"));
    cleanup();
    init();
    open();
    m_window.reset();
    QCoreApplication::processEvents();
}

/// No binding loops, no warnings, and no item turned inside out.
void ModalTest::survivesTinyWindows()
{
    const auto check = [this] {
        for (int frame = 0; frame < 3; ++frame) {
            QCoreApplication::processEvents();
            (void)m_window->grabWindow();
        }
        visitVisible(m_window->contentItem(), [this](const QQuickItem *item) {
            QVERIFY2(item->width() >= 0 && item->height() >= 0,
                     qPrintable(u"%1 in %2x%3"_s.arg(QString::fromLatin1(item->metaObject()->className()))
                                    .arg(m_window->width())
                                    .arg(m_window->height())));
        });
    };
    open();
    for (const QSize size : {QSize(1, 1), QSize(50, 50), QSize(0, 300), QSize(120, 80), QSize(200, 100),
                             QSize(390, 100), QSize(100, 844), QSize(640, 60), QSize(390, 844)}) {
        m_window->resize(size);
        check();
    }
    m_window->resize(50, 50);
    QuorvixClient::shared().hide();
    QuorvixClient::shared().show();
    QuorvixClient::shared().overlayWindow()->handleFloatingButtonTap();
    check();
}

/// Text items never get the long texts that requests can have, and neither do assistive technologies.
void ModalTest::longTextsAreCut()
{
    m_heldPath = u'/' + QString(30'000, u'p');
    const QString url = u"https://shop.test"_s + m_heldPath;
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(QUrl(url), {}));
    QXRequestRecorder::shared().clear();
    URLRequest request = Exchanges::makeRequest(url, QString(30'000, u'M'));
    request.allHTTPHeaderFields = {{QString(30'000, u'N'), QString(30'000, u'v')}};
    record(request);
    QTRY_COMPARE(findAll("QXRequestRow").size(), 1);
    open();
    visitVisible(m_window->contentItem(), [](QQuickItem *item) {
        const QString text = item->inherits("QQuickText") ? item->property("text").toString() : QString();
        QVERIFY2(text.size() <= 4096, qPrintable(text.left(20)));
        QVERIFY2(spoken(item).size() <= 1001, qPrintable(spoken(item).left(20)));
    });
}

void ModalTest::secondTapIsIgnored()
{
    openDetails();
    click("QXShareButton");
    QVERIFY(waitFor("QXShareRawDetails"));
    const QPoint at = middle(*find("QXShareCurl"));
    click(at);
    click(QPoint(at.x(), 60));
    QVERIFY(waitFor("QXActivitySheet"));
}

void ModalTest::keysScrollSheets()
{
    openMenu();
    click("QXDecodeValueItem");
    QVERIFY(waitFor("QXDecodedPayloadSheet"));
    const QQuickItem *const page = find("QXDecodedPayloadPage");
    press(Qt::Key_PageDown);
    QVERIFY(page->property("contentY").toReal() > 100);
    press(Qt::Key_End);
    QVERIFY(page->property("atYEnd").toBool());
    press(Qt::Key_Home);
    QCOMPARE(page->property("contentY").toReal(), 0);
}

void ModalTest::colorsContrast_data()
{
    QTest::addColumn<QString>("color");
    QTest::addColumn<QStringList>("grounds");
    QTest::addColumn<double>("least");
    const QStringList pages{u"background"_s, u"secondaryBackground"_s, u"elevatedBackground"_s};
    for (const char *const words : {"label", "secondaryLabel", "link", "redText", "orangeText", "greenText"})
        QTest::newRow(words) << QString::fromLatin1(words) << pages << 4.5;
    QTest::newRow("white words") << u"onColor"_s << QStringList{u"selection"_s, u"destructive"_s} << 4.5;
    QTest::newRow("payload") << u"label"_s << QStringList{u"faintFill"_s} << 4.5;
    for (const char *const sign : {"outline", "blue"})
        QTest::newRow(sign) << QString::fromLatin1(sign) << QStringList{u"background"_s} << 3.0;
    QTest::newRow("switch's knob") << u"onColor"_s << QStringList{u"outline"_s, u"blue"_s} << 3.0;
}

void ModalTest::colorsContrast()
{
    QFETCH(const QString, color);
    QFETCH(const QStringList, grounds);
    QFETCH(const double, least);
    const QPalette usual = QGuiApplication::palette();
    for (const bool isDark : {false, true}) {
        QGuiApplication::setPalette(isDark ? QPalette(QColor(44, 44, 46), QColor(28, 28, 30)) : QPalette());
        QQmlEngine engine;
        linkQXControlsModule();
        engine.addImportPath(u"qrc:/qt/qml"_s);
        QQmlComponent component(&engine);
        component.setData("import QtQml; import Quorvix.Controls; QtObject { property var theme: QXTheme }",
                          QUrl());
        const std::unique_ptr<QObject> object(component.create());
        const auto *const theme = object->property("theme").value<QObject *>();
        for (const QString &ground : grounds) {
            const double ratio = Contrast::ratio(theme->property(color.toLatin1()).value<QColor>(),
                                                 theme->property(ground.toLatin1()).value<QColor>());
            QVERIFY2(ratio >= least,
                     qPrintable(u"%1 on %2: %3, dark %4"_s.arg(color, ground).arg(ratio).arg(isDark)));
        }
    }
    QGuiApplication::setPalette(usual);
}

QTEST_MAIN(ModalTest)
#include "ModalTest.moc"
