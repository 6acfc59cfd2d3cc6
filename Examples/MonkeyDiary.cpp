#include "Examples/MonkeyDiary.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace {

constexpr unsigned keptEvents = 50;

std::array<std::array<char, 160>, keptEvents> lines;
std::atomic<unsigned> written = 0;

QMap<QByteArray, int> &kinds()
{
    static QMap<QByteArray, int> kinds;
    return kinds;
}

void put(const char *text) noexcept
{
    [[maybe_unused]] const auto length = ::write(STDERR_FILENO, text, std::strlen(text));
}

} // namespace

void MonkeyDiary::note(const char *kind, const QString &what)
{
    ++kinds()[kind];
    const unsigned number = written;
    auto &line = lines.at(number % keptEvents);
    std::snprintf(line.data(), line.size(), "%8u  %-12s %s", number + 1, kind, what.toUtf8().constData());
    written = number + 1;
}

void MonkeyDiary::print() noexcept
{
    const unsigned last = written;
    put("The last events:\n");
    for (unsigned i = last < keptEvents ? 0 : last - keptEvents; i < last; ++i) {
        put(lines.at(i % keptEvents).data());
        put("\n");
    }
}

QString MonkeyDiary::counts()
{
    QStringList counts;
    for (auto kind = kinds().cbegin(); kind != kinds().cend(); ++kind)
        counts += QStringLiteral("%1 %2").arg(QString::fromLatin1(kind.key())).arg(kind.value());
    return counts.join(QStringLiteral(", "));
}
