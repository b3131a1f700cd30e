#include "Exports.h"

#include <TLX/Clock.h>

#include <cstdio>

namespace {

/** Never returns from request 1, as if a drive did not answer. */
class Plugin : public IPLUGINAPI
{
public:
    std::uint32_t Request(std::int32_t, std::uint64_t, PI::CRequestData&) override
    {
        constexpr std::uint32_t minute = 60'000;
        std::puts("starting");
        (void)std::fflush(stdout);
        for (;;)
            TLX::Misc::pause(minute);
    }
};

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = new Plugin;
    return PI::ERR_SUCCESS;
}
