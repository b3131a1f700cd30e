#pragma once

#include <TLXX/PciLocation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/** Whether a drive answers, and what identifies it even if it never has. */
struct DriveAnswer
{
    std::string m_DeviceName; ///< path of the disk from the enumeration
    std::string m_Instance;   ///< differs from that of any other drive at the same path
    std::string m_Driver;
    std::optional<TLXX::CPciLocation> m_Location;

    // As the drive told it, or as the system did if the drive never answered. Empty if neither told it.
    std::string m_SerialNumber;
    std::string m_Model;
    std::string m_FirmwareRevision;

    bool m_Answering = false;
    std::optional<std::uint64_t> m_LastAnswer;  ///< UTC milliseconds; none: it has never answered
    std::optional<std::uint64_t> m_SilentSince; ///< UTC milliseconds of the first command without an answer
    std::uint32_t m_SilentRounds = 0;           ///< the number of rounds in a row without an answer
    std::uint32_t m_Status = 0;                 ///< of its last round; see `TLXX::statusText`
};

/** The result of reading all drives once. */
struct DriveRound
{
    std::uint64_t m_Number = 0;         ///< counts from 1; 0: no round has ended yet
    std::vector<DriveAnswer> m_Answers; ///< in the order of the enumeration
    std::uint64_t m_Duration = 0;       ///< milliseconds from the first command to the last answer
    std::uint64_t m_Failures = 0;       ///< commands that failed or stayed out, in all rounds so far
};

} // namespace Host
