// Measures the model of the request list: a keystroke of search over 100,000 traces, beside Qt's own filter
// and SQLite, and an exchange while the list is open.

#include "Quorvix/QXRequestListViewModel.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/ListSamples.h"
#include "Benchmarks/Report.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QStringListModel>
#include <QtCore/QThread>

#include <sqlite3.h>

#include <algorithm>
#include <vector>

using namespace Quorvix;
using namespace ListSamples;
using namespace Qt::StringLiterals;
using Contest::require;

namespace {

using Clock = std::chrono::steady_clock;

/// What a user types, letter by letter.
constexpr const char *typed = "products/99";

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

    const QString statusCode = u"200"_s; // the only key that a status code contains
    QStringList keys;
    for (const char *end = typed; *end; ++end)
        keys += QString::fromLatin1(typed, end + 1 - typed);
    keys << u"e"_s << statusCode << u"zzz"_s << u"PAGE=3"_s;
    // What is measured is a sequence of keys, because the text before decides what a search can reuse.
    struct Times
    {
        std::vector<double> ours;
        std::vector<double> proxy;
        std::vector<double> database;
        int rows = 0;
    };
    std::vector<Times> times(std::size_t(keys.size()));
    for (int round = 0; round < Contest::rounds; ++round) {
        searchAll(model, {});
        proxy.setFilterFixedString({});
        for (qsizetype i = 0; i < keys.size(); ++i) {
            const QString &key = keys[i];
            Times &of = times[std::size_t(i)];
            of.ours.push_back(Contest::milliseconds([&] { searchAll(model, key); }));
            of.proxy.push_back(Contest::milliseconds([&] { proxy.setFilterFixedString(key); }));
            of.database.push_back(Contest::milliseconds([&] { of.rows = database.search(key.toUtf8()); }));
            require(of.rows == proxy.rowCount(), "the rows of SQLite");
            if (key != statusCode)
                require(of.rows == model.rowCount(), "the rows of a search");
        }
    }
    double slowest = 0;
    double ours = 0;
    double ofProxy = 0;
    double ofDatabase = 0;
    for (std::size_t i = 0; i < times.size(); ++i) {
        const double time = Contest::median(times[i].ours);
        slowest = std::max(slowest, time);
        ours += time / double(times.size());
        ofProxy += Contest::median(times[i].proxy) / double(times.size());
        ofDatabase += Contest::median(times[i].database) / double(times.size());
        std::printf("  %-12s %6d rows: %8.3f ms, QSortFilterProxyModel %8.3f, SQLite %8.3f\n",
                    qPrintable(keys[qsizetype(i)]), times[i].rows, time, Contest::median(times[i].proxy),
                    Contest::median(times[i].database));
    }
    for (const Report::Other &peer :
         {Report::Other{"QSortFilterProxyModel", ofProxy}, Report::Other{"SQLite LIKE", ofDatabase}})
        Report::add({.metric = "search 100,000 traces, a key on average",
                     .place = "main thread",
                     .unit = "ms",
                     .ours = ours,
                     .peer = peer,
                     .goal = "10 x the peer",
                     .goalAdvantage = 10});
    Report::add({.metric = "search 100,000 traces, the slowest key",
                 .place = "main thread",
                 .unit = "ms",
                 .ours = slowest,
                 .goal = "8 ms",
                 .goalValue = 8});
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
        recorder().complete(ids[i], Exchanges::shortResponse(), "{}"_ba, {});
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
    const auto row = [](const char *what, const std::vector<double> &ours, const std::vector<double> &peer) {
        return Report::Row{.metric = what,
                           .place = "main thread, two turns of the event loop included",
                           .unit = "us",
                           .ours = Contest::median(ours),
                           .peer = Report::Other{"list closed", Contest::median(peer)}};
    };
    Report::Row ofMany = row(metric, open, closed);
    ofMany.goal = "3 us";
    ofMany.goalValue = 3;
    Report::add(ofMany);
    // After a pause the caches are cold, which costs the closed list as much. So the goal is not for this.
    Report::add(row(single, openSingle, closedSingle));
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    measureExchanges(few, "an exchange of many, list open at 100", "an exchange alone, list open at 100");
    measureExchanges(many, "an exchange of many, list open at 100,000",
                     "an exchange alone, list open at 100,000");
    fillRecorder(many);
    measureSearch();
    return 0;
}
