#pragma once

#include <DatabaseORM/DatabaseDAO.h>
#include <DatabaseORM/FieldsMap.h>
#include <DatabaseORM/Table.h>

#include <memory>
#include <vector>

namespace DatabaseORM {

/** A database with its tables and field maps. All that keep rows in it share it. */
struct storage_t
{
    std::vector<std::shared_ptr<const RaidDataModels::dbModelFieldsMapBase>> m_FieldMaps;
    std::vector<std::shared_ptr<const tableBase_t>> m_Tables;
    bool m_Qualify = false;                                 ///< conditions name columns with the map's name
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Access; ///< never null
};

} // namespace DatabaseORM
