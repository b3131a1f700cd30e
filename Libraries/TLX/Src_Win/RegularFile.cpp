#include <TLX/RegularFile.h>

#include <fstream>

namespace TLX::Misc {

std::optional<std::string> readRegularFile(const std::filesystem::path& file, std::size_t largest)
{
    if (isSpecialFile(file))
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    char chunk[1U << 14U];
    while (stream.read(chunk, sizeof chunk) || stream.gcount() > 0) {
        text.append(chunk, static_cast<std::size_t>(stream.gcount()));
        if (text.size() > largest)
            return std::nullopt;
    }
    return stream.eof() ? std::optional(text) : std::nullopt;
}

} // namespace TLX::Misc
