#include "Exports.h"

#include <TLX/Clock.h>

#include <cstdio>

namespace {

void say(const char* where)
{
    std::puts(where);
    (void)std::fflush(stdout);
}

/** Shows only itself, and takes long to end and to be released. */
class Plugin : public IPLUGINAPI
{
public:
    ~Plugin() override { TLX::Misc::pause(1); }

    std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData& data) override
    {
        if (request == PI::REQUEST_GET_TOPOLOGY) {
            auto& objects = std::get<std::vector<PI::CObject>>(data);
            objects.resize(1);
            objects[0].m_Type = PI::TYPE_PLUGIN;
        }
        if (request == PI::REQUEST_SET_ADAPTER_IDS)
            say("watching");
        if (request == PI::REQUEST_DEINITIALIZE) {
            say("ending");
            TLX::Misc::pause(24'999);
        }
        return PI::ERR_SUCCESS;
    }
};

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = new Plugin;
    return PI::ERR_SUCCESS;
}
