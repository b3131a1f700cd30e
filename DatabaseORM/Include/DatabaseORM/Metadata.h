#pragma once

#include <DatabaseORM/Conditions.h>
#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/StatementText.h>
#include <DatabaseORM/Storage.h>
#include <DatabaseORM/ValueText.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/**
 * Looks up in a storage what the statement builder needs of a model. Throws `DBEXCEPTION::DatabaseException`
 * when the storage lacks it.
 */
namespace DatabaseORM {

// These texts differ on purpose.
inline constexpr const char* NO_MODEL_TO_INSERT =
    "Storage query exception thrown! No such model in map exist!";
inline constexpr const char* NO_MODEL = "Storage query exception thrown! No such model in map exist.";
inline constexpr const char* NO_MODEL_MAP = "Storage query exception thrown! No such model map exist.";
inline constexpr const char* NO_COLUMN_NAME = "Empty colName exception!";

/** The first element of `list` that is a `Wanted`; the failure's message is `message`. */
template<class Wanted, class Base>
std::shared_ptr<const Wanted> firstOf(const std::vector<std::shared_ptr<const Base>>& list,
                                      const char* message)
{
    for (const std::shared_ptr<const Base>& element : list)
        if (auto found = std::dynamic_pointer_cast<const Wanted>(element))
            return found;
    throw DBEXCEPTION::DatabaseException(message);
}

/** A model's field map and table, held during an operation. */
template<class Model>
struct metadata_t
{
    std::shared_ptr<const RaidDataModels::dbModelFieldsMap<Model>> m_Map;
    std::shared_ptr<const table_t<Model>> m_Table;
};

/** The metadata of the model in `storage`; the failure's message is `message`. */
template<class Model>
metadata_t<Model> findMetadata(const storage_t& storage, const char* message)
{
    return {firstOf<RaidDataModels::dbModelFieldsMap<Model>>(storage.m_FieldMaps, message),
            firstOf<table_t<Model>>(storage.m_Tables, message)};
}

/** Returns `column`; fails when the name is empty. */
inline const std::string& named(const std::string& column)
{
    if (column.empty())
        throw DBEXCEPTION::DatabaseException(NO_COLUMN_NAME);
    return column;
}

/** The name of the column bound to `member`. */
template<class Model, class Value>
std::string boundColumn(const RaidDataModels::dbModelFieldsMap<Model>& map, Value Model::*member)
{
    for (const auto& field : map.template Fields<Value>())
        if (field.m_Member == member)
            return named(field.m_Column);
    throw DBEXCEPTION::DatabaseException(NO_COLUMN_NAME);
}

/** Every column's name and the text of its member's value, by position. */
template<class Model>
std::vector<slot_t> fillSlots(const RaidDataModels::dbModelFieldsMap<Model>& map, const Model& model)
{
    std::vector<slot_t> slots(map.Columns());
    map.ForEach([&](const auto& field) {
        slots[field.m_Position] = {named(field.m_Column), valueText(model.*field.m_Member)};
    });
    return slots;
}

/** The condition as text in a statement. */
template<class Model>
std::string conditionText(const storage_t& storage, const RaidDataModels::dbModelFieldsMap<Model>& map,
                          const condition_t<Model>& condition)
{
    const auto columnOf = [&map](auto member) { return boundColumn(map, member); };
    return equalText(storage.m_Qualify ? map.Name() : "", std::visit(columnOf, condition.Member()),
                     condition.Value());
}

/** The same for two conditions. */
template<class Model>
std::string conditionText(const storage_t& storage, const RaidDataModels::dbModelFieldsMap<Model>& map,
                          const compoundCondition_t<Model>& condition)
{
    return bothText(conditionText(storage, map, condition.m_First),
                    conditionText(storage, map, condition.m_Second));
}

} // namespace DatabaseORM
