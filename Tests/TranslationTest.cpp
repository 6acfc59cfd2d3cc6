#include "Tests/ScreenTest.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXPayloadDecoder.h"

#include <QtCore/QTranslator>

using namespace Qt::StringLiterals;

/// The application's own catalogue is where the inspector looks its texts up, and what is not there stays as
/// it is.
class TranslationTest : public ScreenTest
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
    QVERIFY(m_catalogue.load(QStringLiteral(QUORVIX_CATALOGUE)));
    QVERIFY(QCoreApplication::installTranslator(&m_catalogue));
}

void TranslationTest::models()
{
    const auto text = makeError(QXExportError::missingRequestURL).localizedDescription;
    QCOMPARE(text, u"Die Anfrage hat keine URL."_s);
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
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestListView"));
    QCOMPARE(text("QXRequestListBar", "title"), u"Netzwerkanfragen"_s);
    QCOMPARE(text("QXSearchField", "placeholderText"), u"Anfragen suchen …"_s);
    QCOMPARE(text("QXTrashButton"), u"Clear requests"_s);
    QCOMPARE(spoken(find("QXCloseButton")), u"Schließen"_s);

    click("QXExportButton");
    QTRY_COMPARE(text("QXAlert", "title"), u"Export fehlgeschlagen"_s);
    QCOMPARE(text("QXAlert", "message"), u"Keine Anfragen zum Exportieren."_s);
}

QTEST_MAIN(TranslationTest)
#include "TranslationTest.moc"
#include "moc_ScreenTest.cpp" // NOLINT(bugprone-suspicious-include)
