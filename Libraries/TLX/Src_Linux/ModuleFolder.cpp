#include "ModuleFolder.h"

#include <dlfcn.h>

namespace TLX::Internals {

std::filesystem::path moduleFolder(const void* address)
{
    Dl_info module{};
    if (dladdr(address, &module) == 0 || module.dli_fname == nullptr)
        return {};
    return std::filesystem::path(module.dli_fname).parent_path();
}

} // namespace TLX::Internals
