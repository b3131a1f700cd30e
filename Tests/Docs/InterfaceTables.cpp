#include "InterfaceTables.h"

#include "Core/PluginLibrary.h"
#include "Ostrel/EventCodes.h"
#include "OstrelAdapter/Health.h"
#include "OstrelAdapter/Properties.h"
#include "OstrelPhysicalDrive/Properties.h"
#include "OstrelPlugin/Operations.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <DatabaseORM/Keywords.h>
#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <PI/PluginHelper.h>
#include <TLX/FastMutex.h>

#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

namespace DocsTest {
namespace {

using namespace NAMESPACE_Ostrel;
using TestSupport::CPluginUnderTest;

using Row = std::vector<std::string>;

std::string line(const Row& cells)
{
    std::string text = "|";
    for (const std::string& cell : cells)
        text += " " + cell + (cell.empty() ? "|" : " |");
    return text + '\n';
}

std::string table(const Row& titles, const std::vector<Row>& rows)
{
    std::string text = line(titles) + line(Row(titles.size(), "---"));
    for (const Row& row : rows)
        text += line(row);
    return text;
}

std::string code(const std::string& text)
{
    return "`" + text + "`";
}

std::string catalogueText(std::uint32_t number)
{
    return PI::PropertyValueToString(number);
}

std::string coded(std::uint32_t number)
{
    return std::to_string(number) + " " + catalogueText(number);
}

// Requests: what a plug-in takes is found out by asking it.

template<typename Container>
struct CCandidate
{
    static PI::CRequestData data() { return Container(); }
};

/** A property that can be set, and that is there to be read. */
template<>
struct CCandidate<PI::CProperty>
{
    static PI::CRequestData data()
    {
        PI::CProperty interval(PI::PROP_POLL_INTERVAL, true);
        interval.SetValue(30, 2, 255, 1);
        return interval;
    }
};

template<>
struct CCandidate<PI::COperation>
{
    static PI::CRequestData data() { return pluginOperations().front(); }
};

struct CContainer
{
    const char* m_Name;
    PI::CRequestData (*m_Make)();
};

const std::vector<CContainer> CONTAINERS = {
    {"none", CCandidate<std::monostate>::data},
    {"list of `PI::CAdapterID`", CCandidate<std::vector<PI::CAdapterID>>::data},
    {"list of `PI::CObject`", CCandidate<std::vector<PI::CObject>>::data},
    {"list of `PI::CProperty`", CCandidate<std::vector<PI::CProperty>>::data},
    {"`PI::CProperty`", CCandidate<PI::CProperty>::data},
    {"list of `PI::COperation`", CCandidate<std::vector<PI::COperation>>::data},
    {"`PI::COperation`", CCandidate<PI::COperation>::data},
};

std::string takenBy(IPLUGINAPI& plugin, std::uint64_t objectID, std::int32_t request)
{
    std::string names;
    std::size_t taken = 0;
    for (const CContainer& container : CONTAINERS) {
        PI::CRequestData data = container.m_Make();
        if (plugin.Request(request, objectID, data) != PI::ERR_SUCCESS)
            continue;
        names += (names.empty() ? "" : ", ") + std::string(container.m_Name);
        ++taken;
    }
    return taken == CONTAINERS.size() ? "anything" : names;
}

std::string requests()
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0));
    // One of the requests writes the settings.
    const TestSupport::CTemporaryFolder settings;
    PI::CConfigFile::SetFolder(settings.Path().native());
    CPluginUnderTest plugin;
    const auto isKnown = [&](std::int32_t request) {
        PI::CRequestData none;
        return plugin.Request(request, plugin.m_Plugin.m_ID, none) != PI::ERR_UNKNOWN_REQUEST;
    };
    std::map<std::int32_t, std::string> containers;
    const auto ask = [&](std::int32_t request) {
        containers[request] = takenBy(plugin, plugin.m_Plugin.m_ID, request);
    };
    ask(PI::REQUEST_INITIALIZE);
    for (std::int32_t request = PI::REQUEST_GET_TOPOLOGY; isKnown(request); ++request)
        ask(request);
    // The one starts the worker, and the other ends it.
    ask(PI::REQUEST_SET_ADAPTER_IDS);
    ask(PI::REQUEST_DEINITIALIZE);
    std::vector<Row> rows;
    for (const auto& [request, container] : containers)
        rows.push_back({std::to_string(request), std::string(Host::requestName(request)), container});
    return table({"Request", "Name", "Container"}, rows);
}

std::string resultCodes()
{
    std::vector<Row> rows = {{"0", code(std::string(PI::errorName(0)))}};
    for (std::uint32_t number = 20000; number < 21000; ++number)
        if (PI::errorName(number) != "ERR_UNKNOWN")
            rows.push_back({std::to_string(number), code(std::string(PI::errorName(number)))});
    return table({"Code", "Name"}, rows);
}

/** The catalogue's entries from `first` to before `last`. */
std::string catalogue(const char* title, std::uint32_t first, std::uint32_t last)
{
    std::vector<Row> rows;
    for (std::uint32_t number = first; number < last; ++number)
        if (const std::string text = catalogueText(number); text != std::to_string(number))
            rows.push_back({std::to_string(number), text});
    return table({"Code", title}, rows);
}

// Properties.

std::string kindText(std::uint32_t kind)
{
    switch (kind) {
    case PI::KIND_TEXT:
        return "text";
    case PI::KIND_CODE:
        return "code";
    case PI::KIND_NUMBER:
        return "number";
    case PI::KIND_BOUNDED:
        return "bounded";
    case PI::KIND_CODES:
        return "codes";
    case PI::KIND_FLOAT:
        return "float";
    default:
        throw std::runtime_error("a property is of an unknown kind");
    }
}

/** What can be said of a value before it is known: its codes or its bounds. */
std::string expectation(const PI::CProperty& property)
{
    std::vector<std::uint32_t> allowed;
    if (const auto* single = std::get_if<PI::CCodeValue>(&property.GetValue()))
        allowed = single->m_Allowed;
    else if (const auto* several = std::get_if<PI::CCodeListValue>(&property.GetValue()))
        allowed = several->m_Allowed;
    else if (const auto* bounded = std::get_if<PI::CBoundedValue>(&property.GetValue()))
        return std::to_string(bounded->m_Minimum) + " to " + std::to_string(bounded->m_Maximum);
    std::string text;
    for (const std::uint32_t each : allowed)
        text += (text.empty() ? "" : ", ") + coded(each);
    return text;
}

Row propertyRow(const PI::CProperty& property, std::string note)
{
    const bool captioned = property.NlsID() > 1;
    return {std::to_string(property.Id()),
            captioned ? coded(property.NlsID()) : "",
            kindText(property.Kind()),
            property.Units() > PI::UNIT_NONE ? catalogueText(property.Units()) : "",
            expectation(property),
            std::move(note)};
}

const Row PROPERTY_TITLES = {"Property", "Caption", "Kind", "Unit", "Codes or bounds", "Remarks"};

/** `known` has a value for every row, `unknown` for those that are always there. */
template<typename Record, typename Plain>
std::string properties(std::span<const CPropertyRow<Record>> descriptions, Plain known, Plain unknown)
{
    std::vector<Row> rows;
    for (const CPropertyRow<Record>& description : descriptions) {
        PI::CProperty property;
        PI::CPluginHelper::GenerateCProperty(description.m_Description, property);
        const std::uint32_t tabledUnit = property.Units();
        const bool always = description.m_SetValue(unknown, property);
        if (!description.m_SetValue(known, property))
            throw std::runtime_error("no record shows property " + std::to_string(property.Id()));
        if (description.m_Caption != 0)
            property.SetNlsID(description.m_Caption);
        std::string note = always ? "" : "left out when there is nothing to show";
        if (property.Units() != tabledUnit) {
            property.SetUnits(tabledUnit);
            note += "; its unit suits the amount";
        }
        rows.push_back(propertyRow(property, note));
    }
    return table(PROPERTY_TITLES, rows);
}

std::string adapterProperties()
{
    CNVMeAdapter known;
    known.m_Model = "INTEL SSDPED";
    known.m_FirmwareRevision = known.m_VendorTag = known.m_DriverVersion = "x";
    known.m_Temperature = 1;
    known.m_PowerOnHours = known.m_DataUnitsRead = known.m_DataUnitsWritten = known.m_LifetimeRating = 1;
    known.m_HealthReasons = {REASON_SPARE};
    CNVMeAdapter unknown;
    return properties(adapterPropertyTable(), known, unknown);
}

std::string driveProperties()
{
    CNVMePhysicalDrive known;
    known.m_Temperature = 1;
    return properties(physicalDrivePropertyTable(), known, CNVMePhysicalDrive());
}

std::string pluginProperties()
{
    CPluginUnderTest plugin;
    if (plugin.m_DataLock.Init() != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no lock");
    const TLX::Threading::CScopedGuard guard(plugin.m_DataLock);
    std::vector<PI::CProperty> shown;
    (void)plugin.GetPluginProperties(plugin.m_Plugin, shown, PI::ALL_PROPERTIES);
    std::vector<Row> rows;
    for (const PI::CProperty& property : shown)
        rows.push_back(propertyRow(property, property.Settable() ? "can be set" : ""));
    return table(PROPERTY_TITLES, rows);
}

std::string operations()
{
    std::vector<Row> rows;
    for (const PI::COperation& operation : pluginOperations())
        rows.push_back({std::to_string(operation.Id()), catalogueText(operation.Id())});
    return table({"Operation", "What it does"}, rows);
}

/** What each bit of the health log's critical warning does to an adapter's health. */
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

// Events, as changes of a record bring them about.

std::string severityText(std::uint32_t severity)
{
    switch (severity) {
    case SEVERITY_INFORMATION:
        return "2 information";
    case SEVERITY_WARNING:
        return "3 warning";
    case SEVERITY_ERROR:
        return "4 error";
    default:
        throw std::runtime_error("an event is of an unknown severity");
    }
}

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
                        event.m_Source == EVENT_SOURCE_HOST ? "host"
                        : event.m_Source == 1               ? "adapter"
                                                            : "drive",
                        cause, catalogueText(event.m_Id)});
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

std::string databaseTable(const DatabaseORM::tableBase_t& definition)
{
    std::vector<Row> rows;
    for (const DatabaseORM::column_t& column : definition.Columns()) {
        std::string constraints;
        for (const DatabaseORM::constraint_t& each : column.m_Constraints)
            constraints +=
                (constraints.empty() ? "" : ", ") +
                std::string(each.m_Keyword == DatabaseORM::DEFAULTVALUE ? "DEFAULT" : each.m_Keyword) +
                (each.m_Argument.empty() ? "" : " " + each.m_Argument);
        rows.push_back({code(column.m_Name), column.m_Type, constraints});
    }
    return table({"Column", "Type", "Constraints"}, rows);
}

} // namespace

std::map<std::string, std::string> interfaceTables()
{
    std::map<std::string, std::string> tables = {
        {"requests", requests()},
        {"result codes", resultCodes()},
        {"object types", catalogue("Object", 19000, 20000)},
        {"units", catalogue("Unit", 21000, 22000)},
        {"adapter properties", adapterProperties()},
        {"drive properties", driveProperties()},
        {"plug-in properties", pluginProperties()},
        {"operations", operations()},
        {"health", healthTable()},
        {"events", eventTable()},
    };
    for (const auto& definition : getDatabasePointer()->m_Tables)
        tables["database " + definition->Name()] = databaseTable(*definition);
    return tables;
}

} // namespace DocsTest
