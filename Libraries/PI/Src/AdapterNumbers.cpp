#include "AdapterRegistry.h"
#include "ReplaceFile.h"

#include <PI/AdapterNumbers.h>
#include <TLX/RegularFile.h>
#include <TLX/TrustedFile.h>

#include <algorithm>
#include <locale>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace PI {
namespace {

constexpr char HEADING[] =
    "# The numbers of this host's adapters: number, PCI segment, bus, device, function, host.\n";

/** The file that could not be restored and so must not be written; empty when there is none. */
struct CLeftAlone
{
    std::mutex m_Lock;
    std::filesystem::path m_File;
};

CLeftAlone& leftAlone()
{
    // Never destroyed, like the numbers themselves.
    static CLeftAlone& instance = *new CLeftAlone;
    return instance;
}

/**
 * Returns false for a line without a number and a location, or when one of them occurs for the second time.
 */
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

struct CReadNumbers
{
    AdapterNumbers m_Numbers;
    int m_FirstDamaged = 0; ///< its line; 0: none
};

/** The end of a torn file may still look like a good line, with a part of the host's name. So it is kept. */
CReadNumbers read(const std::string& content)
{
    CReadNumbers result;
    std::istringstream lines(content);
    std::string line;
    int number = 0;
    const auto damagedHere = [&] {
        if (result.m_FirstDamaged == 0)
            result.m_FirstDamaged = std::max(number, 1);
    };
    while (std::getline(lines, line)) {
        ++number;
        if (!line.empty() && line.front() != '#' && !addLine(line, result.m_Numbers))
            damagedHere();
    }
    if (!content.ends_with('\n'))
        damagedHere();
    return result;
}

/** Copies the file, whose content is `content`, to a free name beside it and returns that name. */
std::optional<std::filesystem::path> setAside(const std::filesystem::path& file, const std::string& content)
{
    constexpr int MOST_NAMES = 1000;
    const auto target = TLX::Misc::trustedTarget(file);
    for (int number = 1; target && number <= MOST_NAMES; ++number) {
        std::filesystem::path name = *target;
        name += number == 1 ? ".damaged" : ".damaged" + std::to_string(number);
        // An earlier run may have made this copy and then failed to write.
        if (TLX::Misc::readTrustedFile(name) == content)
            return name;
        std::error_code error;
        if (std::filesystem::copy_file(*target, name, error))
            return name;
        if (error != std::errc::file_exists)
            break;
    }
    return std::nullopt;
}

std::optional<std::string> restore(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error) {
        CAdapterRegistry::Instance().Replace({});
        return std::nullopt;
    }
    if (!TLX::Misc::trustedTarget(file))
        throw std::runtime_error(file.string() + " is a link that belongs to another user");
    const auto content = TLX::Misc::readTrustedFile(file);
    if (!content)
        throw std::runtime_error(
            file.string() + (TLX::Misc::isSpecialFile(file) ? " is no regular file" : " cannot be read"));
    CReadNumbers found = read(*content);
    CAdapterRegistry::Instance().Replace(std::move(found.m_Numbers));
    if (found.m_FirstDamaged == 0)
        return std::nullopt;
    const std::string damage = file.string() + " is damaged in line " + std::to_string(found.m_FirstDamaged);
    const auto name = setAside(file, *content);
    if (!name)
        throw std::runtime_error(damage + " and cannot be set aside");
    return damage + ". It was set aside as " + name->string() + ", and its good lines hold";
}

} // namespace

std::optional<std::string> restoreAdapterNumbers(const std::filesystem::path& file)
{
    const std::lock_guard guard(leftAlone().m_Lock);
    leftAlone().m_File = file;
    std::optional<std::string> damage = restore(file);
    leftAlone().m_File.clear();
    return damage;
}

void storeAdapterNumbers(const std::filesystem::path& file)
{
    const std::lock_guard guard(leftAlone().m_Lock);
    if (file == leftAlone().m_File)
        return;
    const std::string text = textOf(CAdapterRegistry::Instance().Numbers());
    if (TLX::Misc::readTrustedFile(file) != text && !replaceFile(file, text))
        throw std::runtime_error(file.string() + " cannot be written");
}

} // namespace PI
