#include "Base/Moment.h"

#include "Base/Platform.h"

#include <TLX/Clock.h>

namespace Host {

Moment presentMoment()
{
    static const std::string boot = Platform::bootIdentity();
    return {TLX::Misc::now(), Platform::uptime(), boot};
}

} // namespace Host
