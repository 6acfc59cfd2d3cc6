#include "Platform/HTTPHeaderName.h"
#include "Platform/MainActor.h"
#include "Platform/NSHTTPURLResponse.h"
#include "Platform/NSNotificationCenter.h"
#include "Platform/ObjectRuntime.h"
#include "Platform/ShortText.h"
#include "Platform/URLRequest.h"
#include "Platform/URLText.h"
#include "Platform/UTF8Text.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <thread>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

using Sender = int(int);

int twice(int value)
{
    return value * 2;
}

int negative(int value)
{
    return -value;
}

} // namespace

class PlatformTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exchangeSwapsWhatBothSelectorsRun();
    void exchangeRefusesWhatWouldCrash();
    void sendersNeverSeeHalfAnExchange();
    void observersHearOnlyTheirNameAndOnlyWhileTheyLive();
    void observerMayLeaveDuringThePost();
    void tasksRunInOrderOnTheApplicationsThread();
    void tasksKeepTheirPlaceAmongEvents();
    void headerNamesIgnoreCaseInRequests();
    void textIsLostNowhere_data();
    void textIsLostNowhere();
    void longTextIsCutBetweenCharacters_data();
    void longTextIsCutBetweenCharacters();
    void namesConsistOfWords();
    void headerNamesHaveTheirUsualSpelling_data();
    void headerNamesHaveTheirUsualSpelling();
    void statusText();
};

void PlatformTest::exchangeSwapsWhatBothSelectorsRun()
{
    ObjectClass numbers;
    Method *const first = numbers.addMethod<Sender>("twice:", &twice);
    Method *const second = numbers.addMethod<Sender>("negative:", &negative);
    QCOMPARE(numbers.addMethod<Sender>("twice:", &negative), nullptr);
    QCOMPARE(class_getInstanceMethod(numbers, "negative:"), second);
    QCOMPARE(numbers.implementation<Sender>(first)(3), 6);

    QVERIFY(method_exchangeImplementations(first, second));
    QCOMPARE(numbers.implementation<Sender>(first)(3), -3);
    QCOMPARE(numbers.implementation<Sender>(second)(3), 6);
}

void PlatformTest::exchangeRefusesWhatWouldCrash()
{
    ObjectClass numbers;
    ObjectClass others;
    Method *const integer = numbers.addMethod<Sender>("twice:", &twice);
    Method *const real = numbers.addMethod<double(double)>("half:", [](double value) { return value / 2; });
    Method *const foreign = others.addMethod<Sender>("negative:", &negative);
    for (Method *other : {class_getInstanceMethod(numbers, "missing:"), real, foreign})
        QVERIFY(!method_exchangeImplementations(integer, other));
    QCOMPARE(numbers.implementation<Sender>(integer)(4), 8);
}

void PlatformTest::sendersNeverSeeHalfAnExchange()
{
    // A replacement that calls the other selector would call itself if it saw only half of the exchange.
    static ObjectClass numbers;
    static thread_local int depth = 0;
    static std::atomic<int> deepest = 0;
    static const Method *original = nullptr;
    static const Method *replaced = nullptr;
    original = numbers.addMethod<Sender>("run:", [](int value) { return value; });
    replaced = numbers.addMethod<Sender>("hooked:", [](int value) {
        ++depth;
        deepest = std::max(deepest.load(), depth);
        const int result = depth > 8 ? value : numbers.implementation<Sender>(replaced)(value);
        --depth;
        return result;
    });
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> senders;
    senders.reserve(3);
    for (int i = 0; i < 3; ++i) {
        senders.emplace_back([&] {
            while (!stop)
                wrong += numbers.implementation<Sender>(original)(7) != 7;
        });
    }
    QVERIFY(method_exchangeImplementations(class_getInstanceMethod(numbers, "run:"),
                                           class_getInstanceMethod(numbers, "hooked:")));
    QTRY_COMPARE(deepest.load(), 1);
    stop = true;
    for (auto &sender : senders)
        sender.join();
    QCOMPARE(wrong.load(), 0);
    QCOMPARE(deepest.load(), 1);
}

void PlatformTest::observersHearOnlyTheirNameAndOnlyWhileTheyLive()
{
    auto &center = NSNotificationCenter::defaultCenter();
    QStringList heard;
    const auto first = center.addObserver(u"a"_s, [&] { heard.append(u"first"_s); });
    {
        const auto second = center.addObserver(u"a"_s, [&] { heard.append(u"second"_s); });
        center.post(u"a"_s);
        center.post(u"b"_s);
    }
    center.post(u"a"_s);
    QCOMPARE(heard, QStringList({u"first"_s, u"second"_s, u"first"_s}));
}

void PlatformTest::observerMayLeaveDuringThePost()
{
    auto &center = NSNotificationCenter::defaultCenter();
    int calls = 0;
    NSNotificationObserver second;
    const auto first = center.addObserver(u"leave"_s, [&] { second = {}; });
    second = center.addObserver(u"leave"_s, [&] { ++calls; });
    center.post(u"leave"_s);
    QCOMPARE(calls, 0);
}

void PlatformTest::tasksRunInOrderOnTheApplicationsThread()
{
    QList<int> order;
    bool elsewhere = false;
    std::thread([&] {
        for (int i = 0; i < 100; ++i) {
            MainActor::schedule([&order, &elsewhere, i] {
                order.append(i);
                elsewhere |= !MainActor::isCurrent();
            });
        }
    }).join();
    QVERIFY(order.isEmpty());
    QTRY_COMPARE(order.size(), 100);
    QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
    QVERIFY(!elsewhere);
}

/// Several tasks share an event, which the host must not notice.
void PlatformTest::tasksKeepTheirPlaceAmongEvents()
{
    QStringList order;
    const auto schedule = [&](const QString &name) {
        MainActor::schedule([&order, name] { order.append(name); });
    };
    const auto post = [&](const QString &name) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [&order, name] { order.append(name); }, Qt::QueuedConnection);
    };
    schedule(u"first"_s);
    MainActor::schedule([&] {
        schedule(u"fourth"_s);
        post(u"last"_s);
    });
    schedule(u"second"_s);
    post(u"third"_s);
    QVERIFY(order.isEmpty());
    QTRY_VERIFY(order.endsWith(u"last"_s));
    QCOMPARE(order, QStringList({u"first"_s, u"second"_s, u"third"_s, u"fourth"_s, u"last"_s}));

    // An event loop in a task goes on with those that share its event.
    order.clear();
    MainActor::schedule([&] {
        QEventLoop loop;
        MainActor::schedule([&] { loop.quit(); });
        loop.exec();
        order.append(u"outer"_s);
    });
    schedule(u"inner"_s);
    QTRY_COMPARE(order, QStringList({u"inner"_s, u"outer"_s}));
}

void PlatformTest::headerNamesIgnoreCaseInRequests()
{
    URLRequest request(QUrl(u"http://host/"_s));
    QVERIFY(!request.allHTTPHeaderFields);
    request.setValue(u"text/html"_s, u"Accept"_s);
    request.addValue(u"image/png"_s, u"accept"_s);
    QCOMPARE(request.value(u"ACCEPT"_s), u"text/html, image/png"_s);
    request.setValue(u"*/*"_s, u"aCCept"_s);
    QCOMPARE(request.allHTTPHeaderFields->size(), 1);
}

void PlatformTest::textIsLostNowhere_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isExact");
    QTest::newRow("nothing") << ""_ba << u""_s << true;
    QTest::newRow("letters") << "a/é€😀"_ba << u"a/é€😀"_s << true;
    QTest::newRow("byte order mark") << "\xEF\xBB\xBF"
                                        "x"_ba
                                     << u"\uFEFFx"_s << true;
    QTest::newRow("cut off") << "caf\xC3"_ba << u"caf\uFFFD"_s << false;
    QTest::newRow("Latin-1") << "caf\xE9s"_ba << u"caf\uFFFDs"_s << false;
}

void PlatformTest::textIsLostNowhere()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, text);
    QFETCH(const bool, isExact);
    QCOMPARE(UTF8Text::replacing(bytes), text);
    QCOMPARE(UTF8Text::exact(bytes), isExact ? std::optional(text) : std::nullopt);
    const QString encoded = QString::fromLatin1(bytes.toPercentEncoding());
    QCOMPARE(percentDecoded(encoded), isExact ? text : encoded);
}

void PlatformTest::longTextIsCutBetweenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("beginning");
    QTest::addColumn<QString>("ends");
    QTest::newRow("longest") << u"abcdef"_s << u"abcdef"_s << u"abcdef"_s;
    QTest::newRow("too long") << u"abcdefg"_s << u"abcdef…"_s << u"abc…efg"_s;
    QTest::newRow("surrogates") << u"ab\U0001F600de\U0001F600gh"_s << u"ab\U0001F600de…"_s << u"ab…gh"_s;
    QTest::newRow("combined") << u"abe\u0301dee\u0301gh"_s << u"abe\u0301de…"_s << u"ab…gh"_s;
    const QString marks(100'000, u'\u0301');
    QTest::newRow("one huge character")
        << u"e"_s + marks << u"e"_s + marks.left(5) + u'…' << u"e"_s + marks.left(2) + u'…' + marks.left(3);
}

void PlatformTest::longTextIsCutBetweenCharacters()
{
    QFETCH(const QString, text);
    QTEST(ShortText::beginning(text, 6), "beginning");
    QTEST(ShortText::ends(text, 6), "ends");
}

void PlatformTest::namesConsistOfWords()
{
    for (const QString &words :
         {u"estimated|Delivery|Window2|In|Days"_s, u"HTTP|Server|URL"_s, u"X-|Data-|id"_s,
          u"snake_|case__|v1.|2"_s, u"lowercase"_s, u"über|Größe"_s, u"\U0001F600|A"_s, QString()})
        QCOMPARE(ShortText::wordsOfName(QString(words).remove(u'|')).join(u'|'), words);
}

void PlatformTest::headerNamesHaveTheirUsualSpelling_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<QByteArray>("spelled");

    const auto row = [](const char *name, const char *received, const char *spelled) {
        QTest::newRow(name) << QByteArray(received) << QByteArray(spelled);
    };

    row("one word", "age", "Age");
    row("words", "content-type", "Content-Type");
    row("an unknown name", "x-shop-2nd-basket", "X-Shop-2nd-Basket");
    row("the sender's spelling", "X-shopBasket", "X-shopBasket");
    row("the sender's capitals", "CONTENT-LENGTH", "CONTENT-LENGTH");
    row("odd hyphens", "-x--y-", "-X--Y-");
    row("nothing", "", "");
    QTest::newRow("a NUL behind a registered name") << "te\0x"_ba
                                                    << "Te\0x"_ba;
    row("the beginning of a registered name", "te-x", "Te-X");
    for (const char *name :
         {"A-IM", "Content-MD5", "Content-Type", "Cookie", "Set-Cookie", "DNT", "ETag", "SourceMap", "TE",
          "WWW-Authenticate", "X-Request-ID", "X-XSS-Protection", "Sec-WebSocket-Accept"}) {
        QTest::newRow(name) << QByteArray(name).toLower() << QByteArray(name);
        QTest::addRow("%s, shouted", name) << QByteArray(name).toUpper() << QByteArray(name);
    }
}

void PlatformTest::headerNamesHaveTheirUsualSpelling()
{
    QFETCH(const QByteArray, received);
    QTEST(HTTPHeaderName::usualSpelling(received), "spelled");
}

void PlatformTest::statusText()
{
    QCOMPARE(NSHTTPURLResponse::localizedStringForStatusCode(404), u"not found"_s);
    QCOMPARE(NSHTTPURLResponse::localizedStringForStatusCode(200), u"no error"_s);
    QCOMPARE(NSHTTPURLResponse::localizedStringForStatusCode(299), u"success"_s);
    QCOMPARE(NSHTTPURLResponse::localizedStringForStatusCode(-7), u"server error"_s);
}

QTEST_GUILESS_MAIN(PlatformTest)
#include "PlatformTest.moc"
