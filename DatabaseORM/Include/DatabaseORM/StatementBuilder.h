#pragma once

#include <DatabaseORM/Metadata.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * Operations on a model's rows. Each becomes one statement; an insert may first need another one to find its
 * key. All throw `DBEXCEPTION::DatabaseException` on failure; when a storage lacks what a model needs, they
 * send nothing. They retry no statement, open no transaction and take no lock: callers serialise their use.
 */
namespace DatabaseORM {

inline constexpr const char* QUERY_FAILED = "Storage query exception thrown!";

/** The name of the column bound to `member`. */
template<class Model, class Value>
std::string columnName(const storage_t& storage, Value Model::*member)
{
    return boundColumn(*firstOf<RaidDataModels::dbModelFieldsMap<Model>>(storage.m_FieldMaps, NO_MODEL_MAP),
                       member);
}

/** The name of the model's table. */
template<class Model>
std::string tableName(const storage_t& storage)
{
    return firstOf<table_t<Model>>(storage.m_Tables, NO_MODEL_MAP)->Name();
}

/** The largest value of the column bound to `member`, which is an integer; 0 when the table has no row. */
template<class Model, class Value>
std::uint32_t max(const storage_t& storage, Value Model::*member)
{
    const std::string column = columnName(storage, member);
    return firstNumber(runStatement(storage, maxText(tableName<Model>(storage), column), QUERY_FAILED));
}

/** The texts of the insert of one row. Sends nothing. */
template<class Model>
insertion_t makeInsertion(const storage_t& storage, const Model& model)
{
    const auto [map, table] = findMetadata<Model>(storage, NO_MODEL_TO_INSERT);
    std::vector<slot_t> slots = fillSlots(*map, model);
    insertion_t insertion;
    const auto takeKey = [&insertion, &table = *table](slot_t& slot) {
        insertion.m_Maxima.push_back(maxText(table.Name(), slot.m_Column));
        slot = {};
    };
    // The generated key is a 32-bit column at the first position, or a 64-bit one at the last.
    if (table->HasGeneratedKey()) {
        for (const auto& field : map->template Fields<std::int32_t>())
            if (field.m_Position == 0)
                takeKey(slots.front());
        for (const auto& field : map->template Fields<std::int64_t>())
            if (field.m_Position == map->Columns() - 1)
                takeKey(slots.back());
    }
    insertion.m_Insert = insertText(*table, slots);
    return insertion;
}

/** Adds a row. Returns the identifier that it was given, or 0 when the table has no generated key. */
template<class Model>
std::int32_t insert(const storage_t& storage, const Model& model)
{
    return runInsertion(storage, makeInsertion(storage, model), QUERY_FAILED);
}

/** Rewrites the row whose "ID" is the model's key member: the first column, or a 64-bit one at the last. */
template<class Model>
void update(const storage_t& storage, const Model& model)
{
    const auto [map, table] = findMetadata<Model>(storage, NO_MODEL);
    std::vector<slot_t> slots = fillSlots(*map, model);
    const auto& integers = map->template Fields<std::int32_t>();
    const auto& bigIntegers = map->template Fields<std::int64_t>();
    std::int64_t identifier = 0;
    if (!integers.empty() && integers.front().m_Position == 0) {
        identifier = model.*integers.front().m_Member;
        slots.front() = {};
    } else if (!bigIntegers.empty() && bigIntegers.back().m_Position == map->Columns() - 1) {
        identifier = model.*bigIntegers.back().m_Member;
        slots.back() = {};
    } else {
        throw DBEXCEPTION::DatabaseException(NO_COLUMN_NAME);
    }
    runStatement(storage, updateText(*table, slots, identifier), QUERY_FAILED);
}

/** Deletes the rows that match a `condition_t` or a `compoundCondition_t`. */
template<class Condition>
void remove(const storage_t& storage, const Condition& condition)
{
    const auto [map, table] = findMetadata<typename Condition::model_t>(storage, NO_MODEL);
    runStatement(storage, removeText(*table, conditionText(storage, *map, condition)), QUERY_FAILED);
}

/** Reads the rows that match a `condition_t` or a `compoundCondition_t`. */
template<class Condition>
std::vector<typename Condition::model_t> select(const storage_t& storage, const Condition& condition)
{
    using model_t = typename Condition::model_t;
    const auto [map, table] = findMetadata<model_t>(storage, NO_MODEL);
    const std::vector<std::string> values = runStatement(
        storage, selectText(*table, map->Name(), conditionText(storage, *map, condition)), QUERY_FAILED);

    std::vector<model_t> rows;
    const std::size_t columns = map->Columns();
    for (std::size_t start = 0; values.size() - start >= columns; start += columns) {
        model_t& row = rows.emplace_back();
        map->ForEach([&row, &values, start](const auto& field) {
            readValue(values[start + field.m_Position], row.*field.m_Member);
        });
    }
    return rows;
}

} // namespace DatabaseORM
