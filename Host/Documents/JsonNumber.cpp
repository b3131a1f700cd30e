#include "Documents/JsonNumber.h"

#include <PI/PluginHelper.h>

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

/** The shortest decimal number that reads back as `number`. So 1.6 does not print as 1.60000002384. */
double shortest(float number)
{
    char buffer[64];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
    double result = 0;
    (void)std::from_chars(buffer, end, result);
    return result;
}

} // namespace

void addNumber(Json& json, const std::string& name, std::uint64_t number)
{
    constexpr std::uint64_t largestExactDouble = 1ULL << 53U;
    json[name] = number;
    if (number > largestExactDouble)
        json[name + "Text"] = std::to_string(number);
}

void addNumber(Json& json, const std::string& name, std::int32_t number)
{
    json[name] = number;
}

void addNumber(Json& json, const std::string& name, float number)
{
    if (std::isfinite(number))
        json[name] = shortest(number);
}

void addNumber(Json& json, const std::string& name, const Amount& amount)
{
    Json entry = Json::object();
    addNumber(entry, "value", amount.m_Value);
    if (entry.empty())
        return;
    if (amount.m_Unit > PI::UNIT_NONE)
        entry["unit"] = PI::PropertyValueToString(amount.m_Unit);
    json[name] = std::move(entry);
}

} // namespace Host::Cli
