#pragma once

#include <filesystem>
#include <string_view>

namespace TestSupport {

/** The file or folder `path` of the source tree, such as "Tests/Data/Scan", as this system names it. */
std::filesystem::path sourceTree(std::string_view path);

} // namespace TestSupport
