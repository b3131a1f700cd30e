// The smallest plug-in that a host can load: its own object with one adapter below it, and trace lines.
#include <PI/ErrorCode.h>
#include <PI/IPluginApi.h>
#include <TLX/ModuleInfo.h>
#include <TLX/TraceStreamBuffer.h>

#if defined(_WIN32)
#define TINY_EXPORT extern "C" __declspec(dllexport)
#else
#define TINY_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

constexpr std::uint32_t MODULE = 1000;
constexpr std::uint64_t PLUGIN_ID = std::uint64_t{MODULE} << 48U;
constexpr std::uint64_t ADAPTER_ID = PLUGIN_ID | 1U;
constexpr std::uint32_t TRACE_REQUESTS = 2;

const TLX::Language_Support::CLanguageSupport::CLngFile g_LanguageFile("Tiny.nls", 0, "utf-8", 1, {});
TLX::Misc::CModuleInfo g_Module(MODULE, "Tiny", "1.0", g_LanguageFile, {});

PI::CProperty text(std::uint32_t id, const std::string& value)
{
    PI::CProperty property(id, false);
    property.SetValue(value);
    return property;
}

std::vector<PI::CObject> topology()
{
    std::vector<PI::CObject> objects(2);
    objects[0].m_ID = PLUGIN_ID;
    objects[0].m_Type = PI::TYPE_PLUGIN;
    objects[0].m_Children = {ADAPTER_ID};
    objects[0].m_Properties = {text(PI::PROP_NAME, "Tiny plug-in")};
    objects[1].m_ID = ADAPTER_ID;
    objects[1].m_Type = PI::TYPE_ADAPTER;
    objects[1].m_Parents = {PLUGIN_ID};
    objects[1].m_Properties = {text(PI::PROP_SERIAL_NUMBER, "TINY-1"), text(PI::PROP_MODEL, "Tiny adapter")};
    return objects;
}

class TinyPlugin : public IPLUGINAPI
{
public:
    TinyPlugin() { m_Module = MODULE; }

    std::uint32_t Request(std::int32_t request, std::uint64_t, PI::CRequestData& data) override
    {
        if ((g_Module.TraceMask() & TRACE_REQUESTS) != 0)
            TLX::Internals::CTraceStreamBuffer(TRACE_REQUESTS, g_Module, "Tests/Consumer",
                                               "TinyPlugin::Request", __LINE__)
                << "request %d" << request;
        switch (request) {
        case PI::REQUEST_INITIALIZE:
            data = std::vector<PI::CAdapterID>(1);
            return PI::ERR_SUCCESS;
        case PI::REQUEST_GET_TOPOLOGY:
            data = topology();
            return PI::ERR_SUCCESS;
        case PI::REQUEST_SET_ADAPTER_IDS:
        case PI::REQUEST_DEINITIALIZE:
        case PI::REQUEST_EXECUTE_OPERATION:
            return PI::ERR_SUCCESS;
        default:
            return PI::ERR_UNKNOWN_REQUEST;
        }
    }
};

} // namespace

TINY_EXPORT std::uint32_t createIf(IPLUGINAPI** plugin)
{
    *plugin = new TinyPlugin;
    return PI::ERR_SUCCESS;
}

TINY_EXPORT void releaseIf(IPLUGINAPI** plugin)
{
    delete *plugin;
    *plugin = nullptr;
}
