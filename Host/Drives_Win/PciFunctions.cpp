#include "Base/Platform.h"

#include <TLXX/Win/DeviceNodes.h>

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <locale>

#include <windows.h>
#include <cfgmgr32.h>

namespace Host::Platform {
namespace {

using TLXX::Win::DeviceNode;

/** Class, subclass and programming interface of an NVM Express I/O controller. */
constexpr const char* NVME_CLASS = "PCI\\CC_010802";

bool isNvmeFunction(DeviceNode node)
{
    const std::vector<std::string> identifiers = TLXX::Win::nodeTexts(node, CM_DRP_COMPATIBLEIDS);
    return std::any_of(identifiers.begin(), identifiers.end(), [](const std::string& identifier) {
        return boost::iequals(identifier, NVME_CLASS, std::locale::classic());
    });
}

std::string addressOf(DeviceNode node)
{
    const auto location = TLXX::Win::nodeLocation(node);
    return location ? location->Text() : "a place that Windows does not report";
}

} // namespace

bool isPassThrough(std::string_view driver)
{
    // The proxy that Hyper-V uses in place of a device that it gave to a virtual machine.
    return boost::iequals(driver, "pcip", std::locale::classic());
}

std::string_view passThroughRemedy()
{
    return "To get it back, take it from the virtual machine (Remove-VMAssignableDevice), mount it "
           "(Mount-VMHostAssignableDevice), and enable it in the Device Manager.";
}

std::vector<UnservedFunction> unservedFunctions()
{
    std::vector<UnservedFunction> functions;
    for (const DeviceNode node : TLXX::Win::deviceNodes()) {
        if (!isNvmeFunction(node))
            continue;
        const std::string service = TLXX::Win::nodeService(node);
        if (!boost::iequals(service, "stornvme", std::locale::classic()))
            functions.push_back({addressOf(node), service});
    }
    return functions;
}

} // namespace Host::Platform
