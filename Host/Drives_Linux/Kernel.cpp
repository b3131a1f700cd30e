#include "Drives_Linux/Kernel.h"

#include "Base/Platform.h"
#include "Base/Text.h"

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include <sys/utsname.h>

namespace Host::Platform {
namespace {

/** Older kernels do not tell the disks of controllers apart that share a namespace. */
constexpr std::pair<std::uint64_t, std::uint64_t> OLDEST_KERNEL = {4, 15};

constexpr std::string_view DRIVER = "nvme";

/** The number at the beginning of `text`. It is removed from `text`. 0 when there is none. */
std::uint64_t takeNumber(std::string_view& text)
{
    const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto number = parseNumber(text.substr(0, length), 10);
    text.remove_prefix(length);
    return number.value_or(0);
}

} // namespace

bool isSupportedKernel(std::string_view release)
{
    const std::uint64_t major = takeNumber(release);
    if (!release.empty())
        release.remove_prefix(1);
    return std::pair(major, takeNumber(release)) >= OLDEST_KERNEL;
}

System runningSystem()
{
    utsname names{};
    if (uname(&names) != 0)
        return {"Linux", false};
    return {std::string(names.sysname) + " " + names.release, isSupportedKernel(names.release)};
}

std::string_view systemRemedy()
{
    return "Use Linux 4.15 or newer.";
}

std::string_view driverName()
{
    return DRIVER;
}

bool isDriverThere()
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::path("/sys/bus/pci/drivers") / DRIVER, error);
}

} // namespace Host::Platform
