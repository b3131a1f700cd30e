#pragma once

#include <filesystem>
#include <string_view>

namespace TestSupport {

/** The path of a file or folder of the source tree, such as "Tests/Data/Scan", in this system's form. */
std::filesystem::path sourceTree(std::string_view path);

} // namespace TestSupport
