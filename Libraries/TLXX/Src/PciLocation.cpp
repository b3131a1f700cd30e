#include <TLXX/PciLocation.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>

namespace TLXX {
namespace {

struct CPart
{
    std::string_view m_Separator; ///< before the number
    std::int32_t CPciLocation::*m_Number;
    std::uint32_t m_Largest;
    std::size_t m_Digits; ///< the least number when written
};

constexpr CPart PARTS[] = {
    {"", &CPciLocation::m_Segment, std::numeric_limits<std::int32_t>::max(), 4},
    {":", &CPciLocation::m_Bus, 0xFF, 2},
    {":", &CPciLocation::m_Device, 0x1F, 2},
    {".", &CPciLocation::m_Function, 7, 1},
};

} // namespace

std::optional<CPciLocation> CPciLocation::Parse(std::string_view address)
{
    CPciLocation location;
    for (const CPart& part : PARTS) {
        if (!address.starts_with(part.m_Separator))
            return std::nullopt;
        address.remove_prefix(part.m_Separator.size());
        std::uint32_t number = 0;
        const auto [end, error] =
            std::from_chars(address.data(), address.data() + address.size(), number, 16);
        if (error != std::errc() || number > part.m_Largest)
            return std::nullopt;
        address.remove_prefix(static_cast<std::size_t>(end - address.data()));
        location.*part.m_Number = static_cast<std::int32_t>(number);
    }
    if (!address.empty())
        return std::nullopt;
    return location;
}

std::string CPciLocation::Text() const
{
    std::string text;
    for (const CPart& part : PARTS) {
        std::array<char, 8> digits; // of the largest number
        const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                              static_cast<std::uint32_t>(this->*part.m_Number), 16)
                                    .ptr;
        const auto count = static_cast<std::size_t>(end - digits.data());
        text.append(part.m_Separator);
        text.append(part.m_Digits - std::min(part.m_Digits, count), '0').append(digits.data(), count);
    }
    return text;
}

} // namespace TLXX
