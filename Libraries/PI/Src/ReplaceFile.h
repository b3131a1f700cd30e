#pragma once

#include <filesystem>
#include <string_view>

namespace PI {

/**
 * Replaces `path` by a file with this content; permissions stay. A reader of `path` finds the whole old or
 * the whole new content, even after a power failure. Returns whether it succeeded; it fails for a link that
 * is not trusted.
 */
bool replaceFile(const std::filesystem::path& path, std::string_view content);

} // namespace PI
