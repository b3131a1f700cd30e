#include "Base/JsonReader.h"

#include "Base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Host {
JsonReader::JsonReader(const nlohmann::json& object, std::string place)
    : m_Object(&object), m_Place(std::move(place))
{
    if (!object.is_object())
        fail("", "has to be an object, in braces");
}

void JsonReader::fail(const char* key, const std::string& what) const
{
    const std::string place = *key != '\0' ? m_Place + "/" + key : m_Place;
    // A file can have any bytes in a name. A line end could look like the beginning of a message of this
    // program.
    throw std::runtime_error((place.empty() ? "the document" : printable(place)) + " " + what);
}

const nlohmann::json* JsonReader::find(const char* key) const
{
    const auto found = m_Object->find(key);
    return found == m_Object->end() ? nullptr : &*found;
}

void JsonReader::allowOnly(const std::vector<std::string>& names) const
{
    for (const std::string& key : keys()) {
        if (std::find(names.begin(), names.end(), key) != names.end())
            continue;
        std::string known;
        for (const std::string& name : names)
            known += (known.empty() ? "" : ", ") + name;
        fail(key.c_str(), "is not known here; known are: " + known);
    }
}

std::vector<std::string> JsonReader::keys() const
{
    std::vector<std::string> keys;
    for (const auto& item : m_Object->items())
        keys.push_back(item.key());
    return keys;
}

bool JsonReader::has(const char* key) const
{
    return find(key) != nullptr;
}

bool JsonReader::isText(const char* key) const
{
    const nlohmann::json* value = find(key);
    return value != nullptr && value->is_string();
}

std::optional<std::uint64_t> JsonReader::number(const char* key, std::uint64_t largest) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    std::optional<std::uint64_t> number;
    if (value->is_number_unsigned())
        number = value->get<std::uint64_t>();
    else if (value->is_string())
        number = parseHexadecimal(value->get_ref<const std::string&>());
    if (!number || *number > largest)
        fail(key, "has to be a whole number from 0 to " + std::to_string(largest) +
                      ", or its hexadecimal text such as \"0x1F\"");
    return number;
}

std::optional<std::int64_t> JsonReader::signedNumber(const char* key, std::int64_t smallest,
                                                     std::int64_t largest) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    // An unsigned number above the signed range would become negative. It would never be within these bounds.
    const std::int64_t number = value->is_number_integer() ? value->get<std::int64_t>() : smallest - 1;
    const bool wrapped = value->is_number_unsigned() && number < 0;
    if (wrapped || number < smallest || number > largest)
        fail(key,
             "has to be a whole number from " + std::to_string(smallest) + " to " + std::to_string(largest));
    return number;
}

std::optional<bool> JsonReader::flag(const char* key) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    if (!value->is_boolean())
        fail(key, "has to be true or false");
    return value->get<bool>();
}

std::optional<std::vector<std::size_t>> JsonReader::choices(const char* key,
                                                            const std::vector<std::string>& names) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    std::vector<std::size_t> places;
    bool good = value->is_array();
    for (std::size_t i = 0; good && i < value->size(); ++i) {
        const auto name = std::find(names.begin(), names.end(), value->at(i));
        const auto place = static_cast<std::size_t>(name - names.begin());
        good = name != names.end() && std::find(places.begin(), places.end(), place) == places.end();
        places.push_back(place);
    }
    if (!good) {
        std::string known;
        for (const std::string& name : names)
            known += (known.empty() ? "" : ", ") + name;
        fail(key, "has to be a list, in brackets, with each of these at most once: " + known);
    }
    return places;
}

std::optional<std::string> JsonReader::text(const char* key, std::size_t longest) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr)
        return std::nullopt;
    const bool good = value->is_string() && value->get_ref<const std::string&>().size() <= longest;
    const std::string text = good ? value->get<std::string>() : std::string();
    if (!good || std::any_of(text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }))
        fail(key, "has to be a text of at most " + std::to_string(longest) + " printable ASCII characters");
    return text;
}

JsonReader JsonReader::object(const char* key) const
{
    return {m_Object->at(key), m_Place + "/" + key};
}

std::vector<JsonReader> JsonReader::list(const char* key) const
{
    const nlohmann::json* value = find(key);
    if (value == nullptr || !value->is_array())
        fail(key, "has to be there as a list, in brackets");
    std::vector<JsonReader> readers;
    for (const nlohmann::json& element : *value)
        readers.emplace_back(element, m_Place + "/" + key + "/" + std::to_string(readers.size()));
    return readers;
}

std::vector<std::uint8_t> JsonReader::hexadecimal(const char* key, std::size_t longest) const
{
    std::string digits = m_Object->at(key).get<std::string>();
    std::erase(digits, ' ');
    std::vector<std::uint8_t> bytes(digits.size() / 2);
    bool good = digits.size() % 2 == 0 && bytes.size() <= longest;
    for (std::size_t i = 0; good && i < bytes.size(); ++i) {
        const auto byte = parseNumber(std::string_view(digits).substr(2 * i, 2), 16);
        good = byte.has_value();
        bytes[i] = static_cast<std::uint8_t>(byte.value_or(0));
    }
    if (!good)
        fail(key, "has to be values by name, or at most " + std::to_string(longest) +
                      " bytes as pairs of hexadecimal digits");
    return bytes;
}

} // namespace Host
