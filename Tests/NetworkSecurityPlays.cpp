#include "Tests/NetworkPlays.h"

#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QHstsPolicy>
#include <QtNetwork/QNetworkCookie>
#include <QtNetwork/QNetworkCookieJar>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslError>

using namespace Qt::StringLiterals;

using Answer = ScriptedServer::Answer;
using Reply = QNetworkReply;
using Request = QNetworkRequest;
using Stage = NetworkStage;

void NetworkPlays::addCredentials()
{
    const std::pair<const char *, QStringList> passwords[] = {{"right", {u"right"_s}},
                                                              {"wrong", {u"wrong"_s}},
                                                              {"right at last", {u"wrong"_s, u"right"_s}},
                                                              {"none", {}}};
    const QByteArray challenge =
        httpAnswer("401 Unauthorized", "who?", "WWW-Authenticate: Basic realm=\"here\"\r\n");
    const QByteArray proxyChallenge = httpAnswer("407 Proxy Authentication Required", "who?",
                                                 "Proxy-Authenticate: Basic realm=\"proxy\"\r\n");
    for (const auto &[name, list] : passwords) {
        for (const bool isProxy : {false, true}) {
            row(QByteArray(isProxy ? "proxy password, " : "password, ") + name, [=,
                                                                                 list = list](Stage &stage) {
                QList<ScriptedServer::Answer> answers(std::max<qsizetype>(1, list.size()),
                                                      {{isProxy ? proxyChallenge : challenge}, false});
                if (list.contains(u"right"_s))
                    answers.append({{httpAnswer("200 OK", "welcome")}, false});
                stage.server.answer("/", answers);
                auto tell = [list = list](QAuthenticator *authenticator) mutable {
                    if (list.isEmpty())
                        return;
                    authenticator->setUser(u"me"_s);
                    authenticator->setPassword(list.takeFirst());
                };
                if (isProxy) {
                    stage.manager->setProxy({QNetworkProxy::HttpProxy, u"127.0.0.1"_s, stage.server.port()});
                    QObject::connect(stage.manager, &QNetworkAccessManager::proxyAuthenticationRequired,
                                     &stage.diary,
                                     [tell](const QNetworkProxy &, QAuthenticator *a) mutable { tell(a); });
                } else {
                    QObject::connect(stage.manager, &QNetworkAccessManager::authenticationRequired,
                                     &stage.diary, [tell](Reply *, QAuthenticator *a) mutable { tell(a); });
                }
                Request request(isProxy ? QUrl(u"http://host.invalid/"_s) : stage.server.url(u"/"_s));
                stage.get(request);
                stage.finish();
                // The manager remembers what was right.
                stage.get(request);
                stage.finish();
                request.setHeader(Request::ContentTypeHeader, u"text/plain"_s);
                stage.watch(stage.manager->post(request, QByteArray("question")));
            });
        }
    }
    row("password in the URL", [challenge](Stage &stage) {
        stage.server.answer("/", {{{challenge}}, {{httpAnswer("200 OK", "welcome")}}});
        QUrl url = stage.server.url(u"/"_s);
        url.setUserInfo(u"me:right"_s);
        stage.get(Request(url));
    });
    row("password, abort", [challenge](Stage &stage) {
        stage.server.answer("/", {{{challenge}}});
        stage.on("manager.authenticationRequired", [](Stage &, Reply *reply) { reply->abort(); });
        stage.get();
    });
    row("forgotten passwords and connections", [challenge](Stage &stage) {
        stage.server.answer("/", {{{challenge}}, {{httpAnswer("200 OK", "welcome")}}, {{challenge}}});
        QObject::connect(stage.manager, &QNetworkAccessManager::authenticationRequired, &stage.diary,
                         [](Reply *, QAuthenticator *authenticator) { authenticator->setUser(u"me"_s); });
        stage.get();
        stage.finish();
        stage.manager->clearAccessCache();
        stage.get();
        stage.finish();
        stage.manager->clearConnectionCache();
        stage.get();
    });
    row("cookies of the jar", [](Stage &stage) {
        stage.server.answer(
            "/", {{{httpAnswer("200 OK", "", "Set-Cookie: b=2\r\nSet-Cookie: c=3; Path=/no\r\n")}}});
        stage.manager->cookieJar()->setCookiesFromUrl({QNetworkCookie("a", "1")}, stage.server.url(u"/"_s));
        stage.get();
        stage.finish();
        Request request = stage.request();
        stage.get(request);
        stage.finish();
        request.setAttribute(Request::CookieLoadControlAttribute, Request::Manual);
        request.setAttribute(Request::CookieSaveControlAttribute, Request::Manual);
        stage.get(request);
    });
}

void NetworkPlays::addCertificates()
{
    const std::pair<const char *, Stage::Play> hosts[] = {
        {"not ignored",
         [](Stage &stage) {
             stage.get();
         }},
        {"ignored at once",
         [](Stage &stage) {
             stage.get()->ignoreSslErrors();
         }},
        {"ignored, asked by the reply",
         [](Stage &stage) {
             stage.on("sslErrors", [](Stage &, Reply *reply) { reply->ignoreSslErrors(); });
             stage.get();
         }},
        {"ignored, asked by the manager",
         [](Stage &stage) {
             stage.on("manager.sslErrors", [](Stage &, Reply *reply) { reply->ignoreSslErrors(); });
             stage.get();
         }},
        {"these errors ignored",
         [](Stage &stage) {
             Reply *const reply = stage.get();
             QObject::connect(reply, &Reply::sslErrors, reply,
                              qOverload<const QList<QSslError> &>(&Reply::ignoreSslErrors));
         }},
        {"these errors ignored, asked by the manager",
         [](Stage &stage) {
             QObject::connect(
                 stage.manager, &QNetworkAccessManager::sslErrors, &stage.diary,
                 [](Reply *reply, const QList<QSslError> &errors) { reply->ignoreSslErrors(errors); });
             stage.get();
         }},
        {"the right errors ignored at once",
         [](Stage &stage) {
             stage.get()->ignoreSslErrors(
                 {QSslError(QSslError::SelfSignedCertificate, ScriptedServer::certificate())});
         }},
        {"other errors ignored at once",
         [](Stage &stage) {
             stage.get()->ignoreSslErrors({QSslError(QSslError::HostNameMismatch)});
         }},
        {"trusted",
         [](Stage &stage) {
             Request request = stage.request();
             QSslConfiguration configuration = request.sslConfiguration();
             configuration.setCaCertificates({ScriptedServer::certificate()});
             request.setSslConfiguration(configuration);
             stage.get(request);
         }},
        {"not verified",
         [](Stage &stage) {
             Request request = stage.request();
             QSslConfiguration configuration = request.sslConfiguration();
             configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
             request.setSslConfiguration(configuration);
             stage.get(request);
             stage.finish();
             stage.manager->setStrictTransportSecurityEnabled(true);
             stage.get(request);
         }},
        {"another name",
         [](Stage &stage) {
             Request request = stage.request();
             request.setPeerVerifyName(u"other"_s);
             stage.get(request)->ignoreSslErrors();
         }},
        {"set later",
         [](Stage &stage) {
             Reply *const reply = stage.get();
             reply->ignoreSslErrors();
             QSslConfiguration configuration = reply->sslConfiguration();
             configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
             reply->setSslConfiguration(configuration);
         }},
        {"connected before",
         [](Stage &stage) {
             stage.manager->connectToHostEncrypted(u"127.0.0.1"_s, stage.server.port());
             stage.get()->ignoreSslErrors();
         }},
    };
    for (const auto &[name, host] : hosts) {
        secureRow(QByteArray("certificate, ") + name, [host = host](Stage &stage) {
            stage.server.answer("/", {{{httpAnswer("200 OK", "secret")}}});
            host(stage);
            stage.finish();
        });
    }
    for (const char *moment : {"sslErrors", "manager.sslErrors", "encrypted", "manager.encrypted"}) {
        const std::pair<const char *, Stage::Act> acts[] = {
            {"abort",
             [](Stage &, Reply *reply) {
                 reply->abort();
             }},
            {"deleteLater",
             [](Stage &, Reply *reply) {
                 reply->deleteLater();
             }},
            {"describe",
             [](Stage &s, Reply *reply) {
                 s.diary.describe(*reply);
             }},
            {"nested loop",
             [](Stage &s, Reply *) {
                 s.until([turns = 3]() mutable { return --turns < 0; });
             }},
        };
        for (const auto &[name, act] : acts) {
            secureRow(QByteArray("certificate, ") + moment + ": " + name, [moment, act = act](Stage &stage) {
                stage.on(moment, act);
                Reply *const reply = stage.get();
                if (qstrcmp(moment + qstrlen(moment) - 9, "encrypted") == 0)
                    reply->ignoreSslErrors();
            });
        }
    }
    row("strict transport security", [](Stage &stage) {
        stage.manager->setStrictTransportSecurityEnabled(true);
        stage.manager->addStrictTransportSecurityHosts(
            {QHstsPolicy(QDateTime::currentDateTime().addDays(1), {}, u"host.invalid"_s)});
        stage.get(Request(QUrl(u"http://host.invalid:80/"_s)));
    });
}
