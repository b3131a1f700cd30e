#pragma once

#include <cstdint>
#include <forward_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Database {

/** A statement without its values: statements that differ in nothing else have one text. */
struct CStatementShape
{
    using Value = std::variant<std::int64_t, std::string_view>;

    std::string m_Text;          ///< with a parameter for each value
    std::vector<Value> m_Values; ///< in the order of the parameters; texts stay where the statement has them
    std::forward_list<std::string> m_Unquoted; ///< but for those whose quotes were doubled there
};

/**
 * The shape of a single statement that reads or changes rows; nothing when `sql` may be something else, or
 * holds what only the whole of SQL's grammar could tell from a value. It then has to run as it stands. `sql`
 * must outlive the shape.
 */
std::optional<CStatementShape> shapeOf(std::string_view sql);

} // namespace Database
