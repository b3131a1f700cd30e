#include <TLX/UtcText.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace TLX::Misc {

std::string utcText(std::uint64_t instant)
{
    using namespace std::chrono;
    constexpr std::uint64_t end =
        milliseconds(sys_days(year(10'000) / January / 1).time_since_epoch()).count();
    const sys_time<milliseconds> time{milliseconds(std::min(instant, end - 1))};
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss<milliseconds> clock{time - day};
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text.data();
}

} // namespace TLX::Misc
