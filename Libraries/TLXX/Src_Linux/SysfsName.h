#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Names and numbers in the spelling of sysfs. Each function returns nothing for a text that does not match
// exactly.
namespace TLXX::Linux {

/** 3 for "nvme3". */
std::optional<std::uint32_t> controllerInstance(std::string_view name);

/** The numbers in the name of a namespace's node. */
struct CNamespaceName
{
    std::uint32_t m_Head = 0;            ///< 0 for "nvme0n1" and "nvme0c3n1"
    std::optional<std::uint32_t> m_Path; ///< 3 for "nvme0c3n1": the controller of one path to a shared head
    std::uint32_t m_Number = 0;          ///< 1 for "nvme0n1" and "nvme0c3n1"
};
std::optional<CNamespaceName> namespaceName(std::string_view name);

/** A decimal number and nothing else. */
std::optional<std::uint32_t> decimal(std::string_view text);

} // namespace TLXX::Linux
