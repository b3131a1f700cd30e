#pragma once

#include <filesystem>
#include <string_view>

namespace PI {

/**
 * Puts a file with this content in the place of `path`, which keeps its permissions. Whoever reads `path`
 * finds the old content or the new one whole, even after a power failure in between. Returns whether it did;
 * it does not for a link that is not trusted.
 */
bool replaceFile(const std::filesystem::path& path, std::string_view content);

} // namespace PI
