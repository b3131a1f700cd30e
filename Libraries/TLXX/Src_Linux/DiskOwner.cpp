#include "SysfsName.h"

#include <TLXX/Linux/DiskOwner.h>

#include <charconv>

namespace TLXX::Linux {
namespace {

constexpr std::string_view FOLDER = "/dev/";

template<typename Number>
bool takeNumber(std::string_view text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

} // namespace

std::string CDiskOwner::Instance() const
{
    return controllerNode(m_Instance) + ' ' + std::to_string(m_Node) + ' ' + std::to_string(m_NamespaceId);
}

std::optional<CDiskOwner> CDiskOwner::Parse(std::string_view instance)
{
    const std::size_t first = instance.find(' ');
    const std::size_t last = instance.rfind(' ');
    if (!instance.starts_with(FOLDER) || first == last)
        return std::nullopt;
    const auto controller = controllerInstance(instance.substr(FOLDER.size(), first - FOLDER.size()));
    CDiskOwner owner;
    if (!controller || !takeNumber(instance.substr(first + 1, last - first - 1), owner.m_Node) ||
        !takeNumber(instance.substr(last + 1), owner.m_NamespaceId))
        return std::nullopt;
    owner.m_Instance = *controller;
    // A number may have been written in another way.
    return owner.Instance() == instance ? std::optional(owner) : std::nullopt;
}

std::string controllerNode(std::uint32_t instance)
{
    return std::string(FOLDER) + "nvme" + std::to_string(instance);
}

} // namespace TLXX::Linux
