// Checks what the host gets after any edit of a held response, and that any set of rules can be listed.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointEditorModel.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/ReplyOutcome.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

struct Delivered
{
    std::optional<QByteArray> body;
    NSURLResponsePtr response;
};

/// The number that a text spells, with one sign and ASCII digits only.
std::optional<qint64> simpleStatus(const QString &text)
{
    static const QRegularExpression shape(u"\\A[+-]?[0-9]+\\z"_s);
    bool fits = false;
    const qint64 status = text.toLongLong(&fits);
    return shape.match(text).hasMatch() && fits ? std::optional(status) : std::nullopt;
}

void checkRules(const QList<QByteArray> &lines)
{
    QXBreakpointStore store;
    for (const QByteArray &line : lines) {
        const QUrl url = QUrl::fromEncoded(line);
        const auto key = QXBreakpointKey::make(url, line.isEmpty() ? std::nullopt
                                                                   : std::optional(QString::fromUtf8(line)));
        check(key && !key->path.isEmpty(), "a URL has a key");
        store.insert(*key);
        check(store.contains(*QXBreakpointKey::make(QUrl(url), key->method)), "a key is found again");
    }
    const QList<QXBreakpointKey> sorted = store.sortedRules();
    check(QXBreakpointStore::Rules(sorted.cbegin(), sorted.cend()) == store.rules() &&
              sorted.size() == store.rules().size(),
          "every rule is listed once");
    check(store.sortedRules() == sorted, "the order is always the same");
    for (const QXBreakpointKey &key : sorted)
        store.remove(key);
    check(store.rules().isEmpty(), "every rule can be removed");
}

void checkHeaders(const NSHeaderFields &before, const NSHeaderFields &after,
                  std::optional<qsizetype> bodySize)
{
    NSHeaderFields expected = before;
    if (bodySize) {
        expected.insert_or_assign(u"Content-Length"_s, QString::number(*bodySize));
        if (before.contains(u"Content-Encoding"_s))
            expected.insert_or_assign(u"Content-Encoding"_s, u"identity"_s);
    }
    check(after == expected, "only the size and the encoding change");
}

/// Edits the body as a user does: each edit has a position, a length and a text.
QString edited(QXBreakpointEditorModel &model, const QList<std::pair<QByteArray, QByteArray>> &edits)
{
    QString expected = model.bodyText();
    for (const auto &[place, text] : edits) {
        const qsizetype position = qBound(qsizetype(0), qsizetype(place.toInt()), expected.size());
        const qsizetype removed = qBound<qsizetype>(0, place.size(), expected.size() - position);
        const QString added = ReplyOutcome::fieldText(text);
        model.document()->replace(position, removed, added);
        expected.replace(position, removed, added);
        check(model.bodyText() == expected, "an edit replaces a part of the body");
    }
    return expected;
}

void checkRelease(FuzzParts &parts)
{
    auto &center = QXBreakpointCenter::shared();
    const bool continues = parts.take() == "continue";
    const QUrl url = QUrl::fromEncoded(parts.take());
    const qint64 status = parts.take().toLongLong();
    const QString typed = QString::fromUtf8(parts.take());
    NSHeaderFields fields;
    for (const auto &[name, value] : parts.takeFields())
        fields.insert_or_assign(ReplyOutcome::fieldText(name), ReplyOutcome::fieldText(value));
    const auto edits = parts.takeFields();
    const QByteArray rest = parts.takeRest();
    const auto body = rest.isEmpty() ? std::nullopt : std::optional(rest);

    QXBreakpointStore::shared().setRules({*QXBreakpointKey::make(url, u"GET"_s)});
    const auto response = std::make_shared<const NSHTTPURLResponse>(url, status, u"HTTP/1.1"_s, fields);
    QList<Delivered> delivered;
    check(center.check(URLRequest(url), u"id"_s, body, response, std::nullopt,
                       [&](const auto &data, const auto &got, const auto &) {
                           delivered.append({data, got});
                       }),
          "a response that has a rule is held");
    QXBreakpointEditorModel model(*center.activeBreakpoint());
    model.setStatusCodeText(typed);
    const QString text = edited(model, edits);
    if (continues)
        model.continueResponse();
    else
        model.applyChanges();
    model.applyChanges(); // a second press
    check(delivered.isEmpty(), "the host is called in a later turn");
    while (delivered.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
    check(delivered.size() == 1 && !center.activeBreakpoint(), "the host is called once");

    const auto got = std::dynamic_pointer_cast<const NSHTTPURLResponse>(delivered.first().response);
    check(got != nullptr, "the host gets a response");
    const auto expected = continues ? body : std::optional(text.toUtf8());
    check(delivered.first().body == expected, "the host gets the body as it is shown");
    if (!url.isValid())
        return;
    check(got->statusCode() == (continues ? status : simpleStatus(typed).value_or(status)),
          "the host gets the status");
    check(got->url() == url, "the host gets the URL");
    checkHeaders(fields, got->allHeaderFields(), expected ? std::optional(expected->size()) : std::nullopt);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static char name[] = "BreakpointEditFuzzer";
    static char *arguments[] = {name, nullptr};
    static int count = 1;
    static const QCoreApplication application(count, arguments);
    static const bool hasClock = [] {
        // A cooldown follows each release.
        QXBreakpointCenter::shared().setClock([now = std::chrono::steady_clock::time_point()]() mutable {
            return now += std::chrono::seconds(1);
        });
        return true;
    }();
    check(hasClock, "the clock is set");
    FuzzParts parts(view(data, size));
    checkRules(parts.take().split('\n'));
    checkRelease(parts);
    return 0;
}
