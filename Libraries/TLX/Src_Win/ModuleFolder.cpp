#include "ModuleFolder.h"

#include <string>

#include <windows.h>

namespace TLX::Internals {

std::filesystem::path moduleFolder(const void* address)
{
    constexpr DWORD longest = 32'768;
    HMODULE module = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const wchar_t*>(address), &module) == FALSE)
        return {};
    std::wstring file(longest, L'\0');
    file.resize(GetModuleFileNameW(module, file.data(), longest));
    return std::filesystem::path(file).parent_path();
}

} // namespace TLX::Internals
