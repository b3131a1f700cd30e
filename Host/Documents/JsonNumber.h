#pragma once

#include "Facts/Drives.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>

// Numbers as members of JSON documents, each in the form that loses nothing.
namespace Host::Cli {

/** Above 2^53, where not every reader keeps integers exact, the digits stand as text beside the number, too.
 */
void addNumber(nlohmann::ordered_json& json, const std::string& name, std::uint64_t number);

void addNumber(nlohmann::ordered_json& json, const std::string& name, std::int32_t number);

/** As short as it is. What is no number is left out, for JSON has none such. */
void addNumber(nlohmann::ordered_json& json, const std::string& name, float number);

/** An object of value and unit. */
void addNumber(nlohmann::ordered_json& json, const std::string& name, const Amount& amount);

/** Nothing when there is none. */
template<typename Number>
void addNumber(nlohmann::ordered_json& json, const std::string& name, const std::optional<Number>& number)
{
    if (number)
        addNumber(json, name, *number);
}

} // namespace Host::Cli
