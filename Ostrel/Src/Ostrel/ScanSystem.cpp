#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"
#include "Records/Vendor.h"

#include <PI/ErrorCode.h>
#include <TLXX/NvmeQuery.h>

#include <cstddef>
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
    if (device.identifyController.VID != PCI_VENDOR_INTEL)
        return false;
    const std::string model = device.identifyController.sModelNumber();
    return model.size() > MAKER && std::string_view(model).substr(MAKER).starts_with("SSDPF21Q");
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
    adapters.reserve(m_NVMeDevices.size());
    physicalDrives.reserve(m_NVMeDevices.size());
    CScanContext context(m_AdapterIDs);
    if (!initial) {
        context.m_PublishedAdapters.emplace(std::as_const(m_Adapters));
        context.m_PublishedDrives.emplace(std::as_const(m_PhysicalDrives));
    }
    std::uint32_t deviceIndex = 0;
    for (const NVMeDevice& device : m_NVMeDevices) {
        const TLXX::CQuerySession session(device.deviceName);
        CNVMeAdapter& adapter = adapters.emplace_back();
        ScanAdpater(adapter, deviceIndex++, device, context);
        CNVMePhysicalDrive& drive = physicalDrives.emplace_back();
        ScanPhysicalDrive(drive, device, adapter, context);
        adapter.m_Children.push_back(drive.m_ID);
        drive.m_Parents.push_back(adapter.m_ID);
    }
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, Non-Intel NVMe AdapterCount = %d" << adapters.size();
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
