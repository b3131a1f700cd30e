#include "Base/FileText.h"

#include <cstddef>
#include <fstream>
#include <utility>

namespace Host {

std::optional<std::string> readFile(const std::filesystem::path& file)
{
    constexpr std::size_t largest = 64U << 20U;
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    char chunk[1U << 14U];
    while (stream.read(chunk, sizeof chunk) || stream.gcount() > 0) {
        text.append(chunk, static_cast<std::size_t>(stream.gcount()));
        if (text.size() > largest)
            return std::nullopt;
    }
    return stream.eof() ? std::optional(std::move(text)) : std::nullopt;
}

} // namespace Host
