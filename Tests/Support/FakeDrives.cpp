#include "Support/FakeDrives.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace TestSupport {
namespace {

constexpr std::uint32_t NO_SUCH_DRIVE = 2;
constexpr std::uint32_t NO_SUCH_LOG = 0x10109;

void fill(std::uint8_t* field, std::size_t size, std::string_view text, char padding)
{
    for (std::size_t i = 0; i < size; ++i)
        field[i] = static_cast<std::uint8_t>(i < text.size() ? text[i] : padding);
}

std::uint32_t take(std::deque<std::uint32_t>& statuses)
{
    if (statuses.empty())
        return 0;
    const std::uint32_t status = statuses.front();
    statuses.pop_front();
    return status;
}

} // namespace

CFakeDrive::CFakeDrive(std::uint32_t number)
    : m_DeviceName("/dev/nvme" + std::to_string(number) + "n1"),
      m_Location(TLXX::CPciLocation{0, static_cast<std::int32_t>(number), 0, 0})
{
    m_Controller.VID = 0x1234;
    Serial("SN" + std::to_string(number));
    Model("Plain Drive");
    Firmware("1.0");
    m_Namespace.NSZE = 2U * 1024 * 1024;
    m_Namespace.LBAF[0].LBADS = 9;
    Kelvin(298);
    m_Health.AvailableSpare = 100;
    m_Health.AvailableSpareThreshold = 10;
}

CFakeDrive& CFakeDrive::Vendor(std::uint16_t vendorId)
{
    m_Controller.VID = vendorId;
    return *this;
}

CFakeDrive& CFakeDrive::Serial(std::string_view text)
{
    fill(m_Controller.SN.data(), m_Controller.SN.size(), text, ' ');
    return *this;
}

CFakeDrive& CFakeDrive::Model(std::string_view text)
{
    fill(m_Controller.MN.data(), m_Controller.MN.size(), text, ' ');
    return *this;
}

CFakeDrive& CFakeDrive::Firmware(std::string_view text)
{
    fill(m_Controller.FR.data(), m_Controller.FR.size(), text, ' ');
    return *this;
}

CFakeDrive& CFakeDrive::Tag(std::string_view text)
{
    fill(m_Controller.VS.data() + (3100 - 3072), 8, text, '\0');
    return *this;
}

CFakeDrive& CFakeDrive::Warning(std::uint8_t bits)
{
    m_Health.Warning = bits;
    return *this;
}

CFakeDrive& CFakeDrive::Kelvin(std::uint16_t temperature)
{
    m_Health.Temperature = {static_cast<std::uint8_t>(temperature & 0xFFU),
                            static_cast<std::uint8_t>(temperature >> 8U)};
    return *this;
}

CFakeDrive& CFakeDrive::TemperatureLog(std::uint8_t byte0, std::uint8_t byte104)
{
    TLXX::VendorLogPage& page = m_VendorLogs[0xC5];
    page[0] = byte0;
    page[104] = byte104;
    return *this;
}

CFakeDrive& CFakeDrive::LegacyLog(std::uint8_t ad, std::uint8_t ea)
{
    TLXX::VendorLogPage& page = m_VendorLogs[0xCA];
    page[27] = ad;
    page[99] = ea;
    return *this;
}

CFakeDrive& CFakeDrive::MarketingLog(std::string_view text)
{
    TLXX::VendorLogPage& page = m_VendorLogs[0xDD];
    fill(page.data(), page.size(), text, '\0');
    return *this;
}

class CFakeDrives::CBackend : public TLXX::IDeviceBackend
{
public:
    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        CallTest("enumerate");
        const std::scoped_lock guard(m_Lock);
        std::vector<TLXX::CDeviceEntry> entries;
        m_Locations.clear();
        for (const CFakeDrive& drive : m_Drives) {
            entries.push_back({drive.m_DeviceName, drive.m_Driver});
            m_Locations.push_back(drive.m_Location);
        }
        return entries;
    }

    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override
    {
        return Answer("controller", path, &CFakeDrive::m_ControllerStatuses, &CFakeDrive::m_Controller,
                      controller);
    }

    std::uint32_t IdentifyNamespace(const std::string& path,
                                    TLXX::NVME_IDENTIFY_NAMESPACE& name_space) override
    {
        return Answer("namespace", path, &CFakeDrive::m_NamespaceStatuses, &CFakeDrive::m_Namespace,
                      name_space);
    }

    std::uint32_t SmartHealthLog(const std::string& path,
                                 TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log) override
    {
        return Answer("health", path, &CFakeDrive::m_HealthStatuses, &CFakeDrive::m_Health, log);
    }

    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override
    {
        char kind[16];
        (void)std::snprintf(kind, sizeof kind, "log 0x%02X", logIdentifier);
        CallTest(kind + (" " + path));
        const std::scoped_lock guard(m_Lock);
        const CFakeDrive* drive = Find(kind, path);
        if (drive == nullptr)
            return NO_SUCH_DRIVE;
        const auto log = drive->m_VendorLogs.find(logIdentifier);
        if (log == drive->m_VendorLogs.end())
            return NO_SUCH_LOG;
        page = log->second;
        return 0;
    }

    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override
    {
        const std::scoped_lock guard(m_Lock);
        return number >= 1 && number <= m_Locations.size() ? m_Locations[number - 1] : std::nullopt;
    }

    std::string Instance(const std::string& path) override
    {
        const std::scoped_lock guard(m_Lock);
        const CFakeDrive* const drive = At(path);
        return drive != nullptr ? drive->m_Instance.value_or(path) : path;
    }

    std::string ModuleVersion(const std::string& driver) override
    {
        const std::scoped_lock guard(m_Lock);
        const auto drive = std::find_if(m_Drives.begin(), m_Drives.end(), [&](const CFakeDrive& candidate) {
            return candidate.m_Driver == driver;
        });
        return drive == m_Drives.end() ? std::string() : drive->m_DriverVersion;
    }

    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce) override
    {
        const std::scoped_lock guard(m_Lock);
        return m_Announcer == nullptr ? nullptr : m_Announcer->Subscribe(std::move(announce));
    }

    std::mutex m_Lock;
    CAnnouncer* m_Announcer = nullptr;
    std::deque<CFakeDrive> m_Drives;
    std::vector<std::string> m_Queries;
    std::function<void(const std::string&)> m_OnQuery;

private:
    /** Calls the test's function without the lock, because that function may block or throw. */
    void CallTest(const std::string& query)
    {
        std::function<void(const std::string&)> action;
        {
            const std::scoped_lock guard(m_Lock);
            action = m_OnQuery;
        }
        if (action)
            action(query);
    }

    CFakeDrive* Find(const std::string& kind, const std::string& path)
    {
        m_Queries.push_back(kind + " " + path);
        return At(path);
    }

    CFakeDrive* At(const std::string& path)
    {
        const auto drive = std::find_if(m_Drives.begin(), m_Drives.end(), [&](const CFakeDrive& candidate) {
            return candidate.m_DeviceName == path;
        });
        return drive == m_Drives.end() ? nullptr : &*drive;
    }

    template<typename Block>
    std::uint32_t Answer(const char* kind, const std::string& path,
                         std::deque<std::uint32_t> CFakeDrive::*statuses, Block CFakeDrive::*source,
                         Block& target)
    {
        CallTest(kind + (" " + path));
        const std::scoped_lock guard(m_Lock);
        CFakeDrive* drive = Find(kind, path);
        if (drive == nullptr)
            return NO_SUCH_DRIVE;
        const std::uint32_t status = take(drive->*statuses);
        if (status == 0)
            target = drive->*source;
        return status;
    }

    std::vector<std::optional<TLXX::CPciLocation>> m_Locations;
};

CFakeDrives::CFakeDrives()
    : m_Backend(std::make_shared<CBackend>()), m_Former(TLXX::setDeviceBackend(m_Backend))
{}

CFakeDrives::~CFakeDrives()
{
    TLXX::setDeviceBackend(m_Former);
}

CFakeDrive& CFakeDrives::Add(CFakeDrive drive)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    return m_Backend->m_Drives.emplace_back(std::move(drive));
}

void CFakeDrives::Remove(const std::string& deviceName)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    std::erase_if(m_Backend->m_Drives,
                  [&](const CFakeDrive& drive) { return drive.m_DeviceName == deviceName; });
}

CFakeDrive& CFakeDrives::At(std::size_t index)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    return m_Backend->m_Drives.at(index);
}

void CFakeDrives::Change(std::size_t index, const std::function<void(CFakeDrive&)>& change)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    change(m_Backend->m_Drives.at(index));
}

void CFakeDrives::OnQuery(std::function<void(const std::string& query)> action)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    m_Backend->m_OnQuery = std::move(action);
}

void CFakeDrives::AnnounceBy(CAnnouncer& announcer)
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    m_Backend->m_Announcer = &announcer;
}

std::vector<std::string> CFakeDrives::Queries() const
{
    const std::scoped_lock guard(m_Backend->m_Lock);
    return m_Backend->m_Queries;
}

} // namespace TestSupport
