#include "Ostrel/Guarded.h"
#include "Ostrel/PluginApi.h"
#include "OstrelAdapter/Row.h"
#include "OstrelPhysicalDrive/Row.h"
#include "OstrelPlugin/Row.h"

#include <PI/ErrorCode.h>
#include <TLX/ForcedEnd.h>

namespace NAMESPACE_Ostrel {

template<typename Record>
bool IPLUGINAPI_IMPL::WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*operation)(const Record&),
                               const Record& record)
{
    bool done = false;
    try {
        done = (this->*operation)(record) == PI::ERR_SUCCESS;
    } catch (TLX::Threading::CForcedEnd&) {
        throw;
    } catch (...) {
        traceThrown(OSTREL_HERE, "An operation on a row");
    }
    m_RowsFailed = m_RowsFailed || !done;
    return done;
}

template bool IPLUGINAPI_IMPL::WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*)(const CNVMePlugin&),
                                        const CNVMePlugin&);
template bool IPLUGINAPI_IMPL::WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*)(const CNVMeAdapter&),
                                        const CNVMeAdapter&);
template bool IPLUGINAPI_IMPL::WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*)(const CNVMePhysicalDrive&),
                                        const CNVMePhysicalDrive&);
template bool IPLUGINAPI_IMPL::WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*)(const CDriveRowInsert&),
                                        const CDriveRowInsert&);

std::uint32_t IPLUGINAPI_IMPL::InsertObjectToDatabase(const CNVMePlugin& plugin)
{
    return insertRow(*m_Database, plugin, m_PollInterval);
}

std::uint32_t IPLUGINAPI_IMPL::UpdateObjectInDatabase(const CNVMePlugin& plugin)
{
    return updateRow(*m_Database, plugin, m_PollInterval);
}

std::uint32_t IPLUGINAPI_IMPL::DeleteObjectFromDatabase(const CNVMePlugin& /*plugin*/)
{
    return deletePluginRow(*m_Database);
}

std::uint32_t IPLUGINAPI_IMPL::InsertObjectToDatabase(const CNVMeAdapter& adapter)
{
    return insertRow(*m_Database, adapter);
}

std::uint32_t IPLUGINAPI_IMPL::UpdateObjectInDatabase(const CNVMeAdapter& adapter)
{
    return updateRow(*m_Database, adapter);
}

std::uint32_t IPLUGINAPI_IMPL::DeleteObjectFromDatabase(const CNVMeAdapter& adapter)
{
    return deleteRow(*m_Database, adapter);
}

std::uint32_t IPLUGINAPI_IMPL::InsertObjectToDatabase(const CNVMePhysicalDrive& drive)
{
    return insertRow(*m_Database, drive);
}

std::uint32_t IPLUGINAPI_IMPL::InsertObjectToDatabase(const CDriveRowInsert& insert)
{
    return insert.Run(*m_Database);
}

std::uint32_t IPLUGINAPI_IMPL::UpdateObjectInDatabase(const CNVMePhysicalDrive& drive)
{
    return updateRow(*m_Database, drive);
}

std::uint32_t IPLUGINAPI_IMPL::SetDatabaseObjectProperties(RaidDataModels::Adapter& row,
                                                           const CNVMeAdapter& adapter)
{
    return setRowProperties(row, adapter);
}

std::uint32_t IPLUGINAPI_IMPL::SetDatabaseObjectProperties(RaidDataModels::PD& row,
                                                           const CNVMePhysicalDrive& drive)
{
    return setRowProperties(row, drive);
}

} // namespace NAMESPACE_Ostrel
