#pragma once

#include <map>
#include <string>
#include <vector>

namespace HostTest {

/** What a run of the built program left behind. */
struct ProgramResult
{
    int m_ExitCode = -1; ///< -1: it ended by a signal
    std::string m_Output;
    std::string m_Errors;
};

using Environment = std::map<std::string, std::string>;

/** Runs the program with both outputs redirected. `environment` is all that it gets. */
ProgramResult runProgram(const std::vector<std::string>& arguments, const Environment& environment = {});

/** Runs the program with both outputs on a terminal of `columns`; `m_Output` is what the terminal got. */
ProgramResult runOnTerminal(const std::vector<std::string>& arguments, unsigned columns,
                            const Environment& environment = {{"TERM", "xterm"}});

} // namespace HostTest
