#include "Platform/NSISO8601DateFormatter.h"

namespace Quorvix {

QString NSISO8601DateFormatter::string(std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<seconds>(time) - day);
    return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()), unsigned(date.month()),
                             unsigned(date.day()), int(clock.hours().count()), int(clock.minutes().count()),
                             int(clock.seconds().count()));
}

} // namespace Quorvix
