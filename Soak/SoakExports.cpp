#include "Soak/SoakExports.h"

#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXSwiftModelExport.h"

#include <QtCore/QFile>
#include <QtCore/QIODevice>

#include <array>
#include <chrono>

namespace {

constexpr int interval = 100; // ms
/// What the recorder may keep before it is cleared.
constexpr qint64 mostReceived = 200'000'000;
/// Exports run on the main thread here, so only small ones of each kind do.
constexpr qsizetype largestExport = 2'000'000;

/// Takes a document and keeps only its size and its ends.
class DocumentSink final : public QIODevice
{
public:
    DocumentSink() { open(WriteOnly); }
    [[nodiscard]] bool isWhole() const { return m_first == '{' && m_last.trimmed().endsWith('}'); }

protected:
    qint64 readData(char * /*data*/, qint64 /*size*/) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        if (size > 0) {
            m_first = m_first == 0 ? *data : m_first;
            m_last = (m_last + QByteArray(data, size)).right(8);
        }
        return size;
    }

private:
    char m_first = 0;
    QByteArray m_last;
};

qsizetype sizeOf(const QXRequestTrace &trace)
{
    const qsizetype request = trace.body ? trace.body->size() : 0;
    return request + (trace.response && trace.response->body ? trace.response->body->size() : 0);
}

} // namespace

SoakExports::SoakExports(SoakLedger &ledger, quint64 seed) : m_ledger(ledger), m_random(seed)
{
    // The screens can clear it, too.
    m_observer = Quorvix::NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged, [this] {
        if (QXRequestRecorder::shared().requests().isEmpty())
            m_ledger.countClear();
    });
    startTimer(interval);
}

void SoakExports::clear()
{
    m_receivedAtClear = m_ledger.receivedBytes();
    QXRequestRecorder::shared().clear();
}

void SoakExports::timerEvent(QTimerEvent * /*event*/)
{
    constexpr std::array<qsizetype, 3> budgets{0, 1'000'000, 50'000'000};
    if (!m_isActive)
        return;
    if (m_ledger.receivedBytes() - m_receivedAtClear > mostReceived || m_random.below(150) == 0)
        clear();
    if (m_random.below(150) == 0)
        QXRequestRecorder::shared().setBodyBudget(
            m_random.chance(60) ? std::nullopt : std::optional(m_random.oneOf(budgets)));
    if (m_random.below(200) == 0)
        exportAll();
    else if (m_random.chance(50))
        exportOne();
}

void SoakExports::exportAll()
{
    ++m_exports;
    DocumentSink sink;
    const QXTraceList requests = QXRequestRecorder::shared().requests();
    if (const auto error = QXArchiveWriter::archive(QXArchiveWriter::sourceOf(requests), sink))
        m_ledger.complain(QStringLiteral("the archive fails with ") + error->localizedDescription);
    else if (!sink.isWhole())
        m_ledger.complain(QStringLiteral("the archive is no whole document"));
}

void SoakExports::exportOne()
{
    const QXTraceList requests = QXRequestRecorder::shared().requests();
    if (requests.isEmpty())
        return;
    const QXRequestTrace &trace = requests[m_random.below(int(requests.size()))];
    if (sizeOf(trace) > largestExport)
        return;
    ++m_exports;
    switch (m_random.below(5)) {
    case 0:
        if (const auto file = QXArchiveWriter::exportTrace(trace, std::chrono::system_clock::now()))
            take(file.value());
        else
            m_ledger.complain(QStringLiteral("an archive of one exchange fails"));
        return;
    case 1:
        if (const auto file = QXApiMockGenerator::exportMock(trace))
            take(file.value());
        return;
    case 2:
        if (const auto file = QXSwiftModelExport::exportTrace(trace))
            take(file.value());
        return;
    case 3:
        if (const auto command = QXCurlCommandBuilder::build(trace);
            !command || !command.value().startsWith(QStringLiteral("curl")))
            m_ledger.complain(QStringLiteral("there is no cURL command"));
        return;
    default:
        if (!rawDetails(trace).contains(trace.url->toString()))
            m_ledger.complain(QStringLiteral("the raw details have no URL"));
    }
}

void SoakExports::take(const QUrl &file)
{
    if (!QFile::remove(file.toLocalFile()))
        m_ledger.complain(QStringLiteral("there is no exported file ") + file.toLocalFile());
}
