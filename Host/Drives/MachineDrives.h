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
 * On Linux a reader asks the drives: the one at `reader`, if it is given; otherwise the one at the usual
 * place, if it takes this user; otherwise a private one with this user's rights. On Windows threads of this
 * process ask them. Throws `Failure` when there is no reader at `reader`, and `std::system_error`.
 */
MachineDrives machineDrives(const std::optional<std::filesystem::path>& reader);

} // namespace Host
