#include "Attribute.h"

#include <TLXX/NvmeText.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <span>
#include <system_error>

namespace TLXX::Linux {

std::string readAttribute(const std::filesystem::path& file)
{
    // Opening anything else, such as a pipe, could block.
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return {};
    std::array<char, 256> line{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(line.data(), line.size() - 1);
    std::array<std::uint8_t, line.size()> bytes{};
    std::copy(line.begin(), std::find(line.begin(), line.end(), '\n'), bytes.begin());
    return boundedText(bytes);
}

} // namespace TLXX::Linux
