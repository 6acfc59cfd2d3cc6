#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXRedaction.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXRequestListViewModel.h"

#include "Platform/HTTPCookieStorage.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Quorvix;
using namespace Qt::StringLiterals;

/// Everything that the screens share. A new action takes part by itself: its name begins with "share" or
/// "export".
class RedactionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void exportsKeepSecrets_data();
    void exportsKeepSecrets();
    void archivesKeepNames();
    void listIsWhatWasSet();

private:
    std::optional<TemporaryFolder> m_temporary;
    std::unique_ptr<QXRequestListViewModel> m_list;
    std::unique_ptr<QXRequestDetailsViewModel> m_details;
};

namespace {

/// The texts "secret1", "secret2" ... are the values of headers, in every place from which an export takes
/// them.
void recordSecrets()
{
    URLRequest request(QUrl(u"https://shop.test/api/v1/users/42"_s));
    request.allHTTPHeaderFields = {{u"authorization"_s, u"Bearer secret1"_s},
                                   {u"Cookie"_s, u"sid=secret2; theme=secret3; secret4"_s},
                                   {u"PROXY-AUTHORIZATION"_s, u"secret5"_s},
                                   {u"X-Api-Key"_s, u"secret6"_s},
                                   {u"Accept"_s, u"plain1"_s}};
    const NSHeaderFields fields{{u"Set-Cookie"_s, u"sid=secret7; Path=/\nlang=secret8"_s},
                                {u"ETag"_s, u"secret9"_s},
                                {u"Server"_s, u"plain2"_s}};
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("stored", "secret0")}, *request.url);
    QXRequestRecorder::shared().record(u"id"_s, request);
    QXRequestRecorder::shared().complete(u"id"_s, Exchanges::makeResponse(200, fields), "{\"a\":1}", {});
}

QStringList sharingMethods(const QMetaObject &model)
{
    QStringList names;
    for (int i = model.methodOffset(); i < model.methodCount(); ++i) {
        const QString name = QString::fromLatin1(model.method(i).name());
        if (model.method(i).methodType() != QMetaMethod::Signal && model.method(i).parameterCount() == 0 &&
            (name.startsWith("share"_L1) || name.startsWith("export"_L1)))
            names += name;
    }
    return names;
}

/// What a model shares with one of its methods, without what differs from one moment to the next.
QString shared(QXPresentingModel &model, const QString &method)
{
    if (!QMetaObject::invokeMethod(&model, method.toLatin1().constData()) || !model.shareItem())
        return {};
    const QVariant item = model.shareItem()->activityItems.value(0);
    return item.typeId() == QMetaType::QUrl ? QString::fromUtf8(contentOf(item.toUrl().toLocalFile()))
                                            : item.toString();
}

} // namespace

void RedactionTest::init()
{
    m_temporary.emplace();
    recordSecrets();
    m_list = std::make_unique<QXRequestListViewModel>();
    m_details.reset(m_list->makeDetails(0));
}

void RedactionTest::cleanup()
{
    QXRedaction::setHeaders({});
    HTTPCookieStorage::shared().removeAllCookies();
    QXRequestRecorder::shared().clear();
}

void RedactionTest::exportsKeepSecrets_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("hasHeaders");
    QStringList known;
    for (const auto *const model :
         {&QXRequestListViewModel::staticMetaObject, &QXRequestDetailsViewModel::staticMetaObject}) {
        for (const QString &method : sharingMethods(*model)) {
            known += method;
            QTest::newRow(qPrintable(method))
                << method << !QStringList({u"shareMockServerFile"_s, u"shareSwiftModel"_s}).contains(method);
        }
    }
    QCOMPARE(known.size(), 6);
}

void RedactionTest::exportsKeepSecrets()
{
    QFETCH(const QString, method);
    QFETCH(const bool, hasHeaders);
    QXPresentingModel *model = m_details.get();
    if (sharingMethods(*m_list->metaObject()).contains(method))
        model = m_list.get();

    const QString open = shared(*model, method);
    QVERIFY(!open.isEmpty());
    QCOMPARE(open.contains("secret"_L1), hasHeaders);
    QXRedaction::setHeaders({u"Unknown"_s});
    QCOMPARE(shared(*model, method), open);

    QXRedaction::setHeaders(QXRedaction::credentials() + QStringList({u"x-api-key"_s, u" etag "_s}));
    const QString redacted = shared(*model, method);
    QVERIFY2(!redacted.contains("secret"_L1), qPrintable(redacted));
    QCOMPARE(redacted.contains(QXRedaction::marker), hasHeaders);
    QCOMPARE(redacted.contains("plain1"_L1), hasHeaders);
    // The screens, and what their details export later, show the trace as it is.
    QVERIFY(m_details->request().headers->value(u"Cookie"_s).contains("secret2"_L1));
    QXRedaction::setHeaders({});
    QCOMPARE(shared(*model, method), open);
}

void RedactionTest::archivesKeepNames()
{
    QXRedaction::setHeaders({u"cookie"_s, u"set-COOKIE"_s});
    const QString archive = shared(*m_list, u"exportAll"_s).simplified();
    for (const auto *const cookie : {"sid", "theme", "lang", "Cookie", "Set-Cookie"}) {
        const auto pair =
            QStringLiteral(R"("name" : "%1", "value" : "[redacted]")").arg(QLatin1StringView(cookie));
        QVERIFY2(archive.contains(pair), cookie);
    }
    QVERIFY(archive.contains("secret1"_L1)); // of another header
}

void RedactionTest::listIsWhatWasSet()
{
    QVERIFY(QXRedaction::headers().isEmpty());
    QVERIFY(!QXRedaction::concerns(u"Cookie"));
    const QStringList names = QXRedaction::credentials() + QStringList(u"X-Key"_s);
    QXRedaction::setHeaders(names);
    QCOMPARE(QXRedaction::headers(), names);
    for (const auto *const name : {"authorization", "COOKIE", "Set-Cookie", "Proxy-Authorization", "x-key"})
        QVERIFY2(QXRedaction::concerns(QString::fromLatin1(name)), name);
    QVERIFY(!QXRedaction::concerns(u"Cookie2") && !QXRedaction::concerns({}));
}

QTEST_MAIN(RedactionTest)
#include "RedactionTest.moc"
