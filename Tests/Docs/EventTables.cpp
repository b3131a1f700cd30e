#include "Records/Health.h"
#include "Support/PluginUnderTest.h"
#include "Tables.h"

#include <PI/EventCode.h>
#include <TLX/FastMutex.h>
#include <TLX/WaitResult.h>

#include <stdexcept>
#include <utility>

namespace DocsTest {
namespace {

using namespace NAMESPACE_Ostrel;
using TestSupport::CPluginUnderTest;

std::string severityText(std::uint32_t severity)
{
    switch (severity) {
    case PI::EVENT_SEVERITY_INFORMATION:
        return "2 information";
    case PI::EVENT_SEVERITY_WARNING:
        return "3 warning";
    case PI::EVENT_SEVERITY_ERROR:
        return "4 error";
    default:
        throw std::runtime_error("an event is of an unknown severity");
    }
}

/** The events and health that follow a change of records from `live` to `fresh`. */
std::vector<PI::CEvent> eventsOf(std::vector<CNVMeAdapter> live, const std::vector<CNVMeAdapter>& fresh,
                                 std::vector<CNVMePhysicalDrive> liveDrives = {},
                                 const std::vector<CNVMePhysicalDrive>& freshDrives = {})
{
    CPluginUnderTest plugin;
    if (plugin.m_DataLock.Init() != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no lock");
    const TLX::Threading::CScopedGuard guard(plugin.m_DataLock);
    plugin.m_Adapters = std::move(live);
    plugin.m_PhysicalDrives = std::move(liveDrives);
    return plugin.Compare(fresh, freshDrives).m_Events;
}

void add(std::vector<Row>& rows, const std::string& cause, const std::vector<PI::CEvent>& events)
{
    for (const PI::CEvent& event : events)
        rows.push_back({std::to_string(event.m_Id), severityText(event.m_Severity),
                        event.m_Source == PI::EVENT_SOURCE_HOST ? "host"
                        : event.m_Source == 1                   ? "adapter"
                                                                : "drive",
                        cause, catalogueText(event.m_Id)});
}

} // namespace

std::string healthTable()
{
    constexpr unsigned bits = 8;
    std::vector<Row> rows;
    for (unsigned bit = 0; bit < bits; ++bit) {
        CNVMeAdapter adapter;
        adapter.m_WarningFlags = 1U << bit;
        applyCriticalWarning(adapter, static_cast<std::uint8_t>(1U << bit));
        for (const std::uint32_t reason : adapter.m_HealthReasons)
            rows.push_back({std::to_string(bit), coded(adapter.m_HealthStatus), coded(reason)});
    }
    return table({"Warning bit", "Health status", "Reason"}, rows);
}

std::string eventTable()
{
    constexpr unsigned bits = 32;
    CNVMeAdapter well;
    well.m_ID = 1;
    well.m_SerialNumber = "S";
    CNVMePhysicalDrive drive;
    drive.m_ID = 2;
    drive.m_SerialNumber = "S";
    CNVMePhysicalDrive reformatted = drive;
    reformatted.m_BlockSize += 512;
    CNVMePhysicalDrive reserved = drive;
    reserved.m_ReservedMiB += 1;
    CNVMeAdapter warned = well;
    warned.m_WarningFlags = 1;

    std::vector<Row> rows;
    add(rows, "an adapter that was not there", eventsOf({}, {well}));
    add(rows, "an adapter that is no longer there", eventsOf({well}, {}));
    for (unsigned bit = 0; bit < bits; ++bit) {
        CNVMeAdapter raised = well;
        raised.m_WarningFlags = std::uint32_t{1} << bit;
        add(rows, "warning bit " + std::to_string(bit) + " comes up", eventsOf({well}, {raised}));
    }
    add(rows, "the last warning bit goes", eventsOf({warned}, {well}));
    add(rows, "a drive's block size is another", eventsOf({well}, {well}, {drive}, {reformatted}));
    add(rows, "a drive's reserved capacity is another", eventsOf({well}, {well}, {drive}, {reserved}));
    return table({"Event", "Severity", "Source", "Cause", "Text"}, rows);
}

} // namespace DocsTest
