#include "ReplaceFile.h"
#include "Text.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <TLX/TrustedFile.h>

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace PI {

namespace {

constexpr std::int32_t WHOLE_FILE = -1;
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

struct Folder
{
    std::mutex m_Lock;
    boost::filesystem::path m_Path;
};

Folder& folder()
{
    // Never destroyed: a plug-in's worker may still read or write settings while the process ends.
    static Folder& instance = *new Folder;
    return instance;
}

boost::filesystem::path resolve(const boost::filesystem::path& fileName)
{
    if (fileName.is_absolute()) {
        return fileName;
    }
    const std::lock_guard guard(folder().m_Lock);
    return folder().m_Path / fileName;
}

/**
 * The lines of the file without their line feeds; nothing when it cannot be read to its end or is damaged.
 */
std::optional<std::vector<std::string>> readLines(const std::filesystem::path& path)
{
    const auto content = TLX::Misc::readTrustedFile(path);
    // A file whose writing was interrupted may contain zero bytes from the file system.
    if (!content || content->find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::istringstream stream(*content);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(std::move(line));
    }
    return lines;
}

/** The first line may begin with a byte-order mark, which belongs to no key. */
std::size_t markLength(std::string_view line)
{
    return line.starts_with(BYTE_ORDER_MARK) ? BYTE_ORDER_MARK.size() : 0;
}

/** Where the value of a key is: the line, and the value's position in it. */
struct CPlace
{
    std::size_t m_Line;
    std::size_t m_Begin;
    std::size_t m_Length;
};

std::optional<CPlace> find(std::string_view key, const std::vector<std::string>& lines)
{
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const std::string_view line = lines[index];
        const std::size_t start = index == 0 ? markLength(line) : 0;
        const auto separator = line.find('=', start);
        if (separator == std::string_view::npos) {
            continue;
        }
        const auto name = trim(line.substr(start, separator - start));
        if (name.empty() || name != key ||
            std::string_view(";#[").find(name.front()) != std::string_view::npos) {
            continue;
        }
        const std::size_t end = line.size() - (line.ends_with('\r') ? 1 : 0);
        return CPlace{index, separator + 1, end - separator - 1};
    }
    return std::nullopt;
}

std::string join(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

/** Whether this line would be read back as exactly this key and value. */
bool canBeWritten(const std::string& key, const std::string& value)
{
    const std::string line = key + '=' + value;
    const auto place = find(key, {line});
    return place && line.substr(place->m_Begin, place->m_Length) == value &&
           line.find_first_of(std::string_view("\n\0", 2)) == std::string::npos;
}

} // namespace

void CConfigFile::SetFolder(const boost::filesystem::path& path)
{
    const std::lock_guard guard(folder().m_Lock);
    folder().m_Path = path;
}

void CConfigFile::SetFileName(const boost::filesystem::path& fileName)
{
    m_FileName = fileName;
}

std::uint32_t CConfigFile::ReadKeyValue(const std::string& key, std::string& value, std::int32_t section,
                                        std::int32_t instance) const
{
    if (section != WHOLE_FILE || instance != WHOLE_FILE) {
        return ERR_GENERAL_FAILURE;
    }
    const auto lines = readLines(resolve(m_FileName).native());
    const auto place = lines ? find(key, *lines) : std::nullopt;
    if (!place) {
        return ERR_GENERAL_FAILURE;
    }
    value = (*lines)[place->m_Line].substr(place->m_Begin, place->m_Length);
    return ERR_SUCCESS;
}

std::uint32_t CConfigFile::WriteKeyValue(const std::string& key, const std::string& value,
                                         std::int32_t section, std::int32_t instance) const
{
    if (section != WHOLE_FILE || instance != WHOLE_FILE || !canBeWritten(key, value)) {
        return ERR_GENERAL_FAILURE;
    }
    const std::filesystem::path path = resolve(m_FileName).native();
    std::vector<std::string> lines;
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown) || unknown) {
        auto former = readLines(path);
        if (!former) {
            return ERR_GENERAL_FAILURE;
        }
        lines = std::move(*former);
    }
    if (const auto place = find(key, lines)) {
        lines[place->m_Line].replace(place->m_Begin, place->m_Length, value);
    } else {
        lines.push_back(key + '=' + value);
    }
    return replaceFile(path, join(lines)) ? ERR_SUCCESS : ERR_GENERAL_FAILURE;
}

} // namespace PI
