#pragma once

#include "Base/Platform.h"

#include <PI/IPluginApi.h>
#include <TLX/Event.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

/** The name of a request, such as "Initialize". */
std::string_view requestName(std::int32_t request);

/**
 * A loaded plug-in and its object. The destructor releases the object and unloads the library. Each request
 * throws `Failure` when the plug-in refuses it.
 */
class PluginLibrary
{
public:
    /** Throws `Failure` when the file cannot be loaded, is no plug-in, or has another interface version. */
    explicit PluginLibrary(const std::filesystem::path& file);
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    /** The file's name, fit for messages. */
    const std::string& file() const { return m_File; }
    std::uint32_t version() const { return m_Plugin->m_Version; }
    std::uint32_t module() const { return m_Plugin->m_Module; }

    /** An auto-reset event that is signalled when the plug-in has something to collect. */
    TLX::Threading::CEvent& notified() { return *m_Notified; }

    /** Request 1. */
    std::vector<PI::CAdapterID> initialize();

    /** Request 2. It starts the plug-in's worker, which runs until `deInitialize`. */
    void setAdapterIds(std::vector<PI::CAdapterID> identities);

    /**
     * Request 3. Returns false when a cancelled thread of the plug-in still runs. Then the plug-in must not
     * be asked any more. Its library stays loaded and its object alive until the process ends.
     */
    bool deInitialize();

    /** Request 4. */
    std::vector<PI::CObject> topology();

    /** Request 6. */
    PI::CProperty property(std::uint64_t objectId, std::uint32_t propertyId);

    /** Request 7. */
    void setProperty(std::uint64_t objectId, const PI::CProperty& property);

    /**
     * Request 10 with operation 50002 on the plug-in's own object. Returns the events since the last call.
     */
    std::vector<PI::CEvent> collectEvents(std::uint64_t pluginObjectId);

private:
    struct Release
    {
        ReleaseIfFunction m_Release;
        void operator()(IPLUGINAPI* plugin) const { m_Release(&plugin); }
    };

    template<typename Function>
    Function exported(const char* name) const;
    void create();
    void request(PI::_REQUEST request, std::uint64_t objectId, PI::CRequestData& data);

    std::string m_File;
    bool m_Running = false; ///< whether a thread of the plug-in may run
    std::unique_ptr<TLX::Threading::CEvent> m_Notified = std::make_unique<TLX::Threading::CEvent>();
    std::unique_ptr<Platform::DynamicLibrary> m_Library;
    std::unique_ptr<IPLUGINAPI, Release> m_Plugin{nullptr, Release{nullptr}};
};

} // namespace Host
