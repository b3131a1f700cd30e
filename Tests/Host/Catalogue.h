#pragma once

#include "Host/Built.h"

#include <TLX/ModuleInfo.h>

namespace HostTest {

/** The product's own texts, as if its plug-in were loaded. */
class Catalogue
{
public:
    Catalogue() { TLX::Language_Support::CLanguageSupport::SetFolder(Built::SHARE); }

private:
    TLX::Language_Support::CLanguageSupport::CLngFile m_File{"Ostrel.nls", 25966, "utf-8", 1, {}};
    TLX::Misc::CErrorMessageList m_Errors;
    TLX::Misc::CModuleInfo m_Module{4711, "HostTest", "1", m_File, m_Errors};
};

} // namespace HostTest
