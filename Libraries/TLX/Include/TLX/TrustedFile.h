#pragma once

#include <TLX/Export.h>

#include <filesystem>
#include <optional>
#include <string>

// Files in a folder that others may write to, too. On Linux anybody who may write there can put a link in the
// place of a file, so that a privileged process would read or overwrite what the link leads to. On Windows
// only an administrator may make a link to a file, so all are followed there.

namespace TLX::Misc {

/**
 * What `path` leads to over links that belong to the superuser or to this process's user; it need not be
 * there. Nothing when one of the links belongs to somebody else, or when they lead in a circle. Only the last
 * part of a path counts, not the folders above it.
 */
TLX_EXPORT std::optional<std::filesystem::path> trustedTarget(const std::filesystem::path& path);

/**
 * The content of the regular file to which `path` leads over such links. Nothing when it cannot be read to
 * its end, is of another kind, has more than 64 MiB, or is reached over any other link. Never waits, as the
 * reader of a pipe would.
 */
TLX_EXPORT std::optional<std::string> readTrustedFile(const std::filesystem::path& path);

} // namespace TLX::Misc
