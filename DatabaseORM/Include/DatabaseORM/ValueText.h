#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace DatabaseORM {

// The values that mean SQL's NULL in a model, one for each type.
inline constexpr std::int32_t NULL_INTEGER = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int64_t NULL_BIG_INTEGER = -1;
inline constexpr double NULL_DOUBLE = std::numeric_limits<float>::min();
inline constexpr std::string_view NULL_TEXT = "NULL";

// A value as SQL text, whatever the process's locale. A text is put between single quotes unchanged.
/** `NULL_INTEGER` is written as NULL. */
std::string valueText(std::int32_t value);
/** Always a number, even for `NULL_BIG_INTEGER`. */
std::string valueText(std::int64_t value);
/** Six decimals, even for `NULL_DOUBLE`. */
std::string valueText(double value);
/** `NULL_TEXT` is written as NULL. */
std::string valueText(const std::string& value);

// A value from a result's text. "NULL", and any text that is not a number of the type, gives the type's NULL.
void readValue(const std::string& text, std::int32_t& value);
void readValue(const std::string& text, std::int64_t& value);
void readValue(const std::string& text, double& value);
void readValue(const std::string& text, std::string& value);

/** `text` with its single quotes doubled. Any text needs this before it goes into a model or a condition. */
std::string escapeQuotes(std::string_view text);

} // namespace DatabaseORM
