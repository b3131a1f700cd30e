#pragma once

#include <TLX/Export.h>
#include <TLX/LanguageSupport.h>

#include <atomic>
#include <cstdint>
#include <string>

namespace TLX::Misc {

/** A module's list of error messages. The plug-in hands over an empty one; the header word gives its size. */
struct CErrorMessageList
{
    std::uint32_t m_Size = sizeof(CErrorMessageList);
    std::uint32_t m_Reserved[3] = {};
};

/**
 * A module's description of itself, and the mask that decides which of its trace lines are written. Lives as
 * long as the module's library. It registers itself when constructed, so a mask that the host has set before
 * applies at once.
 */
class TLX_EXPORT CModuleInfo
{
public:
    /** `languageFile` must outlive it. */
    CModuleInfo(std::uint32_t number, std::string name, std::string version,
                const Language_Support::CLanguageSupport::CLngFile& languageFile,
                const CErrorMessageList& errors);
    ~CModuleInfo();
    CModuleInfo(const CModuleInfo&) = delete;
    CModuleInfo& operator=(const CModuleInfo&) = delete;

    std::uint32_t Number() const { return m_Number; }
    const std::string& Name() const { return m_Name; }
    const std::string& Version() const { return m_Version; }
    const Language_Support::CLanguageSupport::CLngFile& LanguageFile() const { return m_LanguageFile; }

    const CErrorMessageList& Errors() const { return m_Errors; }

    /** The levels that are written. Safe from any thread; costs one relaxed load. */
    std::uint32_t TraceMask() const { return m_TraceMask.load(std::memory_order_relaxed); }

    /**
     * Sets the levels that are written. Hosts use `TLX::Trace::setMask`, which needs no reference to the
     * module.
     */
    void SetTraceMask(std::uint32_t mask) { m_TraceMask.store(mask, std::memory_order_relaxed); }

private:
    std::uint32_t m_Number;
    std::string m_Name;
    std::string m_Version;
    const Language_Support::CLanguageSupport::CLngFile& m_LanguageFile;
    CErrorMessageList m_Errors;
    std::atomic<std::uint32_t> m_TraceMask;
};

} // namespace TLX::Misc
