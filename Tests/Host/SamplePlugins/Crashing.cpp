#include "Exports.h"

#include <csignal>
#include <cstdlib>

namespace {

/** Crashes at its first request, the way that the environment names. */
class Plugin : public IPLUGINAPI
{
public:
    std::uint32_t Request(std::int32_t, std::uint64_t, PI::CRequestData&) override
    {
        const char* const aborts = std::getenv("OSTREL_TEST_ABORTS");
        if (aborts != nullptr)
            std::abort();
        (void)std::raise(SIGSEGV);
        return PI::ERR_GENERAL_FAILURE;
    }
};

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = new Plugin;
    return PI::ERR_SUCCESS;
}
