#include "Platform/NSISO8601DateFormatter.h"

#include <array>

namespace Quorvix {

namespace {

/// Writes a number with so many digits, at the place before @p end.
void writeDigits(char *end, int digits, unsigned number)
{
    for (; digits > 0; --digits, number /= 10)
        *--end = char('0' + number % 10);
}

} // namespace

QString NSISO8601DateFormatter::string(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<seconds>(time) - day);
    const int year = int(date.year());
    constexpr int latestYear = 9999;
    if (year < 0 || year > latestYear)
        return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02dZ", year, unsigned(date.month()),
                                 unsigned(date.day()), int(clock.hours().count()),
                                 int(clock.minutes().count()), int(clock.seconds().count()));
    // An archive has two or three dates for each exchange, and printf would take half of its time.
    std::array text = std::to_array("0000-00-00T00:00:00Z");
    writeDigits(&text[4], 4, unsigned(year));
    writeDigits(&text[7], 2, unsigned(date.month()));
    writeDigits(&text[10], 2, unsigned(date.day()));
    writeDigits(&text[13], 2, unsigned(clock.hours().count()));
    writeDigits(&text[16], 2, unsigned(clock.minutes().count()));
    writeDigits(&text[19], 2, unsigned(clock.seconds().count()));
    return QString::fromLatin1(text.data(), text.size() - 1);
}

} // namespace Quorvix
