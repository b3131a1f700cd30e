#pragma once

#include <TLX/Export.h>

#include <filesystem>
#include <optional>
#include <string>

// Files in a folder that other users may write to. On Linux such a user can replace a file by a link, so that
// a privileged process would read or overwrite the link's target. On Windows only an administrator may make a
// link to a file, so all links are followed there.

namespace TLX::Misc {

/**
 * The target of `path`, following links that belong to the superuser or to this process's user; the target
 * need not exist. Nothing when one of the links belongs to another user, or when they form a circle. Checks
 * only the last part of the path, not the folders above it.
 */
TLX_EXPORT std::optional<std::filesystem::path> trustedTarget(const std::filesystem::path& path);

/**
 * The content of the regular file that `path` leads to over such links. Nothing when it cannot be read to its
 * end, is of another kind, has more than 64 MiB, or is reached over any other link. Never waits, as reading
 * from a pipe would.
 */
TLX_EXPORT std::optional<std::string> readTrustedFile(const std::filesystem::path& path);

} // namespace TLX::Misc
