#include "Tests/NetworkPlays.h"

#include <QtCore/QTimer>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QHstsPolicy>
#include <QtNetwork/QNetworkCookie>
#include <QtNetwork/QNetworkCookieJar>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QSslError>

#include <algorithm>

using namespace Qt::StringLiterals;

using Reply = QNetworkReply;
using Request = QNetworkRequest;
using Stage = NetworkStage;

namespace {

const QByteArrayList parts{"first line\r\nsecond", " half\nthird line\n", "the rest"};

/// Deletes the reply, unless it has already gone.
void deleteReply(Stage &, Reply *reply)
{
    delete reply;
}

} // namespace

void NetworkPlays::addInterventions()
{
    enum class Next { Stops, GoesOn, WentOn };
    struct Act
    {
        const char *name;
        Stage::Act act;
        Next next = Next::Stops;
    };
    const Act acts[] = {
        {"abort",
         [](Stage &, Reply *r) {
             r->abort();
         }},
        {"abort twice",
         [](Stage &, Reply *r) {
             r->abort(), r->abort();
         }},
        {"close",
         [](Stage &, Reply *r) {
             r->close();
         }},
        {"close, then abort",
         [](Stage &, Reply *r) {
             r->close(), r->abort();
         }},
        {"reparent, then abort",
         [](Stage &, Reply *r) {
             r->setParent(nullptr), r->abort();
         }},
        {"abort, then read",
         [](Stage &s, Reply *r) {
             r->abort(), s.diary.note("read", r->readAll());
         }},
        {"deleteLater",
         [](Stage &, Reply *r) {
             r->deleteLater();
         }},
        {"abort, then deleteLater",
         [](Stage &, Reply *r) {
             r->abort(), r->deleteLater();
         }},
        {"delete manager later",
         [](Stage &s, Reply *) {
             s.manager->deleteLater();
         }},
        {"read", [](Stage &s, Reply *r) { s.diary.note("read", r->readAll()); }, Next::GoesOn},
        {"set a bound", [](Stage &, Reply *r) { r->setReadBufferSize(1000); }, Next::GoesOn},
        {"name", [](Stage &, Reply *r) { r->setProperty("mine", 1), r->setObjectName(u"r"_s); },
         Next::GoesOn},
        {"reparent", [](Stage &, Reply *r) { r->setParent(nullptr); }, Next::GoesOn},
        {"describe", [](Stage &s, Reply *r) { s.diary.describe(*r); }, Next::GoesOn},
        {"nested loop", [](Stage &s, Reply *r) { s.until([r] { return r->isFinished(); }); }, Next::WentOn},
        {"another request",
         [](Stage &s, Reply *) {
             s.isParallel = true;
             s.get(u"/other"_s);
             s.finish();
         },
         Next::WentOn},
    };
    const QByteArrayList moments =
        QByteArray("GET at once;GET requestSent;GET metaDataChanged;GET readyRead;"
                   "GET downloadProgress;GET readChannelFinished;GET finished;"
                   "GET manager.finished;GET aboutToClose;GET redirected;POST at once;"
                   "POST uploadProgress;POST metaDataChanged;POST readyRead;"
                   "POST errorOccurred;POST finished")
            .split(';');
    for (const QByteArray &moment : moments) {
        for (const Act &act : acts) {
            // Whether Qt still reports that it has sent the request is a matter of luck.
            if (moment == "POST uploadProgress" && QByteArray(act.name).startsWith("delete"))
                continue;
            row(moment + ": " + act.name, [moment = moment, act](Stage &stage) {
                // How often Qt sends a request that is redirected is a matter of luck, so this one has no
                // parts.
                stage.server.answer("/start", {{{httpAnswer("302 Found", "", "Location: /end\r\n")}}});
                stage.server.answer("/end", {{{httpAnswer("200 OK", "end")}}});
                stage.server.answer("/", {inPartsWithLength("200 OK", parts)});
                stage.server.answer("/failure", {inPartsWithLength("500 Internal Server Error", parts)});
                stage.server.answer("/other", {{{httpAnswer("200 OK", "other")}}});
                const bool isGet = moment.startsWith("GET");
                const QByteArray signal = moment.mid(moment.indexOf(' ') + 1);
                goOnAtEachPart(stage);
                const Stage::Act usual = stage.act(signal);
                stage.each(signal, [signal, act, usual](Stage &s, Reply *reply) {
                    s.each(signal, usual);
                    if (usual && act.next == Next::WentOn)
                        usual(s, reply);
                    act.act(s, reply);
                    if (usual && act.next == Next::GoesOn)
                        usual(s, reply);
                });
                Request request = stage.request(signal == "redirected" ? u"/start"_s
                                                : isGet                ? u"/"_s
                                                                       : u"/failure"_s);
                request.setHeader(Request::ContentTypeHeader, u"text/plain"_s);
                Reply *const reply =
                    stage.watch(isGet ? stage.manager->get(request)
                                      : stage.manager->post(request, QByteArray("question")));
                if (signal == "at once")
                    act.act(stage, reply);
            });
        }
    }
    // Qt itself does not survive this in other slots.
    row("delete when finished", [](Stage &stage) {
        stage.on("finished", deleteReply);
        stage.get();
    });
    row("delete at once", [](Stage &stage) { deleteReply(stage, stage.get()); });
    row("delete in the middle", [](Stage &stage) {
        stage.server.answer("/", {inPartsWithLength("200 OK", parts)});
        goOnAtEachPart(stage);
        stage.on("readyRead",
                 [](Stage &s, Reply *reply) { QTimer::singleShot(0, &s.diary, [reply] { delete reply; }); });
        stage.get();
    });
}

void NetworkPlays::addRedirects()
{
    const std::pair<const char *, int> policies[] = {{"default", -1},
                                                     {"manual", Request::ManualRedirectPolicy},
                                                     {"safe", Request::NoLessSafeRedirectPolicy},
                                                     {"same origin", Request::SameOriginRedirectPolicy},
                                                     {"verified", Request::UserVerifiedRedirectPolicy}};
    const auto play = [](const QByteArray &status, const QString &target, int policy,
                         const QByteArray &verb) {
        return [=](Stage &stage) {
            QString location = target;
            location.replace(u"PORT"_s, QString::number(stage.server.port()));
            stage.server.answer("/", {{{"HTTP/1.1 " + status +
                                        " Moved\r\nSet-Cookie: a=1\r\nContent-Length: 4\r\nLocation: " +
                                        location.toUtf8() + "\r\n\r\nmove"}}});
            stage.server.answer("/end", {{{httpAnswer("200 OK", "end")}}});
            stage.each("redirected", [](Stage &s, Reply *r) {
                s.diary.describe(*r);
                if (r->request().attribute(Request::RedirectPolicyAttribute) ==
                    Request::UserVerifiedRedirectPolicy)
                    Q_EMIT r->redirectAllowed();
            });
            Request request = stage.request();
            request.setMaximumRedirectsAllowed(3);
            request.setHeader(Request::ContentTypeHeader, u"text/plain"_s);
            if (policy >= 0)
                request.setAttribute(Request::RedirectPolicyAttribute, policy);
            stage.watch(verb == "GET"
                            ? stage.manager->get(request)
                            : stage.manager->sendCustomRequest(request, verb, QByteArray("question")));
        };
    };
    for (const auto &[name, policy] : policies) {
        const QByteArray prefix = QByteArray("redirect, ") + name + ", ";
        for (const char *status : {"301", "302", "303", "307", "308", "300", "305"}) {
            row(prefix + status + " GET", play(status, u"/end"_s, policy, "GET"));
            row(prefix + status + " PUT", play(status, u"/end"_s, policy, "PUT"));
        }
        for (const QString &target : {u"http://127.0.0.2:PORT/end"_s, u"/end#here"_s, u"other:x"_s,
                                      u"file:///etc/passwd"_s, u"http://["_s, u""_s, u"/"_s, u"?again"_s}) {
            // Qt follows each further redirect one more time when the host has to allow it.
            if (policy != Request::UserVerifiedRedirectPolicy || target.size() > 6)
                row(prefix + "to " + target.toUtf8(), play("302", target, policy, "GET"));
        }
    }
    row("redirect, verified, not allowed", [](Stage &stage) {
        stage.server.answer("/", {{{httpAnswer("302 Found", "", "Location: /end\r\n")}}});
        stage.on("redirected", [](Stage &, Reply *reply) { reply->abort(); });
        stage.manager->setRedirectPolicy(Request::UserVerifiedRedirectPolicy);
        stage.get();
    });
    row("redirect, policy of the manager", [](Stage &stage) {
        stage.server.answer("/", {{{httpAnswer("302 Found", "", "Location: /end\r\n")}}});
        stage.manager->setRedirectPolicy(Request::ManualRedirectPolicy);
        stage.get();
    });
    secureRow("redirect, less safe", [](Stage &stage) {
        stage.server.answer("/", {{{httpAnswer("302 Found", "", "Location: http://127.0.0.1:1/\r\n")}}});
        stage.get()->ignoreSslErrors();
    });
}

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
