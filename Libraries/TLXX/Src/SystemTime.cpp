#include <TLXX/SystemTime.h>

#include <algorithm>
#include <chrono>

namespace TLXX {

void CSystemTime_Win::GetDate(std::uint64_t instant, std::int32_t& year, std::int32_t& month,
                              std::int32_t& day)
{
    using namespace std::chrono;
    constexpr milliseconds lastDay = sys_days(December / 31 / 9999).time_since_epoch();
    const milliseconds clamped(std::min(instant, static_cast<std::uint64_t>(lastDay.count())));
    const year_month_day date(floor<days>(sys_time<milliseconds>(clamped)));
    year = static_cast<int>(date.year());
    month = static_cast<std::int32_t>(static_cast<unsigned>(date.month()));
    day = static_cast<std::int32_t>(static_cast<unsigned>(date.day()));
}

} // namespace TLXX
