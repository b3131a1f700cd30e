#pragma once

#include "Facts/Observation.h"
#include "Journal/Entry.h"
#include "Journal/State.h"

#include <cstdint>
#include <string>
#include <vector>

// What the counters of a drive prove, although nobody saw it happen.
namespace Host::Journal {

struct Proof
{
    Kind m_Kind;
    std::string m_Text;        ///< follows the drive's name
    std::uint64_t m_Begin = 0; ///< it happened after this
};

/** All of these are warnings. */
inline constexpr Severity PROOF_SEVERITY = Severity::Warning;

/** Of a drive that was there at the last look. `bootTime` is the state's. */
std::vector<Proof> proofs(const Cli::ObservedDrive& drive, const Figures& before, std::uint64_t bootTime);

/** What may explain how the counters of a drive grew while it was gone. */
struct Presence
{
    std::uint64_t m_Time = 0; ///< milliseconds for which the drive may have been here again
    bool m_IsOneBoot = false; ///< whether the machine has not restarted since it was seen to be gone
};

/** Of a drive that was gone and is back. */
std::vector<Proof> proofsOfReturn(const Cli::ObservedDrive& drive, const GoneDrive& gone,
                                  const Presence& presence);

/** Whether any of the counters is known now. */
bool hasCounters(const Cli::ObservedDrive& drive);

/** Keeps the figures that are known now, at `time`. */
void remember(Figures& figures, const Cli::ObservedDrive& drive, std::uint64_t time);

} // namespace Host::Journal
