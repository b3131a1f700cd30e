#include "Plugins/KnownControllers.h"

#include <TLX/Clock.h>

#include <exception>
#include <utility>

namespace Host {

void KnownControllers::read()
{
    m_Read = TLX::Misc::monotonic();
    try {
        m_States = TLXX::controllerStates();
    } catch (const std::exception&) {
        // Events must not be lost because an address is unknown.
        m_States.clear();
        m_Read.reset();
    }
}

void KnownControllers::follow(const std::vector<DriveAnswer>& answers)
{
    std::vector<Sign> signs;
    signs.reserve(answers.size());
    for (const DriveAnswer& answer : answers)
        signs.push_back({answer.m_Instance, answer.m_DeviceName, answer.m_Status});
    const bool isOld = !m_Read || TLX::Misc::monotonic() - *m_Read >= LONGEST;
    if (signs != std::exchange(m_Signs, signs) || isOld)
        read();
}

} // namespace Host
