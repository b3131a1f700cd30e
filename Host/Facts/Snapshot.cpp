#include "Facts/Snapshot.h"

#include "Facts/DriveKey.h"

#include <utility>

namespace Host::Cli {

Snapshot::Snapshot(ObjectStore objects, std::uint64_t round, std::uint64_t time)
    : m_Objects(std::move(objects)),
      m_SharedDrives(std::make_shared<const std::vector<Drive>>(joinDrives(m_Objects))),
      m_Drives(*m_SharedDrives),
      m_Keys(driveKeys(m_Drives)),
      m_Round(round),
      m_Time(time)
{}

} // namespace Host::Cli
