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
    std::string m_Instance;   ///< another drive at the same path has another one
    std::string m_Driver;
    std::optional<TLXX::CPciLocation> m_Location;

    // As the drive told it; if it never answered, as the system did. Empty if nobody did.
    std::string m_SerialNumber;
    std::string m_Model;
    std::string m_FirmwareRevision;

    bool m_Answering = false;
    std::optional<std::uint64_t> m_LastAnswer;  ///< UTC milliseconds; none: it has never answered
    std::optional<std::uint64_t> m_SilentSince; ///< UTC milliseconds of the first command without an answer
    std::uint32_t m_SilentRounds = 0;           ///< how many rounds in a row it has not answered
    std::uint32_t m_Status = 0;                 ///< of its last round, for `TLXX::statusText`
};

/** What one reading of all drives found. */
struct DriveRound
{
    std::uint64_t m_Number = 0;         ///< counts from 1; 0: no round has ended yet
    std::vector<DriveAnswer> m_Answers; ///< in the order of the enumeration
};

} // namespace Host
