#include "Ostrel/PluginApi.h"

#include <PI/PollInterval.h>

#include <string>

namespace NAMESPACE_Ostrel {

void IPLUGINAPI_IMPL::LoadSettings()
{
    m_ConfigFile.SetFileName("Ostrel.ini");
    std::string text;
    m_PollInterval = m_ConfigFile.ReadKeyValue(PI::POLL_INTERVAL_KEY, text, -1, -1) == 0
                         ? PI::pollIntervalOf(text)
                         : PI::USUAL_POLL_INTERVAL;
}

} // namespace NAMESPACE_Ostrel
