#pragma once

#include "Records/PropertyBuilder.h"
#include "Records/Trace.h"

#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/ValueText.h>
#include <PI/ErrorCode.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>

namespace NAMESPACE_Ostrel {

/** The column of one property. */
template<typename Record, typename Model>
struct CRowColumn
{
    std::uint32_t m_PropertyId;
    std::string Model::*m_Column;
    std::string (*m_Text)(const Record& record);
};

/**
 * Writes the properties of `record` that have a column into `row`, in the order of the property table. The
 * texts come from drives, so every single quote is doubled.
 */
template<typename TableRecord, typename Record, typename Model, std::size_t Columns>
void fillRow(std::span<const CPropertyRow<TableRecord>> table,
             const CRowColumn<Record, Model> (&columns)[Columns], const Record& record, Model& row)
{
    for (const CPropertyRow<TableRecord>& property : table) {
        const auto* column = std::find_if(
            std::begin(columns), std::end(columns), [&](const CRowColumn<Record, Model>& candidate) {
                return candidate.m_PropertyId == property.m_Description.propertyId;
            });
        if (column != std::end(columns))
            row.*column->m_Column = DatabaseORM::escapeQuotes(column->m_Text(record));
    }
}

template<auto Member, typename Record>
std::string rowText(const Record& record)
{
    return record.*Member;
}

template<auto Member, typename Record>
std::string rowNumber(const Record& record)
{
    return std::to_string(record.*Member);
}

/** The texts of an operation on a row in the trace. */
struct CRowTrace
{
    const char* m_Done;
    const char* m_Failed; ///< has a place at its end for the database's message
};

/**
 * Runs an operation on a row and traces its result, with `subject` before the message. `operation` returns
 * false when there was nothing to do; that is not traced.
 */
template<typename Operation, typename... Subject>
std::uint32_t runOnRow(const CTracePlace& place, const CRowTrace& trace, Operation operation,
                       const Subject&... subject)
{
    try {
        if (!operation())
            return PI::ERR_SUCCESS;
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        if (traceEnabled(TRACE_DATABASE))
            ((OSTREL_TRACE_LINE(TRACE_DATABASE, place) << trace.m_Failed) << ... << subject)
                << exception.what();
        return PI::ERR_GENERAL_FAILURE;
    }
    if (traceEnabled(TRACE_DATABASE))
        ((OSTREL_TRACE_LINE(TRACE_DATABASE, place) << trace.m_Done) << ... << subject);
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
