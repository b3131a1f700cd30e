#include "Exports.h"

namespace {

class Plugin : public IPLUGINAPI
{
public:
    Plugin() { m_Version = VERSION + 1; }
    std::uint32_t Request(std::int32_t, std::uint64_t, PI::CRequestData&) override { return PI::ERR_SUCCESS; }
};

// A host that finds another version does not release the object, so an object on the heap would leak.
Plugin g_Plugin;

} // namespace

std::uint32_t HostTest::create(IPLUGINAPI*& plugin)
{
    plugin = &g_Plugin;
    return PI::ERR_SUCCESS;
}
