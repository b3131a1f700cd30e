#include "ModuleRegistry.h"

namespace TLX::Misc {

CModuleRegistry& CModuleRegistry::Instance()
{
    // Never destroyed: a plug-in may be unloaded after this library's own objects are gone.
    static CModuleRegistry& registry = *new CModuleRegistry;
    return registry;
}

void CModuleRegistry::Add(CModuleInfo& module)
{
    const std::scoped_lock guard(m_Lock);
    m_Modules.push_back(&module);
    module.SetTraceMask(MaskOf(module.Number()));
}

void CModuleRegistry::Remove(CModuleInfo& module)
{
    const std::scoped_lock guard(m_Lock);
    std::erase(m_Modules, &module);
}

void CModuleRegistry::SetMask(std::uint32_t moduleNumber, std::uint32_t mask)
{
    const std::scoped_lock guard(m_Lock);
    m_Masks[moduleNumber] = mask;
    ApplyMasks();
}

void CModuleRegistry::SetDefaultMask(std::uint32_t mask)
{
    const std::scoped_lock guard(m_Lock);
    m_DefaultMask = mask;
    ApplyMasks();
}

std::optional<std::string> CModuleRegistry::Text(std::uint32_t number) const
{
    // Holds the lock to the end, so that no module is unloaded while its catalogue is read.
    const std::scoped_lock guard(m_Lock);
    for (const CModuleInfo* module : m_Modules) {
        if (std::optional<std::string> text = module->LanguageFile().Text(number))
            return text;
    }
    return std::nullopt;
}

std::uint32_t CModuleRegistry::MaskOf(std::uint32_t moduleNumber) const
{
    const auto own = m_Masks.find(moduleNumber);
    return own != m_Masks.end() ? own->second : m_DefaultMask;
}

void CModuleRegistry::ApplyMasks()
{
    for (CModuleInfo* module : m_Modules)
        module->SetTraceMask(MaskOf(module->Number()));
}

} // namespace TLX::Misc
