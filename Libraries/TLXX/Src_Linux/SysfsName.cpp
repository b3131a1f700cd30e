#include "SysfsName.h"

#include <charconv>

namespace TLXX::Linux {
namespace {

constexpr std::uint32_t LARGEST_SEGMENT = 0x7FFFFFFF;
constexpr std::uint32_t LARGEST_BUS = 0xFF;
constexpr std::uint32_t LARGEST_DEVICE = 0x1F;
constexpr std::uint32_t LARGEST_FUNCTION = 7;

/** Takes `prefix` and the number behind it off the head of `text`; false if they are not there. */
bool take(std::string_view& text, std::string_view prefix, int base, std::uint32_t& number)
{
    if (!text.starts_with(prefix))
        return false;
    const std::string_view digits = text.substr(prefix.size());
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc())
        return false;
    text = digits.substr(static_cast<std::size_t>(end - digits.data()));
    return true;
}

/** As `take`, for the decimal numbers of names: the kernel never pads them, so "nvme07" is no controller. */
bool takeUnpadded(std::string_view& text, std::string_view prefix, std::uint32_t& number)
{
    const std::string_view before = text;
    if (!take(text, prefix, 10, number))
        return false;
    const std::size_t digits = before.size() - prefix.size() - text.size();
    return digits == 1 || before[prefix.size()] != '0';
}

} // namespace

std::optional<std::uint32_t> controllerInstance(std::string_view name)
{
    std::uint32_t instance = 0;
    if (!takeUnpadded(name, "nvme", instance) || !name.empty())
        return std::nullopt;
    return instance;
}

std::optional<CNamespaceName> namespaceName(std::string_view name)
{
    CNamespaceName parts;
    if (!takeUnpadded(name, "nvme", parts.m_Head))
        return std::nullopt;
    if (name.starts_with('c') && !takeUnpadded(name, "c", parts.m_Path.emplace()))
        return std::nullopt;
    if (!takeUnpadded(name, "n", parts.m_Number) || !name.empty())
        return std::nullopt;
    return parts;
}

std::optional<CPciLocation> pciLocation(std::string_view address)
{
    std::uint32_t segment = 0;
    std::uint32_t bus = 0;
    std::uint32_t device = 0;
    std::uint32_t function = 0;
    if (!take(address, "", 16, segment) || !take(address, ":", 16, bus) || !take(address, ":", 16, device) ||
        !take(address, ".", 16, function) || !address.empty())
        return std::nullopt;
    if (segment > LARGEST_SEGMENT || bus > LARGEST_BUS || device > LARGEST_DEVICE ||
        function > LARGEST_FUNCTION)
        return std::nullopt;
    return CPciLocation{static_cast<std::int32_t>(segment), static_cast<std::int32_t>(bus),
                        static_cast<std::int32_t>(device), static_cast<std::int32_t>(function)};
}

std::optional<std::uint32_t> decimal(std::string_view text)
{
    std::uint32_t number = 0;
    if (!take(text, "", 10, number) || !text.empty())
        return std::nullopt;
    return number;
}

} // namespace TLXX::Linux
