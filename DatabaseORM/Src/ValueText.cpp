#include <DatabaseORM/ValueText.h>

#include <array>
#include <charconv>
#include <stdexcept>
#include <system_error>

namespace DatabaseORM {

namespace {

// The widest double, its sign, the point and six decimals.
constexpr std::size_t DOUBLE_TEXT_SIZE = std::numeric_limits<double>::max_exponent10 + 16;

// Throws what the standard conversions of integers throw. The standard conversions of floating point would
// use the process's locale, and a decimal comma is not SQL.
double toDouble(const std::string& text)
{
    double value = 0;
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    const char* const begin = text.data() + (start == std::string::npos ? text.size() : start);
    const auto [end, error] = std::from_chars(begin, text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range("stod");
    if (error != std::errc())
        throw std::invalid_argument("stod");
    return value;
}

template<class Value, class Conversion>
void readNumber(const std::string& text, Value& value, Value null, Conversion convert)
{
    value = null;
    if (text == NULL_TEXT)
        return;
    try {
        value = convert(text);
    } catch (const std::invalid_argument&) {
        value = null;
    } catch (const std::out_of_range&) {
        value = null;
    }
}

} // namespace

std::string valueText(std::int32_t value)
{
    return value == NULL_INTEGER ? std::string(NULL_TEXT) : std::to_string(value);
}

std::string valueText(std::int64_t value)
{
    return std::to_string(value);
}

std::string valueText(double value)
{
    // The text of "%f", whatever the process's locale.
    std::array<char, DOUBLE_TEXT_SIZE> text{};
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    return {text.data(), result.ptr};
}

std::string valueText(const std::string& value)
{
    return value == NULL_TEXT ? value : "'" + value + "'";
}

void readValue(const std::string& text, std::int32_t& value)
{
    readNumber(text, value, NULL_INTEGER, [](const std::string& digits) { return std::stoi(digits); });
}

void readValue(const std::string& text, std::int64_t& value)
{
    readNumber(text, value, NULL_BIG_INTEGER,
               [](const std::string& digits) { return std::int64_t{std::stoll(digits)}; });
}

void readValue(const std::string& text, double& value)
{
    readNumber(text, value, NULL_DOUBLE, toDouble);
}

void readValue(const std::string& text, std::string& value)
{
    value = text;
}

std::string escapeQuotes(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (const char character : text) {
        if (character == '\'')
            escaped += character;
        escaped += character;
    }
    return escaped;
}

} // namespace DatabaseORM
