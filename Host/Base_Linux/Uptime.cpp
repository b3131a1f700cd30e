#include "Base/FileText.h"
#include "Base/Platform.h"
#include "Base/Time.h"

#include <ctime>

namespace Host::Platform {

std::optional<std::uint64_t> uptime()
{
    constexpr std::uint64_t nanoseconds = 1'000'000; // in one millisecond
    timespec time{};
    if (clock_gettime(CLOCK_BOOTTIME, &time) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(time.tv_sec) * MILLISECONDS_A_SECOND +
           static_cast<std::uint64_t>(time.tv_nsec) / nanoseconds;
}

std::string bootIdentity()
{
    const std::string text = readFile("/proc/sys/kernel/random/boot_id").value_or("");
    return text.substr(0, text.find('\n'));
}

} // namespace Host::Platform
