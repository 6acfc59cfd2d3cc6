// Measures the request list over 100,000 traces: a keystroke of search, a new record, opening and scrolling,
// beside Qt's own filter and list, and SQLite.

#include "Tests/ScreenDriver.h"

#include "Quorvix/QXRequestListViewModel.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"

#include <QtCore/QSettings>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QStandardPaths>
#include <QtCore/QStringListModel>
#include <QtCore/QThread>
#include <QtGui/QStandardItemModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QListView>

#include <sqlite3.h>

#include <algorithm>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int few = 100;
constexpr int many = 100'000;
constexpr QSize phone(390, 844);
constexpr QSize tablet(820, 1180);
/// What a user types, letter by letter.
constexpr const char *typed = "products/99";

QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

/// The URLs of an app that talks to three hosts, mixed as they come.
QString urlText(int number)
{
    static const QStringList forms{u"https://api.example.com/v1/products/%1?page=%2"_s,
                                   u"https://images.example.net/thumbnails/%1/%2.webp"_s,
                                   u"https://api.example.com/v1/customers/%1/orders?state=open&limit=%2"_s,
                                   u"https://api.example.com/v1/products/%1/reviews?sort=newest&page=%2"_s,
                                   u"https://metrics.example.org/collect/%1?session=5f1c9a&event=%2"_s};
    const auto form = qsizetype(quint32(number) * 2654435761U >> 16) % forms.size();
    return forms[form].arg(number).arg(number % 7);
}

QString identifier(int number)
{
    return u"6BA7B810-9DAD-11D1-80B4-%1"_s.arg(number, 12, 10, '0'_L1);
}

const NSURLResponsePtr &response()
{
    static const NSURLResponsePtr made =
        NSHTTPURLResponse::create(QUrl(u"https://api.example.com/"_s), 200, u"HTTP/1.1"_s,
                                  {{u"Content-Type"_s, u"application/json"_s}});
    return made;
}

void fillRecorder(int count)
{
    recorder().clear();
    for (int i = 0; i < count; ++i) {
        recorder().record(identifier(i), URLRequest(QUrl(urlText(i))));
        recorder().complete(identifier(i), response(), "{}"_ba, {});
    }
}

// --- Searching
// ----------------------------------------------------------------------------------------------

/// SQLite with one row per trace, in memory.
class Database
{
public:
    Database()
    {
        require(sqlite3_open(":memory:", &m_database) == SQLITE_OK, "SQLite");
        execute("CREATE TABLE traces (text TEXT)");
        execute("BEGIN");
        sqlite3_stmt *const insert = prepared("INSERT INTO traces VALUES (?)");
        for (int i = 0; i < many; ++i) {
            const QByteArray text = urlText(i).toUtf8() + "\nGET";
            sqlite3_bind_text(insert, 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            require(sqlite3_step(insert) == SQLITE_DONE, "a row of SQLite");
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        execute("COMMIT");
        m_search = prepared("SELECT rowid FROM traces WHERE text LIKE ? ORDER BY rowid DESC");
    }
    ~Database()
    {
        sqlite3_finalize(m_search);
        sqlite3_close(m_database);
    }
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// The number of rows that contain a text; all of them are read.
    int search(const QByteArray &text)
    {
        const QByteArray pattern = '%' + text + '%';
        sqlite3_bind_text(m_search, 1, pattern.constData(), int(pattern.size()), SQLITE_TRANSIENT);
        std::vector<qint64> rows;
        while (sqlite3_step(m_search) == SQLITE_ROW)
            rows.push_back(sqlite3_column_int64(m_search, 0));
        sqlite3_reset(m_search);
        return int(rows.size());
    }

private:
    void execute(const char *statement)
    {
        require(sqlite3_exec(m_database, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
    }
    sqlite3_stmt *prepared(const char *text)
    {
        sqlite3_stmt *statement = nullptr;
        require(sqlite3_prepare_v2(m_database, text, -1, &statement, nullptr) == SQLITE_OK, text);
        return statement;
    }

    sqlite3 *m_database = nullptr;
    sqlite3_stmt *m_search = nullptr;
};

void searchAll(QXRequestListViewModel &model, const QString &text)
{
    model.setSearchText(text);
    while (model.isSearching())
        QCoreApplication::processEvents();
}

void measureSearch()
{
    QXRequestListViewModel model;
    QStringList texts;
    for (int i = many; i-- > 0;)
        texts += urlText(i) + u"\nGET"_s;
    QStringListModel list(texts);
    QSortFilterProxyModel proxy;
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy.setSourceModel(&list);
    Database database;

    const double first = Contest::milliseconds([&] { model.setSearchText(u"p"_s); });
    const double firstAll = first + Contest::milliseconds([&] { searchAll(model, u"p"_s); });
    std::printf("The very first key, before the texts are known: %.2f ms, all rows after %.2f ms\n", first,
                firstAll);

    QStringList keys;
    for (const char *end = typed; *end; ++end)
        keys += QString::fromLatin1(typed, end + 1 - typed);
    keys << u"e"_s << u"200"_s << u"zzz"_s << u"PAGE=3"_s;
    double slowest = 0;
    std::vector<double> sums(3);
    // What is measured is a sequence of keys, because the text before decides what a search can reuse.
    std::vector<std::vector<std::vector<double>>> all(3,
                                                      std::vector<std::vector<double>>(size_t(keys.size())));
    for (int round = 0; round < Contest::rounds; ++round) {
        searchAll(model, {});
        proxy.setFilterFixedString({});
        for (qsizetype i = 0; i < keys.size(); ++i) {
            const QString &key = keys[i];
            int found = 0;
            all[0][size_t(i)].push_back(Contest::milliseconds([&] { searchAll(model, key); }));
            all[1][size_t(i)].push_back(Contest::milliseconds([&] { proxy.setFilterFixedString(key); }));
            all[2][size_t(i)].push_back(
                Contest::milliseconds([&] { found = database.search(key.toUtf8()); }));
            if (key != u"200"_s) // the only one of them that a status code contains
                require(model.rowCount() == proxy.rowCount(), "the rows of a search");
            require(found == proxy.rowCount(), "the rows of SQLite");
        }
    }
    for (qsizetype i = 0; i < keys.size(); ++i) {
        for (size_t who = 0; who < 3; ++who)
            sums[who] += Contest::median(all[who][size_t(i)]);
        slowest = std::max(slowest, Contest::median(all[0][size_t(i)]));
        std::printf("  %-12s %8.3f ms, QSortFilterProxyModel %8.3f, SQLite %8.3f, %d rows\n",
                    qPrintable(keys[i]), Contest::median(all[0][size_t(i)]),
                    Contest::median(all[1][size_t(i)]), Contest::median(all[2][size_t(i)]), 0);
    }
    const auto count = double(keys.size());
    for (size_t who = 1; who < 3; ++who) {
        Report::add({"search 100,000 traces, a key on average",
                     "main thread",
                     "ms",
                     sums[0] / count,
                     Report::Other{who == 1 ? "QSortFilterProxyModel" : "SQLite LIKE", sums[who] / count},
                     {},
                     false,
                     "10 x either peer"});
    }
    Report::add(
        {"search 100,000 traces, the slowest key", "main thread", "ms", slowest, {}, {}, false, "8 ms"});
}

// --- The screen
// ---------------------------------------------------------------------------------------------

/// The inspector over an empty window of a host.
class Inspector
{
public:
    explicit Inspector(QSize size)
    {
        m_window.resize(size);
        m_window.show();
        QuorvixClient::shared().show();
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, [this] { ++m_frames; });
        rest();
    }
    ~Inspector() { QuorvixClient::shared().hide(); }
    Inspector(const Inspector &) = delete;
    Inspector &operator=(const Inspector &) = delete;

    QQuickItem *item(const char *name) { return ScreenDriver::find(m_window, name); }
    QQuickWindow &window() { return m_window; }
    int rows() { return item("QXRequestList")->property("count").toInt(); }

    /// How long the main thread works from an event to the end of the first frame for which a condition
    /// holds. Without the time in which it waits, because Qt delays a frame by 5 ms on a display without
    /// vertical synchronisation.
    template<typename Condition>
    double busyUntilFrame(const std::function<void()> &event, const Condition &isThere)
    {
        m_longestTurn = 0;
        double busy = Contest::milliseconds(event);
        QDeadlineTimer limit(20'000);
        for (bool holds = false; !limit.hasExpired();) {
            const int seen = m_frames;
            busy += turn();
            if (holds && m_frames != seen)
                return busy;
            holds = holds || isThere();
        }
        require(false, "a frame");
        return 0;
    }

    /// Goes on until no frame has been drawn for a while.
    void rest()
    {
        QElapsedTimer still;
        still.start();
        for (int seen = m_frames; still.elapsed() < 300;) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            QThread::usleep(200);
            if (std::exchange(seen, m_frames) != m_frames)
                still.restart();
        }
    }

    double turn()
    {
        QThread::usleep(100); // lets other threads work
        const double time = Contest::milliseconds([] { QCoreApplication::processEvents(); });
        m_longestTurn = std::max(m_longestTurn, time);
        return time;
    }
    [[nodiscard]] int frames() const { return m_frames; }
    /// The longest time without a return to the event loop, in milliseconds.
    [[nodiscard]] double longestTurn() const { return m_longestTurn; }
    void forgetTurns() { m_longestTurn = 0; }

    double open()
    {
        require(ScreenDriver::waitForRest(m_window, "QXFloatingButton"), "the button");
        const QPoint at = ScreenDriver::middle(*item("QXFloatingButton"));
        const double time = busyUntilFrame([&] { QTest::mouseClick(&m_window, Qt::LeftButton, {}, at); },
                                           [&] { return item("QXRequestRow") != nullptr; });
        rest();
        return time;
    }
    void close()
    {
        ScreenDriver::click(m_window, "QXCloseButton");
        require(QTest::qWaitFor([&] { return !item("QXRequestListView"); }), "the end of the list");
        rest();
    }

private:
    QQuickWindow m_window;
    int m_frames = 0;
    double m_longestTurn = 0;
};

double openListView()
{
    std::vector<double> times;
    for (int round = 0; round < 3; ++round) {
        times.push_back(Contest::milliseconds([] {
            QStandardItemModel model;
            QListView view;
            view.setUniformItemSizes(true);
            for (int i = many; i-- > 0;)
                model.appendRow(new QStandardItem(urlText(i)));
            view.setModel(&model);
            view.resize(phone);
            view.show();
            require(!view.grab().isNull(), "QListView");
        }));
    }
    return Contest::median(times);
}

void measureOpening(Inspector &inspector)
{
    std::vector<double> times;
    const double first = inspector.open();
    for (int round = 0; round < 5; ++round) {
        inspector.close();
        times.push_back(inspector.open());
    }
    const Report::Other peer{"QListView on a QStandardItemModel", openListView()};
    Report::add({"open the list at 100,000, the first time",
                 "main thread, click to first frame, software",
                 "ms",
                 first,
                 peer,
                 {},
                 false,
                 "50 ms"});
    Report::add({"open the list at 100,000 again",
                 "main thread, click to first frame, software",
                 "ms",
                 Contest::median(times),
                 peer,
                 {},
                 false,
                 "50 ms"});
}

void measureTyping(Inspector &inspector, const char *metric)
{
    ScreenDriver::click(inspector.window(), "QXSearchField");
    inspector.rest();
    std::vector<double> slowest;
    for (int round = 0; round < 5; ++round) {
        double longest = 0;
        for (const char *key = typed; *key; ++key) {
            const double time = inspector.busyUntilFrame([&] { QTest::keyClick(&inspector.window(), *key); },
                                                         [] { return true; });
            if (round == 0)
                std::printf("    key %c %8.2f ms, %d rows\n", *key, time, inspector.rows());
            longest = std::max(longest, time);
            inspector.rest();
        }
        slowest.push_back(longest);
        ScreenDriver::click(inspector.window(), "QXSearchClearButton");
        inspector.rest();
    }
    Report::add({metric,
                 "main thread, key to frame, software",
                 "ms",
                 Contest::median(slowest),
                 {},
                 {},
                 false,
                 "16 ms"});
}

void measureRecords(Inspector &inspector, const char *metric, const char *withFrame)
{
    static int number = 10 * many;
    std::vector<double> models;
    std::vector<double> frames;
    for (int i = 0; i < 15; ++i) {
        const URLRequest request(QUrl(urlText(++number)));
        double model = 0;
        frames.push_back(inspector.busyUntilFrame(
            [&] {
                model = Contest::milliseconds([&] {
                    recorder().record(identifier(number), request);
                    QCoreApplication::sendPostedEvents();
                });
            },
            [] { return true; }));
        models.push_back(model);
        inspector.rest();
    }
    Report::add(
        {metric, "main thread, without the frame", "ms", Contest::median(models), {}, {}, false, "1 ms"});
    Report::add({withFrame, "main thread, with the frame, software", "ms", Contest::median(frames)});
}

void measureScrolling(Inspector &inspector)
{
    QQuickItem *const list = inspector.item("QXRequestList");
    const QPoint bar(int(list->mapToScene(QPointF(list->width() - 5, 0)).x()), 0);
    const int top = int(list->mapToScene({}).y()) + 60;
    const int bottom = int(list->mapToScene(QPointF(0, list->height())).y()) - 10;
    const auto settleFrame = [&] {
        inspector.forgetTurns();
        const int seen = inspector.frames();
        for (QDeadlineTimer limit(200); inspector.frames() == seen && !limit.hasExpired();)
            inspector.turn();
        return inspector.longestTurn();
    };
    ScreenDriver::turnWheel(inspector.window(), QPoint(100, 400), 1);
    inspector.rest();
    std::vector<double> dragged;
    QTest::mousePress(&inspector.window(), Qt::LeftButton, {}, bar + QPoint(0, top));
    for (int y = top; y < bottom; y += 3) {
        const double moved =
            Contest::milliseconds([&] { QTest::mouseMove(&inspector.window(), bar + QPoint(0, y)); });
        dragged.push_back(moved + settleFrame());
    }
    QTest::mouseRelease(&inspector.window(), Qt::LeftButton, {}, bar + QPoint(0, bottom));
    require(list->property("contentY").toReal() > many * 20.0, "a drag of the scroll bar");
    inspector.rest();

    std::vector<double> flicked;
    QMetaObject::invokeMethod(list, "flick", Q_ARG(qreal, 0), Q_ARG(qreal, 8000));
    while (list->property("moving").toBool() && flicked.size() < 400)
        flicked.push_back(settleFrame());
    require(flicked.size() > 50, "a flick");
    const auto report = [](const char *metric, const std::vector<double> &times) {
        Report::add({metric,
                     "main thread, worst frame, software",
                     "ms",
                     *std::max_element(times.begin(), times.end()),
                     {},
                     {},
                     false,
                     "16 ms"});
        std::printf("    median %.2f ms of %d frames\n", Contest::median(times), int(times.size()));
    };
    report("drag the scroll bar through 100,000 rows", dragged);
    report("flick the list", flicked);
}

// --- Exchanges
// ----------------------------------------------------------------------------------------------

/// The main thread's time for each of several exchanges, in microseconds. The request and the response come
/// in turns of the event loop of their own; before each, the thread sleeps for a number of milliseconds.
double exchangeCost(int exchanges, unsigned long pause)
{
    static int number = 20 * many;
    std::vector<QString> ids;
    std::vector<URLRequest> requests;
    for (int i = 0; i < exchanges; ++i) {
        ids.push_back(identifier(++number));
        requests.emplace_back(QUrl(urlText(number)));
    }
    Clock::duration slept{};
    const auto sleep = [&] {
        if (pause == 0)
            return;
        const auto start = Clock::now();
        QThread::msleep(pause);
        slept += Clock::now() - start;
    };
    const auto start = Clock::now();
    for (size_t i = 0; i < ids.size(); ++i) {
        sleep();
        recorder().record(ids[i], requests[i]);
        QCoreApplication::processEvents();
        sleep();
        recorder().complete(ids[i], response(), "{}"_ba, {});
        QCoreApplication::processEvents();
    }
    return std::chrono::duration<double, std::micro>(Clock::now() - start - slept).count() / exchanges;
}

void measureExchanges(int size, const char *metric, const char *single)
{
    constexpr int burst = 5000;
    constexpr int singles = 20;
    constexpr unsigned long apart = 10; // milliseconds, longer than changes are collected
    fillRecorder(size);
    std::vector<double> closed;
    std::vector<double> open;
    std::vector<double> closedSingle;
    std::vector<double> openSingle;
    for (int round = 0; round < Contest::rounds; ++round) {
        closed.push_back(exchangeCost(burst, 0));
        closedSingle.push_back(exchangeCost(singles, apart));
        QXRequestListViewModel model;
        const int before = model.rowCount();
        open.push_back(exchangeCost(burst, 0));
        openSingle.push_back(exchangeCost(singles, apart));
        require(model.rowCount() == before + burst + singles, "rows of exchanges");
    }
    Report::add({metric,
                 "main thread, two turns of the event loop included",
                 "us",
                 Contest::median(open),
                 Report::Other{"list closed", Contest::median(closed)},
                 {},
                 false,
                 "3 us"});
    Report::add({single, "main thread, two turns of the event loop included", "us",
                 Contest::median(openSingle), Report::Other{"list closed", Contest::median(closedSingle)}});
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(u"QuorvixBenchmarks"_s);
    QCoreApplication::setApplicationName(u"ListBenchmark"_s);
    const QStringList parts = QCoreApplication::arguments().mid(1);
    const auto has = [&](const QString &part) {
        return parts.isEmpty() || parts.contains(part);
    };
    if (has(u"exchanges"_s)) {
        measureExchanges(few, "an exchange of many, list open at 100", "an exchange alone, list open at 100");
        measureExchanges(many, "an exchange of many, list open at 100,000",
                         "an exchange alone, list open at 100,000");
    }
    fillRecorder(many);
    if (has(u"search"_s))
        measureSearch();
    for (const bool isTablet : {false, true}) {
        if (!has(u"screen"_s))
            break;
        Inspector inspector(isTablet ? tablet : phone);
        if (isTablet)
            inspector.open();
        else
            measureOpening(inspector);
        measureTyping(inspector, isTablet ? "type a search at 100,000, slowest key, tablet"
                                          : "type a search at 100,000, slowest key, phone");
        if (isTablet)
            continue;
        measureRecords(inspector, "a new record at 100,000", "a new record at 100,000, with its frame");
        ScreenDriver::click(inspector.window(), "QXSearchField");
        for (const char *key = "page"; *key; ++key)
            QTest::keyClick(&inspector.window(), *key);
        inspector.rest();
        measureRecords(inspector, "a new record at 100,000 while searching",
                       "a new record at 100,000 while searching, with its frame");
        ScreenDriver::click(inspector.window(), "QXSearchClearButton");
        inspector.rest();
        measureScrolling(inspector);
    }
    return 0;
}
