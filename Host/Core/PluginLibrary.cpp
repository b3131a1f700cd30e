#include "Core/PluginLibrary.h"

#include "Core/Failure.h"
#include "Core/Text.h"

#include <PI/ErrorCode.h>

#include <array>
#include <utility>

namespace Host {
namespace {

constexpr std::array REQUEST_NAMES = {"Initialize",     "SetAdapterIDs",   "DeInitialize", "GetTopology",
                                      "GetProperties",  "GetProperty",     "SetProperty",  "GetOperations",
                                      "CheckOperation", "ExecuteOperation"};

std::string resultText(std::uint32_t code)
{
    return std::to_string(code) + " " + std::string(PI::errorName(code));
}

Failure refused(std::int32_t request, std::uint32_t code)
{
    const std::string which = "request " + std::to_string(request) + " (" +
                              std::string(requestName(request)) + ") failed with " + resultText(code);
    if (code == PI::ERR_NO_SUPPORTED_HARDWARE)
        return {ExitCode::NoHardware,
                "No NVMe drive was found: " + which + ". \"ostrel doctor\" says why.",
                {request, code}};
    return {ExitCode::RequestFailed, "The plug-in could not answer: " + which + ".", {request, code}};
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
        throw Failure(ExitCode::RequestFailed,
                      "The plug-in " + m_File + " cannot be loaded: " + printable(error.what()) +
                          ". Name another one with --plugin, or install Ostrel again.");
    }
    create();
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
    const std::uint32_t result = createIf(&plugin);
    if (result != PI::ERR_SUCCESS || plugin == nullptr)
        throw Failure(ExitCode::RequestFailed,
                      "The plug-in " + m_File + " could not be created: " + resultText(result) + ".");
    // An object of another version may even be released differently; it is left alone.
    if (plugin->m_Version != IPLUGINAPI::VERSION)
        throw Failure(ExitCode::RequestFailed,
                      "The plug-in " + m_File + " speaks interface version " +
                          std::to_string(plugin->m_Version) + ", this program version " +
                          std::to_string(IPLUGINAPI::VERSION) + ". Use the two from one release.");
    m_Plugin = std::unique_ptr<IPLUGINAPI, Release>(plugin, Release{releaseIf});
}

void PluginLibrary::request(PI::_REQUEST request, PI::CRequestData& data)
{
    const std::uint32_t code = m_Plugin->Request(request, 0, data);
    if (code != PI::ERR_SUCCESS)
        throw refused(request, code);
}

std::vector<PI::CAdapterID> PluginLibrary::initialize()
{
    PI::CRequestData data = std::vector<PI::CAdapterID>();
    request(PI::REQUEST_INITIALIZE, data);
    return std::get<std::vector<PI::CAdapterID>>(std::move(data));
}

std::vector<PI::CObject> PluginLibrary::topology()
{
    PI::CRequestData data = std::vector<PI::CObject>();
    request(PI::REQUEST_GET_TOPOLOGY, data);
    return std::get<std::vector<PI::CObject>>(std::move(data));
}

} // namespace Host
