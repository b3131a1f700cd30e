#pragma once

#include "Facts/Drives.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>

// Numbers as members of JSON documents, each in a form that loses no digit.
namespace Host::Cli {

/** Not every reader keeps integers above 2^53 exact. For those the document also has the digits as a text. */
void addNumber(nlohmann::ordered_json& json, const std::string& name, std::uint64_t number);

void addNumber(nlohmann::ordered_json& json, const std::string& name, std::int32_t number);

/** In its shortest form. Infinity and not-a-number are left out, because JSON does not have them. */
void addNumber(nlohmann::ordered_json& json, const std::string& name, float number);

/** An object with the value and its unit. */
void addNumber(nlohmann::ordered_json& json, const std::string& name, const Amount& amount);

/** Returns nothing when there is no amount. */
template<typename Number>
void addNumber(nlohmann::ordered_json& json, const std::string& name, const std::optional<Number>& number)
{
    if (number)
        addNumber(json, name, *number);
}

} // namespace Host::Cli
