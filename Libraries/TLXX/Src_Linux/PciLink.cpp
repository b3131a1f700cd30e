#include "PciLink.h"

#include "Attribute.h"
#include "Folder.h"
#include "SysfsName.h"

#include <charconv>
#include <string>
#include <string_view>

namespace TLXX::Linux {
namespace {

/** 8 of "8.0 GT/s PCIe"; the kernel writes "Unknown" where the function does not say. */
std::optional<float> speed(const std::string& text)
{
    constexpr std::string_view unit = " GT/s";
    float number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (error != std::errc{} || !std::string_view(rest, end).starts_with(unit) ||
        !(number > 0 && number < 1000))
        return std::nullopt;
    return number;
}

/** A function that has gone reads as all ones, and one that is part of the root complex as 0. */
std::optional<std::uint32_t> lanes(const std::string& text)
{
    constexpr std::uint32_t most = 32;
    const std::optional<std::uint32_t> number = decimal(text);
    return number && *number >= 1 && *number <= most ? number : std::nullopt;
}

} // namespace

CPciLink readLink(const std::filesystem::path& device)
{
    const CFolder folder(device.c_str());
    if (!folder.IsOpen())
        return {};
    const auto read = [&](const char* name) { return readAttribute(name, folder.Get()); };
    CPciLink link;
    link.m_Speed = speed(read("current_link_speed"));
    link.m_HighestSpeed = speed(read("max_link_speed"));
    link.m_Lanes = lanes(read("current_link_width"));
    link.m_MostLanes = lanes(read("max_link_width"));
    link.m_NumaNode = decimal(read("numa_node")); // -1 where there is none
    return link;
}

} // namespace TLXX::Linux
