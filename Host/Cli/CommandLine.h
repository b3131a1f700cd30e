#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

enum class Command
{
    List,
    Topology,
    Show,
    Doctor,
};

struct Options
{
    Command m_Command = Command::List;
    std::optional<std::filesystem::path> m_Plugin;
    std::optional<std::filesystem::path> m_Data;
    std::optional<std::filesystem::path> m_Fleet;
    std::uint32_t m_TraceMask = 0;
    std::optional<std::filesystem::path> m_TraceFile;
    bool m_Json = false;
    std::string m_Object;                  ///< of `show`
    std::optional<std::string> m_Property; ///< of `show`
};

/** The user asked for help or the version: `what()` is the text to print. */
class TextAsked : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A trace mask: decimal, or hexadecimal behind "0x". */
std::optional<std::uint32_t> parseMask(std::string_view text);

/**
 * What the words of a command line, the program's name first, ask for. Throws `TextAsked`, or `Failure`
 * (wrong usage).
 */
Options parseCommandLine(const std::vector<std::string>& words);

} // namespace Host::Cli
