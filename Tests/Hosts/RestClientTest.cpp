#include "Tests/Hosts/HostDriver.h"
#include "Tests/ScriptedServer.h"

#include "Examples/DemoServer.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressDialog>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

using namespace HostDriver;
using namespace Qt::StringLiterals;

namespace {

/// The button of a dialog that has one of these texts and is enabled, or null.
QPushButton *buttonIn(const QDialog &dialog, const QStringList &texts)
{
    const auto buttons = dialog.findChildren<QPushButton *>();
    const auto found = std::find_if(buttons.cbegin(), buttons.cend(), [&texts](const QPushButton *button) {
        return button->isEnabled() && texts.contains(button->text().remove(u'&'));
    });
    return found == buttons.cend() ? nullptr : *found;
}

void pressIn(const QDialog &dialog, const QStringList &texts)
{
    QPushButton *const button = buttonIn(dialog, texts);
    QVERIFY2(button, qPrintable(texts.join(u' ')));
    QTest::mouseClick(button, Qt::LeftButton);
}

/// What a person enters, and what the window shows then. A code of 0 is no response.
struct Answer
{
    QString method;
    QString path;
    QString typed;
    int code = 0;
    QString status;
    QByteArray part;
};

} // namespace

/// Uses the REST client as a person does. The same test runs in the plain and in the captured program: both
/// have to show the same, and the inspector has to have recorded it in the captured one, and nothing in the
/// other.
class RestClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void isChangedInTwoLines();
    void showsAnswers_data();
    void showsAnswers();
    void asksTheUser_data();
    void asksTheUser();
    void downloads();
    void cancelsADownload();

private:
    template<typename Widget>
    Widget &part(const char *name)
    {
        auto *const widget = m_window->findChild<Widget *>(QLatin1StringView(name));
        if (!widget)
            qFatal("There is no %s", name);
        return *widget;
    }
    void press(const char *button) { QTest::mouseClick(&part<QPushButton>(button), Qt::LeftButton); }
    [[nodiscard]] QString status() { return part<QLabel>("status").text(); }
    [[nodiscard]] QByteArray answer() { return part<QPlainTextEdit>("answer").toPlainText().toUtf8(); }
    void typeUrl(const QUrl &url)
    {
        auto &field = part<QLineEdit>("url");
        field.clear();
        QTest::keyClicks(&field, url.toString());
    }
    void waitForAnswer() { QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("send").isEnabled(), 20'000); }
    /// Chooses a file in the dialog that the next click opens.
    void chooseFile(const QString &path)
    {
        const QStringList buttons{u"Save"_s, u"Open"_s};
        whenOpen<QFileDialog>([buttons](QFileDialog &dialog) { pressIn(dialog, buttons); },
                              [path, buttons](QFileDialog &dialog) {
                                  dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
                                  return dialog.selectedFiles() == QStringList{path} &&
                                         buttonIn(dialog, buttons);
                              });
    }
    /// Acts on the next modal dialog of a class as soon as it is open and ready.
    template<typename Dialog, typename Action, typename Ready = bool (*)(Dialog &)>
    void whenOpen(
        Action action, Ready isReady = [](Dialog &) { return true; })
    {
        auto *const timer = new QTimer(this);
        connect(timer, &QTimer::timeout, timer, [this, timer, action, isReady] {
            const QPointer dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isActiveWindow() || !isReady(*dialog))
                return;
            delete timer;
            m_dialogs += dialog->windowTitle();
            action(*dialog);
            if (dialog && dialog->isVisible()) {
                dialog->reject();
                QFAIL("The dialog stays open");
            }
        });
        timer->start(5);
    }
    /// Checks the recorded exchange; in the plain program that nothing is recorded. A status of 0 is no
    /// response.
    void verifyTrace(const QUrl &url, const QString &method, int status, qint64 errorCode = 0);
    /// Checks that the recorder has the response that the window shows.
    void verifyShown(const QXResponseTrace &response);

    QWidget *m_window = nullptr;
    DemoServer m_demo;
    ScriptedServer m_plain;
    ScriptedServer m_encrypted{ScriptedServer::Transport::Encrypted};
    QTemporaryDir m_folder;
    QStringList m_dialogs;
};

void RestClientTest::initTestCase()
{
    QVERIFY(m_demo.start());
    QVERIFY(m_folder.isValid());
    QTRY_VERIFY(m_window = QApplication::activeWindow());
}

void RestClientTest::init()
{
    failOnWarnings();
    QXRequestRecorder::shared().clear();
    m_dialogs.clear();
    part<QComboBox>("method").setCurrentText(u"GET"_s);
    part<QPlainTextEdit>("body").clear();
}

void RestClientTest::verifyTrace(const QUrl &url, const QString &method, int status, qint64 errorCode)
{
    if (!isCaptured()) {
        QCOMPARE(traces().size(), 0);
        return;
    }
    QTRY_VERIFY(!traces().isEmpty() && traces()[0].duration);
    QCOMPARE(traces().size(), 1);
    const QXRequestTrace trace = traces()[0];
    QCOMPARE(trace.url, url);
    QCOMPARE(trace.method, method);
    QCOMPARE(Quorvix::headerValue(trace.headers, u"User-Agent"), u"RestClient/1.0"_s);
    QCOMPARE(trace.error ? trace.error->code : 0, errorCode);
    QCOMPARE(trace.response ? trace.response->statusCode : 0, status);
}

void RestClientTest::verifyShown(const QXResponseTrace &response)
{
    const auto &table = part<QTableWidget>("headers");
    QVERIFY(table.rowCount() > 0);
    for (int row = 0; row < table.rowCount(); ++row)
        QCOMPARE(Quorvix::headerValue(response.headers, table.item(row, 0)->text()),
                 table.item(row, 1)->text());
    const QByteArray body = response.body.value_or(QByteArray());
    const QJsonDocument json = QJsonDocument::fromJson(body);
    QCOMPARE(json.isNull() ? body : json.toJson(), answer());
}

void RestClientTest::isChangedInTwoLines()
{
    verifyChange(QStringLiteral(QUORVIX_PLAIN), QStringLiteral(QUORVIX_CAPTURED), 2);
}

void RestClientTest::showsAnswers_data()
{
    QTest::addColumn<Answer>("expected");
    QTest::newRow("JSON") << Answer{u"GET"_s, u"/api/v1/products?pageSize=2"_s, {},
                                    200,      u"200 OK, /api/v1/products"_s,    "\"items\""};
    QTest::newRow("compressed") << Answer{u"GET"_s, u"/api/v1/articles"_s,         {},
                                          200,      u"200 OK, /api/v1/articles"_s, "journal-40"};
    QTest::newRow("redirected") << Answer{u"GET"_s, u"/redirect/2"_s,         {},
                                          200,      u"200 OK, /redirect/0"_s, "arrived"};
    QTest::newRow("a body") << Answer{u"PATCH"_s, u"/echo"_s,         u"{\"vase\":1}"_s,
                                      200,        u"200 OK, /echo"_s, "eyJ2YXNlIjoxfQ=="};
    QTest::newRow("only headers") << Answer{u"HEAD"_s, u"/api/v1/products"_s,         {},
                                            200,       u"200 OK, /api/v1/products"_s, {}};
    QTest::newRow("no content") << Answer{
        u"DELETE"_s, u"/status/204"_s, {}, 204, u"204 No Content, /status/204"_s, {}};
    QTest::newRow("refused") << Answer{
        u"GET"_s, u"/status/404"_s, {}, 404, u"404 Not Found, /status/404"_s, "As requested"};
    QTest::newRow("broken off") << Answer{u"GET"_s, u"/drop"_s, {}, 0, u"Connection closed"_s, {}};
}

void RestClientTest::showsAnswers()
{
    QFETCH(const Answer, expected);
    const auto &[method, path, typed, code, statusText, body] = expected;
    typeUrl(m_demo.url(path));
    part<QComboBox>("method").setCurrentText(method);
    QTest::keyClicks(&part<QPlainTextEdit>("body"), typed);
    press("send");
    waitForAnswer();
    QCOMPARE(status(), statusText);
    QVERIFY2(answer().contains(body) && (code == 0 || answer().isEmpty() == body.isEmpty()), answer());
    verifyTrace(m_demo.url(path), method, code,
                code == 0 ? qint64(Quorvix::NSURLErrorNetworkConnectionLost) : 0);
    if (!isCaptured())
        return;
    QCOMPARE(traces()[0].body.value_or(QByteArray()), typed.toUtf8());
    if (code != 0)
        verifyShown(*traces()[0].response);
}

void RestClientTest::asksTheUser_data()
{
    QTest::addColumn<ScriptedServer *>("server");
    QTest::addColumn<bool>("accept");
    QTest::addColumn<QByteArray>("arrives");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("statusText");
    QTest::addColumn<qint64>("errorCode");

    QTest::newRow("signs in") << &m_plain << true << QByteArray("Basic bWFldmU6b3BlbiBzZXNhbWU=") << 200
                              << u"200 OK, /secret"_s << qint64(0);
    QTest::newRow("stays out") << &m_plain << false << QByteArray("GET /secret") << 401
                               << u"401 Unauthorized, /secret"_s << qint64(0);
    // Qt remembers for its connection that the user trusts the server.
    QTest::newRow("does not trust") << &m_encrypted << false << QByteArray() << 0 << u"SSL handshake failed"_s
                                    << qint64(Quorvix::NSURLErrorServerCertificateUntrusted);
    QTest::newRow("trusts") << &m_encrypted << true << QByteArray("GET /secret") << 200
                            << u"200 OK, /secret"_s << qint64(0);
}

void RestClientTest::asksTheUser()
{
    QFETCH(ScriptedServer *, server);
    QFETCH(bool, accept);
    QFETCH(QByteArray, arrives);
    QFETCH(int, code);
    QFETCH(QString, statusText);
    QFETCH(qint64, errorCode);

    const ScriptedServer::Answer open{{httpAnswer("200 OK", "{\"vase\":\"blue\"}")}};
    const ScriptedServer::Answer closed{
        {httpAnswer("401 Unauthorized", "closed", "WWW-Authenticate: Basic realm=\"vault\"\r\n")}};
    server->answer("/secret", server == &m_encrypted ? QList{open} : QList{closed, open});
    whenOpen<QDialog>([accept](QDialog &dialog) {
        if (auto *const user = dialog.findChild<QLineEdit *>(u"user"_s)) {
            QTest::keyClicks(user, u"maeve"_s);
            QTest::keyClicks(dialog.findChild<QLineEdit *>(u"password"_s), u"open sesame"_s);
        }
        pressIn(dialog, accept ? QStringList{u"Yes"_s, u"OK"_s} : QStringList{u"No"_s, u"Cancel"_s});
    });
    typeUrl(server->url(u"/secret"_s));
    press("send");
    waitForAnswer();
    QCOMPARE(m_dialogs, QStringList(server == &m_plain ? u"Sign in"_s : u"Connection is not secure"_s));
    QVERIFY2(status().startsWith(statusText), qPrintable(status())); // newer releases of Qt add the reason
    const QByteArrayList arrived = server->arrived();
    QVERIFY(arrives.isEmpty() ? arrived.isEmpty()
                              : !arrived.isEmpty() && arrived.constLast().contains(arrives));
    verifyTrace(server->url(u"/secret"_s), u"GET"_s, code, errorCode);
    if (isCaptured() && code != 0)
        verifyShown(*traces()[0].response);
}

void RestClientTest::downloads()
{
    constexpr int size = 3'000'000;
    const QUrl url = m_demo.url(u"/binary?size=%1"_s.arg(size));
    const QString path = m_folder.filePath(u"binary"_s);
    typeUrl(url);
    chooseFile(path);
    press("download");
    waitForAnswer();
    QCOMPARE(status(), u"Saved 3000000 bytes"_s);
    QCOMPARE(textOf(path).size(), size);
    verifyTrace(url, u"GET"_s, 200);
    if (isCaptured())
        QCOMPARE(traces()[0].response->body, textOf(path));
}

void RestClientTest::cancelsADownload()
{
    const QString path = m_folder.filePath(u"half"_s);
    // Qt reports progress with data only, and not within 100 ms: more arrives until the dialog shows some.
    QByteArrayList parts(2'000, QByteArray(1'000, 'x'));
    parts.prepend("HTTP/1.1 200 OK\r\nContent-Length: 2000000\r\n\r\n");
    m_plain.answer("/half", {{parts, false}});
    typeUrl(m_plain.url(u"/half"_s));
    chooseFile(path);
    whenOpen<QProgressDialog>([](QProgressDialog &dialog) { pressIn(dialog, {u"Cancel"_s}); },
                              [this](const QProgressDialog &dialog) {
                                  m_plain.release();
                                  return dialog.value() > 0 && dialog.maximum() == 1953;
                              });
    press("download");
    waitForAnswer();
    QCOMPARE(status(), u"Not saved: Operation canceled"_s);
    QCOMPARE(m_dialogs.size(), 2);
    QVERIFY(!QFile::exists(path));
    verifyTrace(m_plain.url(u"/half"_s), u"GET"_s, 200, Quorvix::NSURLErrorCancelled);
    if (isCaptured()) {
        const QByteArray body = traces()[0].response->body.value_or(QByteArray());
        QVERIFY(!body.isEmpty() && body.count('x') == body.size());
    }
}

class RestClientPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "HostDriver.json")

public:
    QObject *create(const QString &, const QString &) override { return start<RestClientTest>(); }
};

#include "RestClientTest.moc"
