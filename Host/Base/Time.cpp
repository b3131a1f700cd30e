#include "Base/Time.h"

#include "Base/Platform.h"

#include <array>
#include <cstddef>
#include <ctime>

namespace Host {

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
