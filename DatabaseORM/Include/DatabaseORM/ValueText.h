#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace DatabaseORM {

// What stands for SQL's NULL in a model, by the kind of member.
inline constexpr std::int32_t NULL_INTEGER = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int64_t NULL_BIG_INTEGER = -1;
inline constexpr double NULL_DOUBLE = std::numeric_limits<float>::min();
inline constexpr std::string_view NULL_TEXT = "NULL";

// A value as SQL text. Only the 32-bit integers' and the texts' NULL is written as NULL. A text is put
// between single quotes as it stands.
std::string valueText(std::int32_t value);
std::string valueText(std::int64_t value);
std::string valueText(double value);
std::string valueText(const std::string& value);

// A value from a result's text. "NULL", and what is no number of the kind, gives the kind's NULL.
void readValue(const std::string& text, std::int32_t& value);
void readValue(const std::string& text, std::int64_t& value);
void readValue(const std::string& text, double& value);
void readValue(const std::string& text, std::string& value);

/** `text` with its single quotes doubled: what any text needs before it goes into a model or a condition. */
std::string escapeQuotes(std::string_view text);

} // namespace DatabaseORM
