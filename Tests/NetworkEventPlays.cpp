#include "Tests/NetworkPlays.h"

#include <QtCore/QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

using Reply = QNetworkReply;
using Request = QNetworkRequest;
using Stage = NetworkStage;

void NetworkPlays::addInterventions()
{
    enum class Next { Stops, GoesOn, WentOn };
    struct Act
    {
        const char *name;
        Next next;
        Stage::Act act;
    };
    QList<Act> acts;
    const auto add = [&acts](const char *name, Next next, const Stage::Act &act) {
        acts.append({name, next, act});
    };
    add("abort twice", Next::Stops, [](Stage &, Reply *r) { r->abort(), r->abort(); });
    add("close", Next::Stops, [](Stage &, Reply *r) { r->close(); });
    add("reparent, then abort", Next::Stops, [](Stage &, Reply *r) { r->setParent(nullptr), r->abort(); });
    add("abort, then read", Next::Stops,
        [](Stage &s, Reply *r) { r->abort(), s.diary.note("read", r->readAll()); });
    add("deleteLater", Next::Stops, [](Stage &, Reply *r) { r->deleteLater(); });
    add("delete manager later", Next::Stops, [](Stage &s, Reply *) { s.manager->deleteLater(); });
    add("set a bound", Next::GoesOn, [](Stage &, Reply *r) { r->setReadBufferSize(1000); });
    add("describe, then read", Next::GoesOn,
        [](Stage &s, Reply *r) { s.diary.describe(*r), s.diary.note("read", r->readAll()); });
    add("nested loop", Next::WentOn, [](Stage &s, Reply *r) { s.until([r] { return r->isFinished(); }); });
    add("another request", Next::WentOn, [](Stage &s, Reply *) {
        s.isParallel = true;
        s.get(u"/other"_s);
        s.finish();
    });
    const QByteArrayList moments =
        QByteArray("GET at once;GET requestSent;GET metaDataChanged;GET readyRead;"
                   "GET downloadProgress;GET readChannelFinished;GET finished;"
                   "GET manager.finished;GET aboutToClose;GET redirected;POST at once;"
                   "POST uploadProgress;POST metaDataChanged;POST readyRead;"
                   "POST errorOccurred;POST finished")
            .split(';');
    for (const QByteArray &moment : moments) {
        for (const Act &act : std::as_const(acts)) {
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
        stage.on("finished", [](Stage &, Reply *reply) { delete reply; });
        stage.get();
    });
    row("delete at once", [](Stage &stage) { delete stage.get(); });
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
        // Policies differ in which targets they allow; what a status means is the same for all that follow
        // it.
        for (const char *status : {"301", "302", "303", "307", "308", "300", "305"}) {
            if (policy < 0 || qstrcmp(status, "302") == 0)
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
