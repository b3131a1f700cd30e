#include "Plugins/PluginLibrary.h"

#include "Base/Failure.h"
#include "Base/Text.h"

#include <PI/ErrorCode.h>
#include <TLX/CancelledThreads.h>
#include <TLX/WaitResult.h>

#include <array>
#include <tuple>
#include <utility>

namespace Host {
namespace {

constexpr std::array REQUEST_NAMES = {"Initialize",     "SetAdapterIDs",   "DeInitialize", "GetTopology",
                                      "GetProperties",  "GetProperty",     "SetProperty",  "GetOperations",
                                      "CheckOperation", "ExecuteOperation"};

/**
 * Plug-ins call this from any thread and while they hold locks. So it must not take a lock or send a request.
 */
void note(std::uintptr_t context, IPLUGINAPI* /*plugin*/)
{
    // The interface carries the context as a word. NOLINTNEXTLINE(performance-no-int-to-ptr)
    reinterpret_cast<TLX::Threading::CEvent*>(context)->Set();
}

/** Keeps things until the process ends, in a place where leak checkers find them. */
template<typename... Things>
void keepForGood(Things... things)
{
    static auto& kept = *new std::vector<std::tuple<Things...>>;
    kept.emplace_back(std::move(things)...);
}

std::string resultText(std::uint32_t code)
{
    return std::to_string(code) + " " + std::string(PI::errorName(code));
}

Failure refused(const std::string& plugin, std::int32_t request, std::uint32_t code)
{
    const std::string refusal = "The plug-in " + plugin + " refused request " + std::to_string(request) +
                                " (" + std::string(requestName(request)) + ") with " + resultText(code) + ".";
    if (code == PI::ERR_NO_SUPPORTED_HARDWARE)
        return {ExitCode::NoHardware,
                "No NVMe drive was found. " + refusal + " \"ostrel doctor\" says why.",
                {request, code}};
    return {ExitCode::RequestFailed, refusal, {request, code}};
}

/** Adds the plug-in's name to an exception that the plug-in throws. */
template<typename Call>
auto guarded(const std::string& plugin, const std::string& where, const Call& call)
{
    const std::string what = "The plug-in " + plugin + " failed in " + where;
    try {
        return call();
    } catch (const std::exception& error) {
        throw Failure(ExitCode::RequestFailed, what + ": " + printable(error.what()) + ".");
    }
}

} // namespace

std::string_view requestName(std::int32_t request)
{
    return request >= 1 && static_cast<std::size_t>(request) <= REQUEST_NAMES.size()
               ? REQUEST_NAMES[static_cast<std::size_t>(request) - 1]
               : "unknown";
}

PluginLibrary::PluginLibrary(const std::filesystem::path& file) : m_File(printable(file.string()))
{
    try {
        m_Library = std::make_unique<Platform::DynamicLibrary>(file);
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::RequestFailed, "The plug-in " + m_File +
                                                   " cannot be loaded: " + printable(error.what()) +
                                                   ". Correct --plugin, or install Ostrel again.");
    }
    if (m_Notified->Init(false, false) != TLX::Threading::WaitResult::Taken)
        throw Failure(ExitCode::RequestFailed,
                      "The system cannot create an event for the plug-in " + m_File + ".");
    create();
}

PluginLibrary::~PluginLibrary()
{
    if (!m_Running)
        return;
    // The thread needs all three until the process ends.
    keepForGood(std::move(m_Notified), std::move(m_Library), std::move(m_Plugin));
}

template<typename Function>
Function PluginLibrary::exported(const char* name) const
{
    void* const address = m_Library->symbol(name);
    if (address == nullptr)
        throw Failure(ExitCode::RequestFailed,
                      m_File + " is no plug-in: it does not export \"" + name + "\".");
    return reinterpret_cast<Function>(address);
}

void PluginLibrary::create()
{
    const auto createIf = exported<CreateIfFunction>("createIf");
    const auto releaseIf = exported<ReleaseIfFunction>("releaseIf");
    IPLUGINAPI* plugin = nullptr;
    const std::uint32_t result = guarded(m_File, "createIf", [&] { return createIf(&plugin); });
    if (result != PI::ERR_SUCCESS || plugin == nullptr)
        throw Failure(ExitCode::RequestFailed,
                      "The plug-in " + m_File + " could not be created: " + resultText(result) + ".");
    // Even the release of the object may differ in another version. So the object is not released.
    if (plugin->m_Version != IPLUGINAPI::VERSION)
        throw Failure(ExitCode::RequestFailed,
                      "The plug-in " + m_File + " has interface version " +
                          std::to_string(plugin->m_Version) + ", but this program has version " +
                          std::to_string(IPLUGINAPI::VERSION) + ". Use both from the same release.");
    m_Plugin = std::unique_ptr<IPLUGINAPI, Release>(plugin, Release{releaseIf});
    m_Plugin->m_HostContext = reinterpret_cast<std::uintptr_t>(m_Notified.get());
    m_Plugin->m_HostCallback = note;
}

void PluginLibrary::request(PI::_REQUEST request, std::uint64_t objectId, PI::CRequestData& data)
{
    const std::string where =
        "request " + std::to_string(request) + " (" + std::string(requestName(request)) + ")";
    const std::uint32_t code =
        guarded(m_File, where, [&] { return m_Plugin->Request(request, objectId, data); });
    if (code != PI::ERR_SUCCESS)
        throw refused(m_File, request, code);
}

std::vector<PI::CAdapterID> PluginLibrary::initialize()
{
    PI::CRequestData data = std::vector<PI::CAdapterID>();
    request(PI::REQUEST_INITIALIZE, 0, data);
    return std::get<std::vector<PI::CAdapterID>>(std::move(data));
}

void PluginLibrary::setAdapterIds(std::vector<PI::CAdapterID> identities)
{
    PI::CRequestData data = std::move(identities);
    request(PI::REQUEST_SET_ADAPTER_IDS, 0, data);
    m_Running = true;
}

bool PluginLibrary::deInitialize()
{
    PI::CRequestData data;
    request(PI::REQUEST_DEINITIALIZE, 0, data);
    // The result of the request does not tell this. A plug-in cancels a thread that does not end by itself.
    // The cancellation may fail or take time.
    m_Running = TLX::Threading::cancelledThreadRuns();
    return !m_Running;
}

std::vector<PI::CObject> PluginLibrary::topology()
{
    PI::CRequestData data = std::vector<PI::CObject>();
    request(PI::REQUEST_GET_TOPOLOGY, 0, data);
    return std::get<std::vector<PI::CObject>>(std::move(data));
}

PI::CProperty PluginLibrary::property(std::uint64_t objectId, std::uint32_t propertyId)
{
    PI::CRequestData data = PI::CProperty(propertyId, false);
    request(PI::REQUEST_GET_PROPERTY, objectId, data);
    return std::get<PI::CProperty>(std::move(data));
}

void PluginLibrary::setProperty(std::uint64_t objectId, const PI::CProperty& property)
{
    PI::CRequestData data = property;
    request(PI::REQUEST_SET_PROPERTY, objectId, data);
}

std::vector<PI::CEvent> PluginLibrary::collectEvents(std::uint64_t pluginObjectId)
{
    PI::COperationTemplate words{};
    words.m_Id = PI::OPERATION_GET_EVENTS;
    PI::CRequestData data = PI::COperation(words);
    request(PI::REQUEST_EXECUTE_OPERATION, pluginObjectId, data);
    return std::get<PI::COperation>(data).Events();
}

} // namespace Host
