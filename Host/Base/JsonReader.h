#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/**
 * Reads one JSON object strictly. A value that is of the wrong type or out of range, an unknown name and a
 * missing one end in `std::runtime_error` with the place (as a JSON pointer) and what belongs there. Refers
 * to the document.
 */
class JsonReader
{
public:
    JsonReader(const nlohmann::json& object, std::string place);

    /** Refuses every name but these. */
    void allowOnly(const std::vector<std::string>& names) const;

    std::vector<std::string> keys() const;
    bool has(const char* key) const;
    bool isText(const char* key) const;

    // Each gives nothing when there is no such name.
    /** A whole number from 0 to `largest`, or its hexadecimal text ("0x1F"). */
    std::optional<std::uint64_t> number(const char* key, std::uint64_t largest) const;
    std::optional<std::int64_t> signedNumber(const char* key, std::int64_t smallest,
                                             std::int64_t largest) const;
    std::optional<bool> flag(const char* key) const;
    /** Places in `names` of the names in a list, each at most once. */
    std::optional<std::vector<std::size_t>> choices(const char* key,
                                                    const std::vector<std::string>& names) const;
    /** Printable ASCII of at most `longest` characters. */
    std::optional<std::string> text(const char* key, std::size_t longest) const;

    /** The object under a name that is there. */
    JsonReader object(const char* key) const;
    /** The objects of a list that has to be there. */
    std::vector<JsonReader> list(const char* key) const;
    /** The bytes of a text of hexadecimal digits, blanks between bytes allowed; `longest` bytes at most. */
    std::vector<std::uint8_t> hexadecimal(const char* key, std::size_t longest) const;

    /** The value that has to be there. */
    template<typename Value>
    Value required(const char* key, std::optional<Value> value) const
    {
        if (!value)
            fail(key, "is missing");
        return *std::move(value);
    }

    /** Throws: the value under `key` (empty: this object) is not as it has to be. */
    [[noreturn]] void fail(const char* key, const std::string& what) const;

private:
    const nlohmann::json* find(const char* key) const;

    const nlohmann::json* m_Object;
    std::string m_Place;
};

} // namespace Host
