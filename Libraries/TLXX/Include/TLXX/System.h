#pragma once

#include <TLXX/Export.h>

#include <string>

namespace TLXX {

/** Information about the operating system. */
class TLXX_EXPORT CSystem
{
public:
    /**
     * The version text of the driver `module`: its file version, or on Linux the module's or kernel's. Empty
     * if unknown. Throws `std::runtime_error` or `std::bad_alloc` when descriptors or memory run out.
     */
    static std::string GetModuleVersion(const std::string& module);
};

} // namespace TLXX
