#include "Exports.h"

#include <TLX/ModuleInfo.h>
#include <TLX/TraceStreamBuffer.h>

namespace {

constexpr std::uint32_t MODULE = 4711;

const TLX::Language_Support::CLanguageSupport::CLngFile g_LanguageFile("Second.nls", 0, "utf-8", 1, {});
TLX::Misc::CModuleInfo g_Module(MODULE, "Second", "1", g_LanguageFile, {});

/** Has one object, its own, and traces its requests at level 2. */
class Plugin : public IPLUGINAPI
{
public:
    Plugin() { m_Module = MODULE; }

    std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData& data) override
    {
        if ((g_Module.TraceMask() & 2U) != 0)
            TLX::Internals::CTraceStreamBuffer(2, g_Module, "Second", "Request", __LINE__)
                << "request %d" << request;
        if (auto* objects = std::get_if<std::vector<PI::CObject>>(&data)) {
            objects->emplace_back().m_ID = std::uint64_t{MODULE} << 48U;
            objects->back().m_Type = PI::TYPE_PLUGIN;
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
