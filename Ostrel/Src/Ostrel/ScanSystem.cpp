#include "Ostrel/PluginApi.h"
#include "Ostrel/Trace.h"
#include "Ostrel/Vendor.h"

#include <PI/ErrorCode.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NAMESPACE_Ostrel {
namespace {

/** The one product line that never becomes an object. */
bool isExcluded(const NVMeDevice& device)
{
    constexpr std::size_t MAKER = 6;
    const std::string model = device.identifyController.sModelNumber();
    return device.identifyController.VID == PCI_VENDOR_INTEL && model.size() > MAKER &&
           std::string_view(model).substr(MAKER).starts_with("SSDPF21Q");
}

} // namespace

std::uint32_t IPLUGINAPI_IMPL::ScanSystem(std::vector<CNVMeAdapter>& adapters,
                                          std::vector<CNVMePhysicalDrive>& physicalDrives, bool initial)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER ScanSystem";
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, NVMe AdapterCount = %d" << m_NVMeDevices.size();
    adapters.clear();
    physicalDrives.clear();
    std::erase_if(m_NVMeDevices, isExcluded);
    std::optional<PublishedAdapters> publishedAdapters;
    std::optional<PublishedDrives> publishedDrives;
    if (!initial) {
        publishedAdapters.emplace(std::as_const(m_Adapters));
        publishedDrives.emplace(std::as_const(m_PhysicalDrives));
    }
    std::uint32_t deviceIndex = 0;
    for (const NVMeDevice& device : m_NVMeDevices) {
        CNVMeAdapter adapter;
        ScanAdpater(adapter, deviceIndex++, device, publishedAdapters ? &*publishedAdapters : nullptr);
        CNVMePhysicalDrive drive;
        ScanPhysicalDrive(drive, device, adapter, publishedDrives ? &*publishedDrives : nullptr);
        adapter.m_Children.push_back(drive.m_ID);
        drive.m_Parents.push_back(adapter.m_ID);
        adapters.push_back(adapter);
        physicalDrives.push_back(drive);
    }
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, Non-Intel NVMe AdapterCount = %d" << adapters.size();
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
