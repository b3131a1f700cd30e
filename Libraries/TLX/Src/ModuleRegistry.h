#pragma once

#include <TLX/ModuleInfo.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace TLX::Misc {

/** The modules that are loaded, in the order of loading, and the trace masks that the host has set. */
class CModuleRegistry
{
public:
    /** Exists before the first module and after the last. */
    static CModuleRegistry& Instance();

    /** Adds a module and gives it its mask. */
    void Add(CModuleInfo& module);
    void Remove(CModuleInfo& module);

    void SetMask(std::uint32_t moduleNumber, std::uint32_t mask);
    void SetDefaultMask(std::uint32_t mask);

    /** The text of `number` from the first module whose catalogue has one. */
    std::optional<std::string> Text(std::uint32_t number) const;

private:
    std::uint32_t MaskOf(std::uint32_t moduleNumber) const;
    void ApplyMasks();

    mutable std::mutex m_Lock;
    std::vector<CModuleInfo*> m_Modules;
    std::map<std::uint32_t, std::uint32_t> m_Masks;
    std::uint32_t m_DefaultMask = 0;
};

} // namespace TLX::Misc
