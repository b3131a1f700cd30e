#include "Ostrel/PluginApi.h"
#include "OstrelPlugin/Identity.h"
#include "OstrelPlugin/Properties.h"
#include "Records/RowBuilder.h"

#include <DatabaseORM/StatementBuilder.h>

namespace NAMESPACE_Ostrel {
namespace {

using RaidDataModels::Plugin;

Plugin makeRow(const CNVMePlugin& plugin, std::uint32_t pollInterval)
{
    Plugin row;
    row.m_ObjectID = static_cast<std::int64_t>(plugin.m_ID);
    row.m_Name = PLUGIN_NAME;
    row.m_PollInterval =
        static_cast<std::int32_t>(std::clamp(pollInterval, MINIMUM_POLL_INTERVAL, MAXIMUM_POLL_INTERVAL));
    row.m_SettableProperties = SETTABLE_PROPERTIES;
    row.m_Identity = pluginLocation();
    row.m_Vendor = PLUGIN_VENDOR;
    row.m_Version = PLUGIN_VERSION;
    return row;
}

DatabaseORM::condition_t<Plugin> key()
{
    return {&Plugin::m_Name, PLUGIN_NAME};
}

constexpr CRowTrace INSERT = {"Plugin NVMe inserted to db.",
                              "Exception thrown during inserting NVMe plugin object to db. (%s)"};
constexpr CRowTrace UPDATE = {"Plugin NVMe updated in db.",
                              "Exception thrown during updating NVMe plugin object entry in db. (%s)"};
constexpr CRowTrace DELETE = {"Plugin NVMe removed from db.",
                              "Exception thrown during removing NVMe plugin object from db. (%s)"};

} // namespace

std::uint32_t IPLUGINAPI_IMPL::InsertObjectToDatabase(const CNVMePlugin& plugin)
{
    const auto insert = [&] {
        (void)DatabaseORM::insert(*m_Database, makeRow(plugin, m_PollInterval));
        return true;
    };
    return runOnRow(OSTREL_HERE, INSERT, insert);
}

std::uint32_t IPLUGINAPI_IMPL::UpdateObjectInDatabase(const CNVMePlugin& plugin)
{
    const auto update = [&] {
        const auto found = DatabaseORM::select(*m_Database, key());
        if (found.empty())
            return false;
        Plugin row = makeRow(plugin, m_PollInterval);
        row.m_ID = found.front().m_ID;
        DatabaseORM::update(*m_Database, row);
        return true;
    };
    return runOnRow(OSTREL_HERE, UPDATE, update);
}

std::uint32_t IPLUGINAPI_IMPL::DeleteObjectFromDatabase(const CNVMePlugin& /*plugin*/)
{
    const auto remove = [&] {
        DatabaseORM::remove(*m_Database, key());
        return true;
    };
    return runOnRow(OSTREL_HERE, DELETE, remove);
}

} // namespace NAMESPACE_Ostrel
