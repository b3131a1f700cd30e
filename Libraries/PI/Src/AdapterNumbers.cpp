#include "AdapterRegistry.h"
#include "ReplaceFile.h"

#include <PI/AdapterNumbers.h>
#include <TLX/RegularFile.h>

#include <algorithm>
#include <locale>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace PI {
namespace {

constexpr char HEADING[] =
    "# The numbers of this host's adapters: number, PCI segment, bus, device, function, host.\n";

/** False for a line that names no number and location, or one of them for the second time. */
bool addLine(const std::string& line, AdapterNumbers& numbers)
{
    std::istringstream words(line);
    words.imbue(std::locale::classic());
    std::int32_t number = 0;
    AdapterLocation location{};
    words >> number;
    for (std::int32_t& part : location)
        words >> part;
    std::string hostName;
    std::getline(words >> std::ws, hostName);
    if (!words || number < 1)
        return false;
    auto& taken = numbers[hostName];
    const bool known = std::any_of(taken.begin(), taken.end(),
                                   [number](const auto& entry) { return entry.second == number; });
    return !known && taken.try_emplace(location, number).second;
}

std::string textOf(const AdapterNumbers& numbers)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << HEADING;
    for (const auto& [hostName, locations] : numbers)
        for (const auto& [location, number] : locations) {
            text << number;
            for (const std::int32_t part : location)
                text << ' ' << part;
            text << ' ' << hostName << '\n';
        }
    return text.str();
}

} // namespace

void restoreAdapterNumbers(const std::filesystem::path& file)
{
    AdapterNumbers numbers;
    std::error_code error;
    const bool there = std::filesystem::exists(file, error);
    if (there || error) {
        const std::optional<std::string> content = TLX::Misc::readRegularFile(file);
        if (!content)
            throw std::runtime_error(
                file.string() + (TLX::Misc::isSpecialFile(file) ? " is no regular file" : " cannot be read"));
        std::istringstream lines(*content);
        std::string line;
        for (int number = 1; std::getline(lines, line); ++number)
            if (!line.empty() && line.front() != '#' && !addLine(line, numbers))
                throw std::runtime_error(file.string() + " is damaged in line " + std::to_string(number));
    }
    CAdapterRegistry::Instance().Replace(std::move(numbers));
}

void storeAdapterNumbers(const std::filesystem::path& file)
{
    const std::string text = textOf(CAdapterRegistry::Instance().Numbers());
    if (TLX::Misc::readRegularFile(file) != text && !replaceFile(file, text))
        throw std::runtime_error(file.string() + " cannot be written");
}

} // namespace PI
