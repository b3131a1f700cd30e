// The text of a fleet file. It describes a fleet, or a message says why it does not.
#include "Drives/Fleet.h"
#include "Input.h"

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        (void)Host::parseFleet({reinterpret_cast<const char*>(data), size});
    } catch (const std::runtime_error& error) {
        Fuzz::require(error.what()[0] != '\0');
    }
    return 0;
}
