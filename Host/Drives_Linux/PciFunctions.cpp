#include "Drives_Linux/PciFunctions.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace Host::Platform {
namespace {

/** Class, subclass and programming interface of an NVM Express I/O controller. */
constexpr std::string_view NVME_CLASS = "0x010802";

/** Drivers that reserve a device for a virtual machine or for a program with a driver of its own. */
constexpr std::string_view PASS_THROUGH[] = {"vfio-pci",    "pci-stub",        "pciback",
                                             "xen-pciback", "uio_pci_generic", "igb_uio"};

} // namespace

std::vector<UnservedFunction> unservedFunctionsBelow(const std::filesystem::path& root)
{
    std::vector<UnservedFunction> functions;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(root / "bus" / "pci" / "devices", error), end;
         !error && entry != end; entry.increment(error)) {
        std::string pciClass;
        std::ifstream(entry->path() / "class") >> pciClass;
        if (pciClass != NVME_CLASS)
            continue;
        std::error_code unbound;
        const std::string driver =
            std::filesystem::read_symlink(entry->path() / "driver", unbound).filename().string();
        if (driver != "nvme")
            functions.push_back({entry->path().filename().string(), driver});
    }
    std::sort(functions.begin(), functions.end(),
              [](const UnservedFunction& a, const UnservedFunction& b) { return a.m_Address < b.m_Address; });
    return functions;
}

bool isPassThrough(std::string_view driver)
{
    return std::find(std::begin(PASS_THROUGH), std::end(PASS_THROUGH), driver) != std::end(PASS_THROUGH);
}

std::string_view passThroughRemedy()
{
    return "To get it back, end the program that uses it. Then bind it to the driver nvme, for example with "
           "\"driverctl unset-override ADDRESS\".";
}

std::vector<UnservedFunction> unservedFunctions()
{
    return unservedFunctionsBelow("/sys");
}

} // namespace Host::Platform
