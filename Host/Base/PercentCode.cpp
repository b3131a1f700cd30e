#include "Base/PercentCode.h"

namespace Host {

std::string percentEncoded(std::string_view text)
{
    constexpr std::string_view harmless =
        "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-._~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text)
        if (harmless.find(character) != std::string_view::npos)
            encoded += character;
        else {
            const auto byte = static_cast<unsigned char>(character);
            encoded += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
        }
    return encoded;
}

} // namespace Host
