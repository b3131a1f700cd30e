#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Service {

/** Where the service answers HTTP. */
struct Endpoint
{
    std::string m_Address = "127.0.0.1"; ///< of a network interface, as a number
    std::uint16_t m_Port = 9713;         ///< 0: the system picks one

    friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

/** "ADDRESS:PORT", where an IPv6 address is in square brackets. Nothing for any other text. */
std::optional<Endpoint> parseEndpoint(std::string_view text);

/** The local socket of a service that keeps this data folder, unless its settings name another one. */
std::filesystem::path usualSocket(const std::filesystem::path& data);

/** What an administrator may set. */
struct Settings
{
    Endpoint m_Listen;
    std::optional<std::filesystem::path> m_Socket; ///< the local socket; none: the usual place
    std::vector<std::string> m_HostNames;          ///< in small letters
    std::filesystem::path m_TokenFile;             ///< an empty path: there is no token

    friend bool operator==(const Settings&, const Settings&) = default;
};

/** One key of the settings file. */
struct SettingRow
{
    std::string_view m_Key;
    std::string_view m_Value;       ///< what its value is, in a word or two
    std::string_view m_Default;     ///< for people
    std::string_view m_Description; ///< a sentence
    /** Puts the value into the settings. Returns false when it has a wrong form. */
    bool (*m_Read)(std::string_view text, Settings& settings);
    /** Whether a running service needs a restart for this change. Null: never. */
    bool (*m_NeedsRestart)(const Settings& before, const Settings& after);
};

/** Every key, in the order of the documents. */
std::span<const SettingRow> settingRows();

/**
 * Reads the text of a settings file: lines of "key = value", and comments that begin with "#" or ";". `name`
 * is the file's name for messages. Throws `Failure` (wrong usage) that names every wrong line.
 */
Settings parseSettings(std::string_view text, const std::string& name);

/** Reads a settings file. Throws `Failure` also when the file cannot be read. */
Settings readSettings(const std::filesystem::path& file);

/** The token in this file: its first line without blanks. Throws `Failure` when it cannot be read. */
std::string readToken(const std::filesystem::path& file);

/** The keys whose values differ and that take effect only after a restart. */
std::vector<std::string_view> needRestart(const Settings& before, const Settings& after);

} // namespace Host::Service
