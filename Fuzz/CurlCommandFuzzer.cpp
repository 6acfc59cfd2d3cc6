// Checks that a shell splits a command into the same arguments that it was written with.

#include "FuzzCheck.h"

#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXRequestTrace.h"

#include "JSON/JSONWriter.h"

#include "Platform/URLText.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// Splits a command into words like a POSIX shell, as far as our commands need: quotes, backslashes, blanks.
QStringList wordsOf(QStringView command)
{
    QStringList words;
    QString word;
    bool isQuoted = false;
    bool hasWord = false;
    for (qsizetype i = 0; i < command.size(); ++i) {
        const QChar c = command[i];
        if (c == u'\'') {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (isQuoted) {
            word += c;
        } else if (c == u'\\') {
            check(++i < command.size(), "a backslash is followed by something");
            if (command[i] != u'\n') {
                word += command[i];
                hasWord = true;
            }
        } else if (c == u' ') {
            if (hasWord)
                words += std::exchange(word, {});
            hasWord = false;
        } else {
            check(c != u'\n', "a line ends only within quotes, or behind a backslash");
            word += c;
            hasWord = true;
        }
    }
    check(!isQuoted, "every quote is closed");
    return hasWord ? words << word : words;
}

QString withLineFeeds(QString text)
{
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}

/// The URL with brackets around the address of its host only, because curl takes others for a range.
QString withoutRanges(const QString &url)
{
    static const QRegularExpression toHost(u"\\A(?:[A-Za-z][A-Za-z0-9+.-]*:)?(?://[^/?#]*)?"_s);
    const QString host = toHost.match(url).captured();
    return host + url.sliced(host.size()).replace(u'[', u"%5B"_s).replace(u']', u"%5D"_s);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // NUL bytes separate a URL, a header's name and value, a body, and a method.
    const QList<QByteArray> parts = view(data, size).toByteArray().split('\0');
    URLRequest request(QUrl(QString::fromUtf8(parts.value(0))));
    if (parts.size() > 2)
        request.setValue(QString::fromUtf8(parts.value(2)), QString::fromUtf8(parts.value(1)));
    QXRequestTrace trace(u"id"_s, request);
    if (parts.size() > 3)
        trace.body = parts.value(3);
    if (parts.size() > 4)
        trace.method = QString::fromUtf8(parts.value(4));

    const auto command = QXCurlCommandBuilder::build(trace);
    if (!command || (trace.body && !isValidUtf8(*trace.body)))
        return 0;
    check(!command.value().contains(u'\r'), "no carriage return is left");

    QStringList expected{u"curl"_s, u"-X"_s, withLineFeeds(sentMethod(trace.method)),
                         withoutRanges(absoluteString(*trace.url))};
    const HTTPHeaderFields headers = trace.headers.value_or(HTTPHeaderFields());
    for (auto it = headers.cbegin(); it != headers.cend(); ++it)
        expected << u"-H"_s << withLineFeeds(it.key() + ": "_L1 + it.value());
    if (trace.body)
        expected << u"--data-raw"_s << withLineFeeds(QString::fromUtf8(*trace.body));
    check(wordsOf(command.value()) == expected, "the words are those that went in");
    return 0;
}
