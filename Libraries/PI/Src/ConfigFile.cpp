#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>

#include <filesystem>
#include <fstream>
#include <ios>
#include <mutex>
#include <optional>
#include <string_view>
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
    static Folder instance;
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

/** The lines of the file; nothing when it cannot be read to its end or is torn. */
std::optional<std::vector<std::string>> readLines(const boost::filesystem::path& path)
{
    std::ifstream file(std::filesystem::path(path.native()), std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        // Zero bytes are what a file system leaves of a file whose writing was cut off.
        if (line.find('\0') != std::string::npos) {
            return std::nullopt;
        }
        lines.push_back(std::move(line));
    }
    if (!file.eof()) {
        return std::nullopt;
    }
    if (!lines.empty() && lines.front().starts_with(BYTE_ORDER_MARK)) {
        lines.front().erase(0, BYTE_ORDER_MARK.size());
    }
    return lines;
}

std::string_view trim(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/** The value of `key` in `line`, if that is what the line holds. */
std::optional<std::string_view> valueOf(std::string_view key, std::string_view line)
{
    const auto separator = line.find('=');
    if (separator == std::string_view::npos) {
        return std::nullopt;
    }
    const auto name = trim(line.substr(0, separator));
    if (name.empty() || name != key || std::string_view(";#[").find(name.front()) != std::string_view::npos) {
        return std::nullopt;
    }
    return line.substr(separator + 1);
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
    const auto lines = readLines(resolve(m_FileName));
    if (!lines) {
        return ERR_GENERAL_FAILURE;
    }
    for (const auto& line : *lines) {
        if (auto found = valueOf(key, line)) {
            if (found->ends_with('\r')) {
                found->remove_suffix(1);
            }
            value = *found;
            return ERR_SUCCESS;
        }
    }
    return ERR_GENERAL_FAILURE;
}

} // namespace PI
