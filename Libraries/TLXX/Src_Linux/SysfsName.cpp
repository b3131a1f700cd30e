#include "SysfsName.h"

#include <charconv>

namespace TLXX::Linux {
namespace {

/** Removes `prefix` and the decimal number after it from the start of `text`; false if they are not there. */
bool take(std::string_view& text, std::string_view prefix, std::uint32_t& number)
{
    if (!text.starts_with(prefix))
        return false;
    const std::string_view digits = text.substr(prefix.size());
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc())
        return false;
    text = digits.substr(static_cast<std::size_t>(end - digits.data()));
    return true;
}

/** As `take`, but for numbers in names. The kernel never pads them, so "nvme07" is no controller. */
bool takeUnpadded(std::string_view& text, std::string_view prefix, std::uint32_t& number)
{
    const std::string_view before = text;
    if (!take(text, prefix, number))
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

std::optional<std::uint32_t> decimal(std::string_view text)
{
    std::uint32_t number = 0;
    if (!take(text, "", number) || !text.empty())
        return std::nullopt;
    return number;
}

} // namespace TLXX::Linux
