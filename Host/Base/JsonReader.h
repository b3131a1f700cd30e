#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/**
 * Reads one JSON object strictly. Throws `std::runtime_error` for a value of the wrong type or out of range,
 * an unknown name and a missing name. The message has the place as a JSON pointer and says what is expected
 * there. Keeps a reference to the document.
 */
class JsonReader
{
public:
    JsonReader(const nlohmann::json& object, std::string place);

    /** Refuses every name that is not in this list. */
    void allowOnly(const std::vector<std::string>& names) const;

    std::vector<std::string> keys() const;
    bool has(const char* key) const;
    bool isText(const char* key) const;

    // Each of these returns nothing when there is no such name.
    /** Reads a whole number from 0 to `largest`, or its hexadecimal text ("0x1F"). */
    std::optional<std::uint64_t> number(const char* key, std::uint64_t largest) const;
    std::optional<std::int64_t> signedNumber(const char* key, std::int64_t smallest,
                                             std::int64_t largest) const;
    /** Reads true or false. */
    std::optional<bool> flag(const char* key) const;
    /** Reads a list of names, each at most once. Returns their places in `names`. */
    std::optional<std::vector<std::size_t>> choices(const char* key,
                                                    const std::vector<std::string>& names) const;
    /** Reads printable ASCII of at most `longest` characters. */
    std::optional<std::string> text(const char* key, std::size_t longest) const;

    /** Reads an object. The name must be there. */
    JsonReader object(const char* key) const;
    /** Reads a list of objects. The name must be there. */
    std::vector<JsonReader> list(const char* key) const;
    /**
     * Reads a text of hexadecimal digits, with or without blanks between bytes. Returns at most `longest`
     * bytes.
     */
    std::vector<std::uint8_t> hexadecimal(const char* key, std::size_t longest) const;

    /** Reads a value. The name must be there. */
    template<typename Value>
    Value required(const char* key, std::optional<Value> value) const
    {
        if (!value)
            fail(key, "is missing");
        return *std::move(value);
    }

    /** Throws because the value at `key` is not what it must be. An empty key means this object. */
    [[noreturn]] void fail(const char* key, const std::string& what) const;

private:
    const nlohmann::json* find(const char* key) const;

    const nlohmann::json* m_Object;
    std::string m_Place;
};

} // namespace Host
