#include "Tests/ScreenDriver.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QTranslator>
#include <QtGui/QAccessible>

using namespace Qt::StringLiterals;
using namespace ScreenDriver;

/// The application's own catalogue is where the inspector looks its texts up, and what is not there stays as
/// it is.
class TranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void models();
    void screens();

private:
    QTranslator m_catalogue;
};

void TranslationTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(u"QuorvixTests"_s);
    QCoreApplication::setApplicationName(u"TranslationTest"_s);
    QSettings().clear();
    QVERIFY(m_catalogue.load(QStringLiteral(QUORVIX_CATALOGUE)));
    QVERIFY(QCoreApplication::installTranslator(&m_catalogue));
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void TranslationTest::models()
{
    QCOMPARE(makeError(QXExportError::missingRequestURL).localizedDescription,
             u"Die Anfrage hat keine URL."_s);
    QCOMPARE(makeError(QXExportError::missingRequestMethod).localizedDescription,
             u"Missing request method."_s);

    const auto fields = QXApiTreeParser::parse(QByteArrayView("[1,2]"));
    QVERIFY(fields);
    QCOMPARE(fields.value().first()->summary(), u"[2 Elemente]"_s);

    const auto payload = QXPayloadDecoder::decodePayload(u"/wECAwQFBgcICQ=="_s);
    QVERIFY(payload);
    QCOMPARE(payload->title, u"Dekodiertes Base64"_s);
    QCOMPARE(payload->sections.first().title, u"Bytes"_s);
}

void TranslationTest::screens()
{
    QQuickWindow window;
    window.resize(390, 844);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QuorvixClient::shared().show();
    click(window, "QXFloatingButton");
    QVERIFY(waitForRest(window, "QXRequestListView"));
    const auto property = [&](const char *name, const char *key) {
        const QQuickItem *const item = find(window, name);
        return item ? item->property(key).toString() : QString();
    };
    QCOMPARE(property("QXRequestListBar", "title"), u"Netzwerkanfragen"_s);
    QCOMPARE(property("QXSearchField", "placeholderText"), u"Anfragen suchen …"_s);
    QCOMPARE(property("QXTrashButton", "text"), u"Clear requests"_s);
    QAccessibleInterface *const close = QAccessible::queryAccessibleInterface(find(window, "QXCloseButton"));
    QVERIFY(close);
    QCOMPARE(close->text(QAccessible::Name), u"Schließen"_s);

    click(window, "QXExportButton");
    QTRY_COMPARE(property("QXAlert", "title"), u"Export fehlgeschlagen"_s);
    QCOMPARE(property("QXAlert", "message"), u"Keine Anfragen zum Exportieren."_s);
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QTEST_MAIN(TranslationTest)
#include "TranslationTest.moc"
