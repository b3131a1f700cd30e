#include "Ostrel/CarriedIdentity.h"
#include "Ostrel/PluginApi.h"
#include "Records/Location.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <TLXX/NvmeText.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint8_t INTEL_DRIVE_MARKETING_LOG_PAGE = 0xDD;

/** The family's name and then the part number. The part number alone when the page names no family. */
std::string intelProductName(const std::string& model, const TLXX::VendorLogPage& marketing)
{
    const std::string part = model.substr(model.find(' ') + 1); // all of it when it has no blank
    constexpr std::string_view SERIES = " Series";
    const auto* const series = std::search(marketing.begin(), marketing.end(), SERIES.begin(), SERIES.end());
    const std::string family = TLXX::boundedText({marketing.begin(), series});
    return family.empty() ? part : family + ' ' + part;
}

} // namespace

std::uint32_t IPLUGINAPI_IMPL::ScanPhysicalDrive(CNVMePhysicalDrive& drive, const NVMeDevice& device,
                                                 const CNVMeAdapter& adapter, const CScanContext& context)
{
    drive.m_Type = PI::TYPE_PHYSICAL_DRIVE;
    drive.m_DeviceIndex = adapter.m_DeviceIndex;
    drive.m_DeviceName = adapter.m_DeviceName;
    drive.m_Vendor = adapter.m_Vendor;
    drive.m_Model = adapter.m_Model;
    drive.m_SerialNumber = adapter.m_SerialNumber;
    drive.m_Temperature = adapter.m_Temperature;

    drive.m_CapacityMiB = device.identifyController.Capacity(device.identifyNamespace) >> 20U;
    drive.m_UsableCapacityMiB = drive.m_CapacityMiB;
    drive.m_BlockSize = static_cast<std::uint32_t>(device.identifyNamespace.LBASize());
    drive.m_ReservedMiB = 0;
    drive.m_ReservedPercent = 0;

    drive.m_ProductName = drive.m_Model;
    if (drive.m_Vendor == "MICRON")
        std::replace(drive.m_ProductName.begin(), drive.m_ProductName.end(), '_', ' ');
    if (drive.m_Vendor == "INTEL") {
        TLXX::VendorLogPage page{};
        if (device.queryVendorLogPage(INTEL_DRIVE_MARKETING_LOG_PAGE, page)) {
            OSTREL_TRACE(TRACE_PROGRESS)
                << "ScanSystem, getVendorSpecificLogPage: INTEL_DRIVE_MARKETING_LOG_PAGE for %s returned: %d"
                << device.deviceName << true;
        }
        drive.m_ProductName = intelProductName(drive.m_Model, page);
    }

    if (!context.m_PublishedDrives || !carryIdentity(drive, *context.m_PublishedDrives)) {
        drive.m_ID = NextObjectID();
        if (context.m_PublishedDrives) {
            OSTREL_TRACE(TRACE_FLOW) << "The drive is not found yet!";
        }
    }
    drive.m_Location = driveLocation(adapter.m_Location);
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
