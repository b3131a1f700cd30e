#pragma once

#include "Plugins/HostSetup.h"

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
    Set,
    Watch,
    Check,
    Doctor,
};

struct Options
{
    Command m_Command = Command::List;
    std::vector<std::filesystem::path> m_Plugins; ///< to load beside the installed one
    std::optional<std::filesystem::path> m_Data;
    std::optional<std::filesystem::path> m_Fleet;
    TraceOptions m_Trace;
    bool m_Json = false;
    std::string m_Object;                   ///< of `show`, `set` and `check`; empty: every drive
    std::optional<std::string> m_Property;  ///< of `show` and `set`
    std::string m_Value;                    ///< of `set`
    std::optional<std::uint32_t> m_Seconds; ///< of `watch`
};

/** Whether a command keeps rows in the data folder: `watch` of real drives, and who is told a folder. */
bool keepsRows(const Options& options);

/** The user asked for help or the version: `what()` is the text to print. */
class TextAsked : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A trace mask: decimal, or hexadecimal behind "0x". */
std::optional<std::uint32_t> parseMask(std::string_view text);

/** Takes "MASK" for every module, or "MODULE=MASK" for the one of that number. False when `text` is neither.
 */
bool addTraceMask(std::string_view text, TraceOptions& trace);

/**
 * What the words of a command line, the program's name first, ask for. Throws `TextAsked`, or `Failure`
 * (wrong usage).
 */
Options parseCommandLine(const std::vector<std::string>& words);

/** An option as people are told of it. */
struct OptionUsage
{
    std::vector<std::string> m_Names; ///< short ones first: "-h", "--help"
    std::string m_Value;              ///< what it takes, such as "FILE"; empty for a flag
    std::string m_Description;        ///< a line
    std::string m_Details;            ///< more of it, for the manual: a sentence a line
    bool m_IsRepeated = false;        ///< may be given several times
};

struct CommandUsage
{
    std::string m_Name;
    std::string m_Description;
    std::vector<OptionUsage> m_Options; ///< those that no other command has
};

/** What the command line takes. */
struct Usage
{
    std::vector<OptionUsage> m_Options; ///< those of every command
    std::vector<CommandUsage> m_Commands;
};

/** The description from which help, manual and completions come. */
Usage usage();

/** The name of the command among these words, even where the others are wrong; empty when there is none. */
std::string commandIn(const std::vector<std::string>& words);

} // namespace Host::Cli
