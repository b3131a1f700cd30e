#include "Support_Win/ImportPatch.h"

#include "Support_Win/Image.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace TestSupport {

CImportPatch::~CImportPatch()
{
    *m_Slot = m_Former;
}

void** CImportPatch::find(const wchar_t* module, const char* name)
{
    auto* const base = reinterpret_cast<std::uint8_t*>(GetModuleHandleW(module));
    if (base == nullptr)
        return nullptr;
    const IMAGE_DATA_DIRECTORY& directory = imageDirectory(base, IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (auto* entry = at<IMAGE_IMPORT_DESCRIPTOR>(base, directory.VirtualAddress); entry->Name != 0;
         ++entry) {
        const auto* names = at<IMAGE_THUNK_DATA>(base, entry->OriginalFirstThunk);
        auto* slots = at<IMAGE_THUNK_DATA>(base, entry->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const char* const imported = at<IMAGE_IMPORT_BY_NAME>(base, names->u1.AddressOfData)->Name;
            if (std::string_view(imported) == name)
                return reinterpret_cast<void**>(&slots->u1.Function);
        }
    }
    return nullptr;
}

void* CImportPatch::Exchange(void* address, const char* name) const
{
    if (m_Slot == nullptr)
        throw std::runtime_error(std::string("no import ") + name);
    DWORD former = 0;
    // Stays writable, because the destructor restores it.
    if (VirtualProtect(m_Slot, sizeof *m_Slot, PAGE_READWRITE, &former) == FALSE)
        throw std::runtime_error("the imports cannot be written");
    return std::exchange(*m_Slot, address);
}

} // namespace TestSupport
