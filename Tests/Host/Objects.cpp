#include "Host/Objects.h"

#include <PI/StateCode.h>

namespace HostTest {

DriveObjects::DriveObjects(std::uint64_t id, const std::string& serial, const std::string& device)
{
    const std::string location = "PCI:Bus=" + std::to_string(id) + "&Device=0&Function=0";
    m_Adapter.m_ID = id;
    m_Adapter.m_Type = PI::TYPE_ADAPTER;
    m_Adapter.m_Children = {id + 1};
    m_Adapter.m_Properties = {
        property(PI::PROP_NAME, 1, ""),
        property(PI::PROP_VENDOR, 1, "INTEL"),
        property(PI::PROP_MODEL, 1, "MODEL-OF-THE-ADAPTER"),
        property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::HEALTH_CRITICAL},
                 std::vector<std::uint32_t>{PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED, PI::HEALTH_CRITICAL}),
        property(PI::PROP_PCI_SEGMENT, 1, std::uint64_t{0}),
        property(PI::PROP_PCI_BUS, 1, std::uint64_t{id}),
        property(PI::PROP_PCI_DEVICE, 1, std::uint64_t{0x1f}),
        property(PI::PROP_PCI_FUNCTION, 1, std::uint64_t{1}),
        property(PI::PROP_LOCATION, 1, location),
        property(PI::PROP_SERIAL_NUMBER, 1, serial),
        property(PI::PROP_FIRMWARE, 1, "FW1"),
        property(PI::PROP_DEVICE_NAME, 1, device),
        property(PI::PROP_DRIVER, 1, "nvme"),
        property(PI::PROP_DRIVER_VERSION, 1, "6.1"),
        property(PI::PROP_POWER_ON_HOURS, PI::UNIT_HOURS, std::uint64_t{11}),
        property(PI::PROP_AVAILABLE_SPARE, PI::UNIT_PERCENT, 98, 0, 100, 1),
        property(PI::PROP_SPARE_THRESHOLD, PI::UNIT_PERCENT, 7, 1, 100, 1),
        property(PI::PROP_DATA_READ, PI::UNIT_TIB, 1.6F),
        property(PI::PROP_DATA_WRITTEN, PI::UNIT_GIB, 2.5F),
        property(PI::PROP_ENDURANCE_USED, PI::UNIT_PERCENT, 120, 0, 100, 1),
        property(PI::PROP_MEDIA_ERRORS, 1, std::uint64_t{13}),
        property(PI::PROP_STATUS_REASONS, 1,
                 std::vector<std::uint32_t>{PI::REASON_SPARE_LOW, PI::REASON_READ_ONLY},
                 std::vector<std::uint32_t>{PI::FORESEEN_REASONS[0]}),
    };
    m_Drive.m_ID = id + 1;
    m_Drive.m_Type = PI::TYPE_PHYSICAL_DRIVE;
    m_Drive.m_Parents = {id};
    m_Drive.m_Properties = {
        property(PI::PROP_NAME, 1, "Product"),
        property(PI::PROP_LOCATION, 1, location + "&ID=0"),
        property(PI::PROP_MODEL, 1, "MODEL-OF-THE-DRIVE"),
        property(PI::PROP_CAPACITY, PI::UNIT_MIB, std::uint64_t{1907729}),
        property(PI::PROP_BLOCK_SIZE, PI::UNIT_BYTES, std::uint64_t{4096}),
        property(PI::PROP_DRIVE_TEMPERATURE, PI::UNIT_CELSIUS, 36.0F),
        property(PI::PROP_SERIAL_NUMBER, 1, serial),
    };
}

void DriveObjects::remove(std::uint32_t propertyId)
{
    const auto matches = [&](const PI::CProperty& candidate) { return candidate.Id() == propertyId; };
    std::erase_if(m_Adapter.m_Properties, matches);
    std::erase_if(m_Drive.m_Properties, matches);
}

std::vector<PI::CObject> topologyOf(const std::vector<DriveObjects>& drives)
{
    PI::CObject plugin;
    plugin.m_ID = 0x0139000000000000;
    plugin.m_Type = PI::TYPE_PLUGIN;
    plugin.m_Properties = {property(PI::PROP_LOCATION, 1, "Plugin:ID=313"),
                           property(PI::PROP_NAME, 1, "NVMe-Plugin")};
    std::vector<PI::CObject> objects;
    for (const DriveObjects& drive : drives)
        plugin.m_Children.push_back(drive.m_Adapter.m_ID);
    objects.push_back(plugin);
    for (const DriveObjects& drive : drives) {
        objects.push_back(drive.m_Adapter);
        objects.back().m_Parents = {plugin.m_ID};
    }
    for (const DriveObjects& drive : drives)
        objects.push_back(drive.m_Drive);
    return objects;
}

} // namespace HostTest
