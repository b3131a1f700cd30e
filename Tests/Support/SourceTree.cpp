#include "Support/SourceTree.h"

namespace TestSupport {

std::filesystem::path sourceTree(std::string_view path)
{
    return std::filesystem::path(OSTREL_SOURCE_DIR) / path;
}

} // namespace TestSupport
