#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>

extern "C" __attribute__((visibility("default"))) std::uint32_t createIf(IPLUGINAPI** plugin)
{
    *plugin = nullptr;
    return PI::ERR_OUT_OF_MEMORY;
}

extern "C" __attribute__((visibility("default"))) void releaseIf(IPLUGINAPI** plugin)
{
    *plugin = nullptr;
}
