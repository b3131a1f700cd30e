#include "Schema.h"

#include <DatabaseORM/Keywords.h>
#include <DatabaseORM/Models.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace Database {

namespace {

using RaidDataModels::Adapter;
using RaidDataModels::PD;
using RaidDataModels::Plugin;

enum class Role
{
    GENERATED_KEY,
    NATURAL_KEY, ///< part of the key by which a row is found and replaced
    REQUIRED,    ///< never NULL
    PLAIN
};

template<class Model>
struct CBinding
{
    std::variant<std::int32_t Model::*, std::int64_t Model::*, std::string Model::*> m_Member;
    const char* m_Column;
    Role m_Role = Role::PLAIN;
};

// Rows are read by position. The last column must not be a 64-bit integer, because the statement builder
// takes one there for the generated key. Adding or moving a column needs a new SCHEMA_VERSION.
const std::vector<CBinding<Plugin>> PLUGIN = {
    {&Plugin::m_ID, "ID", Role::GENERATED_KEY},
    {&Plugin::m_Description, "Description"},
    {&Plugin::m_ObjectID, "ObjectID"},
    {&Plugin::m_Name, "Name", Role::NATURAL_KEY},
    {&Plugin::m_PollInterval, "PollInterval"},
    {&Plugin::m_SettableProperties, "SettableProperties"},
    {&Plugin::m_Reserved1, "Reserved1"},
    {&Plugin::m_Reserved2, "Reserved2"},
    {&Plugin::m_Identity, "Identity"},
    {&Plugin::m_Vendor, "Vendor"},
    {&Plugin::m_Version, "Version"},
};

const std::vector<CBinding<Adapter>> ADAPTER = {
    {&Adapter::m_ID, "ID", Role::GENERATED_KEY},
    {&Adapter::m_HostName, "HostName", Role::NATURAL_KEY},
    {&Adapter::m_AdapterNumber, "AdapterNumber", Role::NATURAL_KEY},
    {&Adapter::m_Present, "Present"},
    {&Adapter::m_Segment, "Segment"},
    {&Adapter::m_WarningFlags, "WarningFlags"},
    {&Adapter::m_ReserveSpace, "ReserveSpace"},
    {&Adapter::m_WarningThreshold, "WarningThreshold"},
    {&Adapter::m_Vendor, "Vendor"},
    {&Adapter::m_Name, "Name"},
    {&Adapter::m_HealthStatus, "HealthStatus"},
    {&Adapter::m_DriverVersion, "DriverVersion"},
    {&Adapter::m_Firmware, "Firmware"},
    {&Adapter::m_SerialNumber, "SerialNumber", Role::REQUIRED},
    {&Adapter::m_PciBus, "PciBus"},
    {&Adapter::m_PciDevice, "PciDevice"},
    {&Adapter::m_PciFunction, "PciFunction"},
    {&Adapter::m_Model, "Model"},
    {&Adapter::m_Location, "Location"},
    {&Adapter::m_ModelFamily, "ModelFamily"},
    {&Adapter::m_StatusReasons, "StatusReasons"},
    {&Adapter::m_MediaErrors, "MediaErrors"},
};

const std::vector<CBinding<PD>> PHYSICAL_DRIVE = {
    {&PD::m_ID, "ID", Role::GENERATED_KEY},
    {&PD::m_HostName, "HostName", Role::NATURAL_KEY},
    {&PD::m_DriveKey, "DriveKey", Role::NATURAL_KEY},
    {&PD::m_Vendor, "Vendor"},
    {&PD::m_Name, "Name"},
    {&PD::m_Status, "Status"},
    {&PD::m_SerialNumber, "SerialNumber"},
    {&PD::m_DriveType, "DriveType"},
    {&PD::m_Capacity, "Capacity"},
    {&PD::m_UsableCapacity, "UsableCapacity"},
    {&PD::m_Model, "Model"},
    {&PD::m_Temperature, "Temperature"},
    {&PD::m_Channel, "Channel"},
    {&PD::m_DriveNumber, "DriveNumber"},
    {&PD::m_Location, "Location"},
};

std::vector<DatabaseORM::constraint_t> constraints(Role role, bool text)
{
    using namespace DatabaseORM;
    if (role == Role::GENERATED_KEY)
        return {{PRIMARY_KEY, ""}};
    if (role == Role::PLAIN)
        return text ? std::vector<constraint_t>{} : std::vector<constraint_t>{{DEFAULTVALUE, "0"}};
    // SQL never finds a NULL by "=". So a key column has a value in its place, the same as the model's
    // default.
    std::vector<constraint_t> result = {{NOT_NULL, "ON CONFLICT REPLACE"},
                                        {DEFAULTVALUE, text ? "'NULL'" : "-2147483648"}};
    if (role == Role::NATURAL_KEY)
        result.push_back({UNIQUE, ""});
    return result;
}

template<class Model>
void add(DatabaseORM::storage_t& storage, const std::string& name,
         const std::vector<CBinding<Model>>& bindings)
{
    // Map and table have the same name, so a qualified condition is also valid in a statement without an
    // alias.
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Model>>(name);
    std::vector<DatabaseORM::column_t> columns;
    for (const CBinding<Model>& binding : bindings) {
        const bool text = std::holds_alternative<std::string Model::*>(binding.m_Member);
        std::visit([&](auto member) { map->Bind(member, binding.m_Column); }, binding.m_Member);
        columns.push_back({binding.m_Column, text ? "TEXT" : "INTEGER", constraints(binding.m_Role, text),
                           binding.m_Role == Role::GENERATED_KEY});
    }
    storage.m_FieldMaps.push_back(std::move(map));
    storage.m_Tables.push_back(std::make_shared<DatabaseORM::table_t<Model>>(name, std::move(columns)));
}

// Deleting or replacing an adapter also deletes the row of its drive.
constexpr const char* DELETE_DRIVE_OF_ADAPTER =
    "CREATE TRIGGER DeleteDriveOfAdapter AFTER DELETE ON Adapter BEGIN "
    "DELETE FROM PD WHERE HostName = OLD.HostName AND DriveKey = OLD.SerialNumber AND NOT EXISTS "
    "(SELECT 1 FROM Adapter WHERE HostName = OLD.HostName AND SerialNumber = OLD.SerialNumber); "
    "END;";

// The plug-in's row is updated at every poll, and an adapter's row whenever one of its counters has moved.
// Mostly the new values equal the old ones, and then nothing needs to be written to the disk. A drive's row
// changes with every update.
bool isUpdatedForNothing(const DatabaseORM::tableBase_t& table)
{
    return table.Name() == "Plugin" || table.Name() == "Adapter";
}

std::string unchangedTrigger(const DatabaseORM::tableBase_t& table)
{
    return "IgnoreUnchanged" + table.Name();
}

std::string ignoreUnchangedText(const DatabaseORM::tableBase_t& table)
{
    std::string fresh;
    std::string present;
    for (const DatabaseORM::column_t& column : table.Columns()) {
        const std::string separator = fresh.empty() ? "" : ", ";
        fresh += separator + "NEW." + column.m_Name;
        present += separator + "OLD." + column.m_Name;
    }
    return "CREATE TRIGGER " + unchangedTrigger(table) + " BEFORE UPDATE ON " + table.Name() + " WHEN (" +
           fresh + ") IS (" + present + ") BEGIN SELECT RAISE(IGNORE); END;";
}

} // namespace

DatabaseORM::storage_t makeStorage()
{
    DatabaseORM::storage_t storage;
    add(storage, "Plugin", PLUGIN);
    add(storage, "Adapter", ADAPTER);
    add(storage, "PD", PHYSICAL_DRIVE);
    return storage;
}

std::string createTableText(const DatabaseORM::tableBase_t& table)
{
    std::string text = "CREATE TABLE " + table.Name() + " (";
    std::string key;
    for (const DatabaseORM::column_t& column : table.Columns()) {
        text += column.m_Name + " " + column.m_Type;
        for (const DatabaseORM::constraint_t& constraint : column.m_Constraints) {
            if (constraint.m_Keyword == DatabaseORM::UNIQUE) {
                key += (key.empty() ? "" : ", ") + column.m_Name;
                continue;
            }
            const bool isDefault = constraint.m_Keyword == DatabaseORM::DEFAULTVALUE;
            text += " " + std::string(isDefault ? "DEFAULT" : constraint.m_Keyword);
            text += (constraint.m_Argument.empty() ? "" : " ") + constraint.m_Argument;
        }
        text += ", ";
    }
    return text + "UNIQUE (" + key + ") ON CONFLICT REPLACE);";
}

std::string createTriggersText(const DatabaseORM::storage_t& storage)
{
    std::string text = DELETE_DRIVE_OF_ADAPTER;
    for (const auto& table : storage.m_Tables)
        if (isUpdatedForNothing(*table))
            text += ignoreUnchangedText(*table);
    return text;
}

std::string dropTriggersText(const DatabaseORM::storage_t& storage)
{
    std::string text = "DROP TRIGGER IF EXISTS DeleteDriveOfAdapter;";
    for (const auto& table : storage.m_Tables)
        text += "DROP TRIGGER IF EXISTS " + unchangedTrigger(*table) + ";";
    return text;
}

} // namespace Database
