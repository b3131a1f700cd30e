#pragma once

#include <DatabaseORM/Storage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/**
 * The part of the statement builder that needs no model: it makes texts and sends them to the database. Names
 * and values go into a text unchanged. Safe from any thread.
 */
namespace DatabaseORM {

/** A value for one column; nothing is written when the column's name is empty. */
struct slot_t
{
    std::string m_Column;
    std::string m_Value;
};

/** Adds a row of these values; column names are listed only when the table has a generated key. */
std::string insertText(const tableBase_t& table, const std::vector<slot_t>& slots);
/** Rewrites these columns of the row whose "ID" is `identifier`. */
std::string updateText(const tableBase_t& table, const std::vector<slot_t>& slots, std::int64_t identifier);
/** Deletes the rows for which `condition` holds, a text of `equalText` or `bothText`. */
std::string removeText(const tableBase_t& table, const std::string& condition);
/** Reads all columns of the rows for which `condition` holds; it may call the table `alias`. */
std::string selectText(const tableBase_t& table, const std::string& alias, const std::string& condition);
/** Reads the largest value of a column. */
std::string maxText(const std::string& table, const std::string& column);

/** The condition "`qualifier`.`column` = `value`"; without the point when `qualifier` is empty. */
std::string equalText(const std::string& qualifier, const std::string& column, const std::string& value);
/** The condition that both conditions hold. */
std::string bothText(const std::string& first, const std::string& second);

/**
 * Runs `statement` and returns its values as `DatabaseDAO::query` does. Throws
 * `DBEXCEPTION::DatabaseException`; its message begins with `context` and holds the database's in
 * parentheses.
 */
std::vector<std::string> runStatement(const storage_t& storage, const std::string& statement,
                                      std::string_view context);

/** The number at the start of a maximum's result; 0 when there is none, all ones when it does not fit. */
std::uint32_t firstNumber(const std::vector<std::string>& result);

/** The statements that add one row. They may be run any number of times. */
struct insertion_t
{
    std::vector<std::string> m_Maxima; ///< of the generated keys, read before the insert
    std::string m_Insert;
};

/**
 * Runs the statements of `insertion`. Returns the key that the database assigns: one more than the largest in
 * the table, or 0 without a generated key. Throws as `runStatement` does.
 */
std::int32_t runInsertion(const storage_t& storage, const insertion_t& insertion, std::string_view context);

} // namespace DatabaseORM
