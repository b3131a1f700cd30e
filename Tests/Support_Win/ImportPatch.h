#pragma once

#include <windows.h>

namespace TestSupport {

/**
 * Replaces a function that `module` imports, for as long as it lives. The module itself is not changed.
 * Throws `std::runtime_error` when the module imports no function of that name.
 */
class CImportPatch
{
public:
    /** `module` is the file name of a loaded library; null: the program. */
    template<typename Function>
    CImportPatch(const wchar_t* module, const char* name, Function* replacement)
        : m_Slot(find(module, name)), m_Former(Exchange(reinterpret_cast<void*>(replacement), name))
    {}
    ~CImportPatch();
    /** Whether `module` imports a function of that name. */
    static bool Imports(const wchar_t* module, const char* name) { return find(module, name) != nullptr; }

    CImportPatch(const CImportPatch&) = delete;
    CImportPatch& operator=(const CImportPatch&) = delete;

private:
    static void** find(const wchar_t* module, const char* name);
    void* Exchange(void* address, const char* name) const;

    void** m_Slot;
    void* m_Former;
};

} // namespace TestSupport
