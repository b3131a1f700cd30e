#pragma once

#include "Core/Platform.h"

#include <PI/IPluginApi.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

/** What people call a request, such as "Initialize". */
std::string_view requestName(std::int32_t request);

/** A loaded plug-in and its one object, released and unloaded on destruction. */
class PluginLibrary
{
public:
    /** Throws `Failure` when the file cannot be loaded, is no plug-in, or speaks another interface version.
     */
    explicit PluginLibrary(const std::filesystem::path& file);

    std::uint32_t version() const { return m_Plugin->m_Version; }
    std::uint32_t module() const { return m_Plugin->m_Module; }

    /** Request 1. Throws `Failure` when the plug-in refuses. */
    std::vector<PI::CAdapterID> initialize();

    /** Request 4. Throws `Failure` when the plug-in refuses. */
    std::vector<PI::CObject> topology();

private:
    struct Release
    {
        ReleaseIfFunction m_Release;
        void operator()(IPLUGINAPI* plugin) const { m_Release(&plugin); }
    };

    template<typename Function>
    Function exported(const char* name) const;
    void create();
    void request(PI::_REQUEST request, PI::CRequestData& data);

    std::string m_File; ///< as messages name it
    std::unique_ptr<Platform::DynamicLibrary> m_Library;
    std::unique_ptr<IPLUGINAPI, Release> m_Plugin{nullptr, Release{nullptr}};
};

} // namespace Host
