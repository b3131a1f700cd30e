#pragma once

#include "Facts/Drives.h"
#include "Facts/Snapshot.h"
#include "Facts/Verdict.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Host::Cli {

/** A drive and what to think of it. */
struct DriveCheck
{
    std::shared_ptr<const Drive> m_Drive; ///< never null
    std::string m_Key;                    ///< see `driveKeys`
    Judgement m_Judgement;
};

/**
 * Every drive of `snapshot`, in its order, at `now` (UTC milliseconds), then each disk that the system has
 * and this user may not open. `missed` are the instances of the drives that did not answer in the round
 * before: one that answers again is still a warning.
 */
std::vector<DriveCheck> checkDrives(const Snapshot& snapshot, std::uint64_t now,
                                    const std::set<std::string>& missed = {});

/** The worst verdict on `drives`; unknown when there are none. */
Verdict worstOf(const std::vector<DriveCheck>& drives);

/** What is wrong with `drives`, the worst first, then how many are healthy. */
std::string messageOf(const std::vector<DriveCheck>& drives);

} // namespace Host::Cli
