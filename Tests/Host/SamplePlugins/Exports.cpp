#include "Exports.h"

extern "C" __attribute__((visibility("default"))) std::uint32_t createIf(IPLUGINAPI** plugin)
{
    return HostTest::create(*plugin);
}

extern "C" __attribute__((visibility("default"))) void releaseIf(IPLUGINAPI** plugin)
{
    delete *plugin;
    *plugin = nullptr;
}
