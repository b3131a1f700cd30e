#include "PluginLibrary.h"

#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace {

template<typename Function>
Function find(void* library, const char* name)
{
    void* symbol = dlsym(library, name);
    if (symbol == nullptr)
        throw std::runtime_error(std::string("no export ") + name);
    return reinterpret_cast<Function>(symbol);
}

} // namespace

CPluginLibrary::CPluginLibrary() : m_Handle(dlopen(OSTREL_LIBRARY, RTLD_NOW | RTLD_LOCAL))
{
    if (!m_Handle)
        throw std::runtime_error(dlerror());
    m_CreateIf = find<CreateIfFunction>(m_Handle.get(), "createIf");
    m_ReleaseIf = find<ReleaseIfFunction>(m_Handle.get(), "releaseIf");
}

void CPluginLibrary::CClose::operator()(void* handle) const
{
    dlclose(handle);
}
