#pragma once

#include "Plugins/HostSetup.h"
#include "Service/Settings.h"

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
    Journal,
    Check,
    Doctor,
    Serve,
};

struct Options
{
    Command m_Command = Command::List;
    std::vector<std::filesystem::path> m_Plugins; ///< plug-ins to load in addition to the installed one
    std::optional<std::filesystem::path> m_Data;
    std::optional<std::filesystem::path> m_Fleet;
    std::optional<std::filesystem::path> m_Reader;
    TraceOptions m_Trace;
    bool m_Json = false;
    std::string m_Object;                            ///< of `show`, `set` and `check`; empty: every drive
    std::optional<std::string> m_Property;           ///< of `show` and `set`
    std::string m_Value;                             ///< of `set`
    std::optional<std::uint32_t> m_Seconds;          ///< of `watch`
    std::optional<std::uint64_t> m_Since;            ///< of `journal`, in milliseconds since 1970
    bool m_Follow = false;                           ///< of `journal`
    std::optional<Service::Endpoint> m_Listen;       ///< of `serve`
    std::optional<std::filesystem::path> m_Settings; ///< of `serve`
};

/**
 * Whether a command keeps rows in the data folder. `serve` does, `watch` of real drives does, and every
 * command but `set` that was given a folder.
 */
bool keepsRows(const Options& options);

/** The user asked for help or the version: `what()` is the text to print. */
class TextAsked : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/**
 * Reads the words of a command line, of which the first is the program's name. Throws `TextAsked`, or
 * `Failure` (wrong usage).
 */
Options parseCommandLine(const std::vector<std::string>& words);

/** The description of an option. */
struct OptionUsage
{
    std::vector<std::string> m_Names; ///< all its names, short ones first: "-h", "--help"
    std::string m_Value;              ///< the word for its value, such as "FILE"; empty for a flag
    std::string m_Description;        ///< a line
    std::string m_Details;            ///< further sentences for the manual, one in each line
    bool m_IsRepeated = false;        ///< whether it may be given several times
};

struct CommandUsage
{
    std::string m_Name;
    std::string m_Description;
    std::vector<OptionUsage> m_Options; ///< the options that only this command has
};

/** The description of the whole command line. */
struct Usage
{
    std::vector<OptionUsage> m_Options; ///< the options that every command accepts
    std::vector<CommandUsage> m_Commands;
};

/** Help, manual and completions are made from this description. */
Usage usage();

/** The command among these words, even if other words are wrong. Empty when there is none. */
std::string commandIn(const std::vector<std::string>& words);

} // namespace Host::Cli
