#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Database {

/** A statement without its values: statements that differ in nothing else have one text. */
struct CStatementShape
{
    using Value = std::variant<std::int64_t, std::string>;

    std::string m_Text;          ///< with a parameter for each value
    std::vector<Value> m_Values; ///< in the order of the parameters
};

/**
 * The shape of a single statement that reads or changes rows; nothing when `sql` may be something else, or
 * holds what only the whole of SQL's grammar could tell from a value. It then has to run as it stands.
 */
std::optional<CStatementShape> shapeOf(std::string_view sql);

} // namespace Database
