#pragma once

#include "Facts/Histogram.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace Host::Cli {

/** What the service knows about itself. Counts are since its start where nothing else is said. Plain data. */
struct ServiceFigures
{
    std::uint64_t m_Started = 0;                    ///< UTC milliseconds
    std::uint64_t m_PollInterval = 0;               ///< milliseconds; 0: no plug-in watches yet
    bool m_Simulated = false;                       ///< whether a fleet file takes the place of the machine
    std::uint64_t m_ReadErrors = 0;                 ///< commands to drives that failed or stayed out
    std::uint64_t m_LastEntry = 0;                  ///< number of the journal's last entry; 0: none
    std::map<std::string, std::uint64_t> m_Entries; ///< that the journal has, by the word of their kind;
                                                    ///< those that it has none of may be absent. Empty: there
                                                    ///< is no journal yet
    std::string m_JournalFailure; ///< why the journal cannot be written now; empty: it can be
    std::string m_Trouble;        ///< why no drive can be watched now; empty: they are watched
    Histogram m_Rounds;           ///< durations of the rounds of the drives
    Histogram m_Requests;         ///< durations of the answers over HTTP
    // Of the process. None when the system does not tell it.
    std::optional<double> m_ProcessorSeconds;
    std::optional<std::uint64_t> m_ResidentBytes;
    std::optional<std::uint64_t> m_OpenDescriptors;
};

} // namespace Host::Cli
