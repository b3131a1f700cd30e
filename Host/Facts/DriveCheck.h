#pragma once

#include "Facts/Drives.h"
#include "Facts/Verdict.h"
#include "Plugins/ObjectStore.h"

#include <string>
#include <vector>

namespace Host::Cli {

/** A drive and what to think of it. */
struct DriveCheck
{
    Drive m_Drive;
    std::string m_Key; ///< see `driveKeys`
    Judgement m_Judgement;
};

/**
 * Every drive of `store`, in its order, then each disk that the system has and the plug-in did not get to
 * show: only its device and its place are known.
 */
std::vector<DriveCheck> checkDrives(const ObjectStore& store);

} // namespace Host::Cli
