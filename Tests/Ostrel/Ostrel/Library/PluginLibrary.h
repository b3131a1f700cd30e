#pragma once

#include <PI/IPluginApi.h>

#include <memory>

/** The built plug-in library, loaded as a host does it. */
class CPluginLibrary
{
public:
    /** Throws `std::runtime_error` when the library or one of its exports is missing. */
    CPluginLibrary();

    CreateIfFunction m_CreateIf;
    ReleaseIfFunction m_ReleaseIf;

private:
    struct CClose
    {
        void operator()(void* handle) const;
    };
    std::unique_ptr<void, CClose> m_Handle;
};
