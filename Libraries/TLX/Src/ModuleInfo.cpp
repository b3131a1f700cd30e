#include "ModuleRegistry.h"

#include <utility>

namespace TLX::Misc {

CModuleInfo::CModuleInfo(std::uint32_t number, std::string name, std::string version,
                         const Language_Support::CLanguageSupport::CLngFile& languageFile,
                         const CErrorMessageList& errors)
    : m_Number(number),
      m_Name(std::move(name)),
      m_Version(std::move(version)),
      m_LanguageFile(languageFile),
      m_Errors(errors),
      m_TraceMask(0)
{
    CModuleRegistry::Instance().Add(*this);
}

CModuleInfo::~CModuleInfo()
{
    CModuleRegistry::Instance().Remove(*this);
}

} // namespace TLX::Misc
