#include "Exports.h"

namespace {

/** Initializes, but then fails to show a topology. */
class Plugin : public IPLUGINAPI
{
public:
    std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData&) override
    {
        return request == PI::REQUEST_INITIALIZE ? PI::ERR_SUCCESS : PI::ERR_GENERAL_FAILURE;
    }
};

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = new Plugin;
    return PI::ERR_SUCCESS;
}
