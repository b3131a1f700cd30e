#pragma once

#include "Facts/Drives.h"
#include "Plugins/ObjectStore.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Host::Cli {

/**
 * What was known about a machine after one round of its drives. It never changes after it was made, so any
 * number of threads may read it.
 */
struct Snapshot
{
    /** Of `objects`, as they were when the round `round` had ended, at `time` (UTC milliseconds). */
    Snapshot(ObjectStore objects, std::uint64_t round, std::uint64_t time);

    /** The drive at this place of `m_Drives`. It lives as long as anyone has it. */
    std::shared_ptr<const Drive> drive(std::size_t place) const { return {m_SharedDrives, &m_Drives[place]}; }

    const ObjectStore m_Objects;
    const std::shared_ptr<const std::vector<Drive>> m_SharedDrives;
    const std::vector<Drive>& m_Drives;    ///< of these objects; see `joinDrives`
    const std::vector<std::string> m_Keys; ///< of these drives; see `driveKeys`
    const std::uint64_t m_Round;           ///< counts from 1; 0: no round has ended yet
    const std::uint64_t m_Time;            ///< UTC milliseconds
};

} // namespace Host::Cli
