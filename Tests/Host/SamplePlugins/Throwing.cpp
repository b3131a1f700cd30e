#include "Exports.h"

#include <stdexcept>

namespace {

/** Breaks the rule that no exception leaves a request. */
class Plugin : public IPLUGINAPI
{
public:
    std::uint32_t Request(std::int32_t, std::uint64_t, PI::CRequestData&) override
    {
        throw std::runtime_error("bad\nluck");
    }
};

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = new Plugin;
    return PI::ERR_SUCCESS;
}
