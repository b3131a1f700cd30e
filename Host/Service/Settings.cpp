#include "Service/Settings.h"

#include "Base/Failure.h"
#include "Base/FileText.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"

#include <algorithm>
#include <array>
#include <map>

namespace Host::Service {
namespace {

constexpr std::uint64_t LARGEST_PORT = 65'535;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const std::size_t start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

bool consistsOf(std::string_view text, std::string_view characters)
{
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool readListen(std::string_view text, Settings& settings)
{
    const std::optional<Endpoint> endpoint = parseEndpoint(text);
    if (endpoint)
        settings.m_Listen = *endpoint;
    return endpoint.has_value();
}

bool readSocket(std::string_view text, Settings& settings)
{
    const std::filesystem::path path = pathFromUtf8(std::string(text));
    settings.m_Socket = path;
    return path.is_absolute();
}

bool readHostNames(std::string_view text, Settings& settings)
{
    settings.m_HostNames.clear();
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string name = inSmallLetters(trimmed(text.substr(start, end - start)));
        if (!consistsOf(name, "abcdefghijklmnopqrstuvwxyz0123456789.-_:[]"))
            return false;
        settings.m_HostNames.push_back(name);
        start = end + 1;
    }
    return true;
}

bool readTokenFile(std::string_view text, Settings& settings)
{
    settings.m_TokenFile = pathFromUtf8(std::string(text));
    return settings.m_TokenFile.is_absolute();
}

constexpr std::array ROWS = {
    SettingRow{
        "listen", "ADDRESS:PORT", "127.0.0.1:9713",
        "Where the service answers HTTP. Any address but loopback's needs a token. "
        "Port 0 lets the system pick one.",
        readListen,
        [](const Settings& before, const Settings& after) { return before.m_Listen != after.m_Listen; }},
    SettingRow{
        "socket", "an absolute path", "serve.sock in the data folder",
        "The local socket for the commands of this machine. "
        "A socket that a service manager hands over takes its place.",
        readSocket,
        [](const Settings& before, const Settings& after) { return before.m_Socket != after.m_Socket; }},
    SettingRow{"host-names", "names, separated by commas", "none",
               "Names of this machine that a browser or a proxy may use beside those of loopback.",
               readHostNames, nullptr},
    SettingRow{"token-file", "an absolute path", "none",
               "A file whose first line is the token of callers from other machines.", readTokenFile,
               nullptr},
};

std::vector<std::string> knownKeys()
{
    std::vector<std::string> keys;
    keys.reserve(std::size(ROWS));
    for (const SettingRow& row : ROWS)
        keys.emplace_back(row.m_Key);
    return keys;
}

/** Reads one line after another and gathers what is wrong with them. */
class Reading
{
public:
    explicit Reading(const std::string& name) : m_Name(name) {}

    void take(std::string_view line)
    {
        ++m_Line;
        line = trimmed(line);
        if (line.empty() || line.front() == '#' || line.front() == ';')
            return;
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos)
            return complain("\"" + std::string(line) + "\" is not of the form \"key = value\".");
        set(trimmed(line.substr(0, sign)), trimmed(line.substr(sign + 1)));
    }

    Settings result() const
    {
        if (!m_Problems.empty())
            throw Failure(ExitCode::WrongUsage, printableLines(m_Problems));
        return m_Settings;
    }

private:
    void set(std::string_view key, std::string_view value)
    {
        const auto* const row =
            std::find_if(ROWS.begin(), ROWS.end(), [&](const SettingRow& each) { return each.m_Key == key; });
        if (row == ROWS.end())
            return complain("There is no setting \"" + std::string(key) + "\"." +
                            didYouMean(key, knownKeys()));
        const auto [first, isFirst] = m_Lines.insert({row->m_Key, m_Line});
        if (!isFirst)
            complain("\"" + std::string(key) + "\" is already set in line " + std::to_string(first->second) +
                     ".");
        else if (!row->m_Read(value, m_Settings))
            complain("\"" + std::string(value) + "\" is no value of \"" + std::string(key) +
                     "\", which takes " + std::string(row->m_Value) + ".");
    }

    void complain(const std::string& problem)
    {
        m_Problems +=
            (m_Problems.empty() ? "" : "\n") + m_Name + ", line " + std::to_string(m_Line) + ": " + problem;
    }

    const std::string m_Name;
    Settings m_Settings;
    std::map<std::string_view, std::size_t> m_Lines; ///< of each key that was set
    std::string m_Problems;
    std::size_t m_Line = 0;
};

std::string readText(const std::filesystem::path& file, const std::string& what)
{
    const std::optional<std::string> text = readFile(file);
    if (!text)
        throw Failure(ExitCode::WrongUsage,
                      "The " + what + " " + printable(file.string()) + " cannot be read.");
    return *text;
}

} // namespace

std::optional<Endpoint> parseEndpoint(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const std::optional<std::uint64_t> port = parseNumber(text.substr(colon + 1), 10);
    std::string_view address = text.substr(0, colon);
    const bool isBracketed = address.starts_with('[') && address.ends_with(']');
    if (isBracketed)
        address = address.substr(1, address.size() - 2);
    const std::string_view characters = isBracketed ? "0123456789abcdefABCDEF:." : "0123456789.";
    if (!port || *port > LARGEST_PORT || !consistsOf(address, characters))
        return std::nullopt;
    return Endpoint{std::string(address), static_cast<std::uint16_t>(*port)};
}

std::filesystem::path usualSocket(const std::filesystem::path& data)
{
    return data / "serve.sock";
}

std::span<const SettingRow> settingRows()
{
    return ROWS;
}

Settings parseSettings(std::string_view text, const std::string& name)
{
    Reading reading(name);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        reading.take(text.substr(start, end - start));
        start = end + 1;
    }
    return reading.result();
}

Settings readSettings(const std::filesystem::path& file)
{
    return parseSettings(readText(file, "settings file"), file.string());
}

std::string readToken(const std::filesystem::path& file)
{
    const std::string text = readText(file, "token file");
    std::string token(trimmed(std::string_view(text).substr(0, text.find('\n'))));
    if (token.empty())
        throw Failure(ExitCode::WrongUsage,
                      "The token file " + printable(file.string()) + " has no token in its first line.");
    return token;
}

std::vector<std::string_view> needRestart(const Settings& before, const Settings& after)
{
    std::vector<std::string_view> keys;
    for (const SettingRow& row : ROWS)
        if (row.m_NeedsRestart != nullptr && row.m_NeedsRestart(before, after))
            keys.push_back(row.m_Key);
    return keys;
}

} // namespace Host::Service
