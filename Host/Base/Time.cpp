#include "Base/Time.h"

#include "Base/Platform.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>

namespace Host {

std::string utcText(std::uint64_t milliseconds)
{
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> time{std::chrono::milliseconds(milliseconds)};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    std::array<char, 64> buffer{};
    const int size = std::snprintf(
        buffer.data(), buffer.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return {buffer.data(), static_cast<std::size_t>(size)};
}

std::string localTimeText(std::uint64_t milliseconds)
{
    const std::tm time = Platform::localTime(static_cast<std::time_t>(milliseconds / MILLISECONDS_A_SECOND));
    std::array<char, 64> buffer{};
    return {buffer.data(), std::strftime(buffer.data(), buffer.size(), "%Y-%m-%d %H:%M:%S", &time)};
}

std::string timeOfDayText(std::uint64_t milliseconds)
{
    constexpr std::size_t date = 11;
    return localTimeText(milliseconds).substr(date);
}

} // namespace Host
