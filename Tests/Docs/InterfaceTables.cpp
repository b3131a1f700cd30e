#include "InterfaceTables.h"

#include "OstrelPlugin/Operations.h"
#include "Plugins/PluginLibrary.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"
#include "Tables.h"

#include <Database/Database.h>
#include <DatabaseORM/Keywords.h>
#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>

#include <variant>
#include <vector>

namespace DocsTest {
namespace {

using namespace NAMESPACE_Ostrel;
using TestSupport::CPluginUnderTest;

std::string code(const std::string& text)
{
    return "`" + text + "`";
}

// The tables say which container each request takes. To find that out, each request is sent with each
// container.

template<typename Container>
struct CCandidate
{
    static PI::CRequestData data() { return Container(); }
};

/** A property that can be set and read. */
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
    // One request starts the worker, and another one ends it.
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

std::string operations()
{
    std::vector<Row> rows;
    for (const PI::COperation& operation : pluginOperations())
        rows.push_back({std::to_string(operation.Id()), catalogueText(operation.Id())});
    return table({"Operation", "What it does"}, rows);
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
        {"facts", factTable()},
        {"journal", journalTable()},
    };
    for (const auto& definition : getDatabasePointer()->m_Tables)
        tables["database " + definition->Name()] = databaseTable(*definition);
    return tables;
}

} // namespace DocsTest
