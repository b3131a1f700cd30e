#include "OstrelAdapter/Row.h"

#include "OstrelAdapter/Properties.h"
#include "Records/Model.h"
#include "Records/RowBuilder.h"

#include <DatabaseORM/StatementBuilder.h>
#include <PI/PluginHelper.h>
#include <PI/StateCode.h>

#include <nlohmann/json.hpp>

namespace NAMESPACE_Ostrel {
namespace {

using RaidDataModels::Adapter;

std::string healthText(const CNVMeAdapter& adapter)
{
    const std::uint32_t status = adapter.m_HealthStatus;
    const bool known = status == PI::HEALTH_CRITICAL || status == PI::HEALTH_DEGRADED;
    return PI::PropertyValueToString(known ? status : PI::HEALTH_HEALTHY);
}

std::string modelOf(const CNVMeAdapter& adapter)
{
    return rowModelText(adapter.m_Model);
}

std::string familyText(const CNVMeAdapter& adapter)
{
    return PI::PropertyValueToString(IsKnownModelFamily(adapter.m_Model) ? PI::KNOWN_FAMILY_YES
                                                                         : PI::KNOWN_FAMILY_NO);
}

/** One text has the whole list. */
std::string reasonTexts(const CNVMeAdapter& adapter)
{
    nlohmann::json texts = nlohmann::json::array();
    for (const std::uint32_t reason : adapter.m_HealthReasons)
        texts.push_back(PI::PropertyValueToString(reason));
    return texts.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

constexpr CRowColumn<CNVMeAdapter, Adapter> COLUMNS[] = {
    {PI::PROP_VENDOR, &Adapter::m_Vendor, rowText<&CNVMeAdapter::m_Vendor>},
    {PI::PROP_NAME, &Adapter::m_Name, rowText<&CNVMeAdapter::m_Name>},
    {PI::PROP_HEALTH_STATUS, &Adapter::m_HealthStatus, healthText},
    {PI::PROP_DRIVER_VERSION, &Adapter::m_DriverVersion, rowText<&CNVMeAdapter::m_DriverVersion>},
    {PI::PROP_FIRMWARE, &Adapter::m_Firmware, rowText<&CNVMeAdapter::m_FirmwareRevision>},
    {PI::PROP_SERIAL_NUMBER, &Adapter::m_SerialNumber, rowText<&CNVMeAdapter::m_SerialNumber>},
    {PI::PROP_PCI_BUS, &Adapter::m_PciBus, rowNumber<&CNVMeAdapter::m_Bus>},
    {PI::PROP_PCI_DEVICE, &Adapter::m_PciDevice, rowNumber<&CNVMeAdapter::m_Device>},
    {PI::PROP_PCI_FUNCTION, &Adapter::m_PciFunction, rowNumber<&CNVMeAdapter::m_Function>},
    {PI::PROP_MODEL, &Adapter::m_Model, modelOf},
    {PI::PROP_LOCATION, &Adapter::m_Location, rowText<&CNVMeAdapter::m_Location>},
    {PI::PROP_MODEL_FAMILY, &Adapter::m_ModelFamily, familyText},
    {PI::PROP_STATUS_REASONS, &Adapter::m_StatusReasons, reasonTexts},
    {PI::PROP_MEDIA_ERRORS, &Adapter::m_MediaErrors, rowNumber<&CNVMeAdapter::m_UnsafeShutdowns>},
};

DatabaseORM::compoundCondition_t<Adapter> keyOf(const CNVMeAdapter& adapter)
{
    return {{&Adapter::m_AdapterNumber, adapter.m_GlobalAdapterNumber},
            {&Adapter::m_HostName, RaidDataModels::LOCAL_HOST}};
}

constexpr CRowTrace INSERT = {
    "Adapter (%s) (%d) inserted to db.",
    "Storage query exception thrown during inserting Adapter (%s) (%d) to db. (%s)"};
constexpr CRowTrace UPDATE = {"Adapter (%s) (%d) updated in db.",
                              "Storage query exception thrown during updating Adapter (%s) (%d) in db. (%s)"};
constexpr CRowTrace DELETE = {
    "Adapter (%s) (%d) removed from db.",
    "Storage query exception thrown during removing Adapter (%s) (%d) from db. (%s)"};

} // namespace

std::uint32_t setRowProperties(Adapter& row, const CNVMeAdapter& adapter)
{
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "SetDatabaseObjectProperties")
        << "ENTER SetDatabaseObjectProperties (Adapter) (%d)" << adapter.m_GlobalAdapterNumber;
    row = Adapter();
    row.m_HostName = RaidDataModels::LOCAL_HOST;
    row.m_AdapterNumber = adapter.m_GlobalAdapterNumber;
    row.m_Present = 1;
    row.m_Segment = adapter.m_Segment;
    row.m_WarningFlags = static_cast<std::int32_t>(adapter.m_WarningFlags);
    row.m_ReserveSpace = static_cast<std::int32_t>(adapter.m_ReserveSpace);
    row.m_WarningThreshold = static_cast<std::int32_t>(adapter.m_WarningThreshold);
    fillRow(adapterPropertyTable(), COLUMNS, adapter, row);
    const std::uint32_t result = PI::ERR_SUCCESS;
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "SetDatabaseObjectProperties")
        << "LEAVE SetDatabaseObjectProperties (Adapter) -> %d" << result;
    return result;
}

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter)
{
    const auto insert = [&] {
        Adapter row;
        (void)setRowProperties(row, adapter);
        (void)DatabaseORM::insert(storage, row);
        return true;
    };
    return runOnRow(OSTREL_WITHIN("InsertObjectToDatabase"), INSERT, insert, adapter.m_Name,
                    adapter.m_GlobalAdapterNumber);
}

std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter)
{
    const auto update = [&] {
        const auto found = DatabaseORM::select(storage, keyOf(adapter));
        if (found.empty())
            return false;
        Adapter row;
        (void)setRowProperties(row, adapter);
        row.m_ID = found.front().m_ID;
        DatabaseORM::update(storage, row);
        return true;
    };
    return runOnRow(OSTREL_WITHIN("UpdateObjectInDatabase"), UPDATE, update, adapter.m_Name,
                    adapter.m_GlobalAdapterNumber);
}

std::uint32_t deleteRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter)
{
    const auto remove = [&] {
        DatabaseORM::remove(storage, keyOf(adapter));
        return true;
    };
    return runOnRow(OSTREL_WITHIN("DeleteObjectFromDatabase"), DELETE, remove, adapter.m_Name,
                    adapter.m_GlobalAdapterNumber);
}

} // namespace NAMESPACE_Ostrel
