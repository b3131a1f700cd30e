#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>

namespace {

/** Initializes, and then has no topology to show. */
class Plugin : public IPLUGINAPI
{
public:
    std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData&) override
    {
        return request == PI::REQUEST_INITIALIZE ? PI::ERR_SUCCESS : PI::ERR_GENERAL_FAILURE;
    }
};

} // namespace

extern "C" __attribute__((visibility("default"))) std::uint32_t createIf(IPLUGINAPI** plugin)
{
    *plugin = new Plugin;
    return PI::ERR_SUCCESS;
}

extern "C" __attribute__((visibility("default"))) void releaseIf(IPLUGINAPI** plugin)
{
    delete *plugin;
    *plugin = nullptr;
}
