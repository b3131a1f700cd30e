#include "Base/FileText.h"
#include "Base/Platform.h"
#include "Base/Text.h"

#include <filesystem>
#include <iterator>
#include <system_error>

#include <time.h>
#include <unistd.h>

namespace Host::Platform {
namespace {

std::optional<double> processorSeconds()
{
    constexpr double nanosecond = 1e-9;
    timespec used{};
    if (clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used) != 0)
        return std::nullopt;
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * nanosecond;
}

/** The second number of the file is the count of resident pages. */
std::optional<std::uint64_t> residentBytes()
{
    const std::string text = readFile("/proc/self/statm").value_or("");
    const std::size_t start = text.find(' ') + 1;
    const auto pages = parseNumber(text.substr(start, text.find(' ', start) - start), 10);
    return pages ? std::optional(*pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))) : std::nullopt;
}

std::optional<std::uint64_t> openDescriptors()
{
    std::error_code error;
    const std::filesystem::directory_iterator all("/proc/self/fd", error);
    if (error)
        return std::nullopt;
    // One of them is that of this look.
    return static_cast<std::uint64_t>(std::distance(all, {})) - 1;
}

} // namespace

ProcessFigures processFigures()
{
    return {processorSeconds(), residentBytes(), openDescriptors()};
}

} // namespace Host::Platform
