#include "OstrelPlugin/Row.h"

#include "OstrelPlugin/Identity.h"
#include "Records/Module.h"
#include "Records/RowBuilder.h"

#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>
#include <PI/PollInterval.h>

#include <algorithm>

namespace NAMESPACE_Ostrel {
namespace {

using RaidDataModels::Plugin;

Plugin makeRow(const CNVMePlugin& plugin, std::uint32_t pollInterval)
{
    Plugin row;
    row.m_ObjectID = static_cast<std::int64_t>(plugin.m_ID);
    row.m_Name = PLUGIN_NAME;
    row.m_PollInterval = static_cast<std::int32_t>(
        std::clamp(pollInterval, PI::MINIMUM_POLL_INTERVAL, PI::MAXIMUM_POLL_INTERVAL));
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

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMePlugin& plugin,
                        std::uint32_t pollInterval)
{
    const auto insert = [&] {
        (void)DatabaseORM::insert(storage, makeRow(plugin, pollInterval));
        return true;
    };
    return runOnRow(OSTREL_WITHIN("InsertObjectToDatabase"), INSERT, insert);
}

std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMePlugin& plugin,
                        std::uint32_t pollInterval)
{
    const auto update = [&] {
        const auto found = DatabaseORM::select(storage, key());
        if (found.empty())
            return false;
        Plugin row = makeRow(plugin, pollInterval);
        row.m_ID = found.front().m_ID;
        DatabaseORM::update(storage, row);
        return true;
    };
    return runOnRow(OSTREL_WITHIN("UpdateObjectInDatabase"), UPDATE, update);
}

std::uint32_t deletePluginRow(const DatabaseORM::storage_t& storage)
{
    const auto remove = [&] {
        DatabaseORM::remove(storage, key());
        return true;
    };
    return runOnRow(OSTREL_WITHIN("DeleteObjectFromDatabase"), DELETE, remove);
}

} // namespace NAMESPACE_Ostrel
