#pragma once

#include <cstdint>
#include <forward_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Database {

/** A statement without its values. Statements that differ only in their values have the same text. */
struct CStatementShape
{
    using Value = std::variant<std::int64_t, std::string_view>;

    std::string m_Text;          ///< with a parameter for each value
    std::vector<Value> m_Values; ///< in the order of the parameters; texts are views into the statement
    std::forward_list<std::string> m_Unquoted; ///< the texts whose doubled quotes were made single
};

/**
 * The shape of a single statement that reads or changes rows. Nothing when `sql` may be another kind of
 * statement, or when only SQL's whole grammar could tell a value from something else; it must then run
 * unchanged. `sql` must outlive the shape.
 */
std::optional<CStatementShape> shapeOf(std::string_view sql);

} // namespace Database
