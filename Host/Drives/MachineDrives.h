#pragma once

#include <TLXX/DriveSource.h>

#include <filesystem>
#include <memory>
#include <optional>

namespace Host {

/** The way to the drives of this machine. */
struct MachineDrives
{
    std::unique_ptr<TLXX::IDriveSource> m_Source;
    bool m_OwnRights = false; ///< whether this user's permissions decide which drives can be asked
};

/**
 * On Linux a reader asks the drives. If `reader` is given, it is the one there. Otherwise it is the one at
 * the usual place, if this user may connect to it. If not, it is a private one with this user's rights. On
 * Windows threads of this process ask the drives. Throws `Failure` when no reader can be used at `reader`,
 * and `std::system_error`.
 */
MachineDrives machineDrives(const std::optional<std::filesystem::path>& reader);

} // namespace Host
