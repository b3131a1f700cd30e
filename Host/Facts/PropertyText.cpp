#include "Facts/PropertyText.h"

#include "Base/Text.h"

#include <PI/PluginHelper.h>

#include <array>
#include <variant>

namespace Host::Cli {
namespace {

constexpr std::uint32_t NO_CAPTION = 1;

struct ValueToText
{
    std::uint32_t m_Unit;

    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(std::uint64_t number) const
    {
        if (m_Unit == PI::UNIT_MIB)
            return sizeText(number);
        if (m_Unit == PI::UNIT_HOURS)
            return hoursText(number);
        return withUnit(std::to_string(number), m_Unit);
    }
    std::string operator()(float number) const
    {
        return withUnit(numberText(static_cast<double>(number)), m_Unit);
    }
    std::string operator()(const PI::CBoundedValue& value) const
    {
        return withUnit(std::to_string(value.m_Value), m_Unit);
    }
    std::string operator()(const PI::CCodeValue& value) const
    {
        return PI::PropertyValueToString(value.m_Code);
    }
    std::string operator()(const PI::CCodeListValue& value) const
    {
        std::string text;
        for (const std::uint32_t code : value.m_Codes)
            text += (text.empty() ? "" : "; ") + PI::PropertyValueToString(code);
        return text;
    }
};

} // namespace

std::string captionText(const PI::CProperty& property)
{
    if (property.NlsID() > NO_CAPTION)
        return PI::PropertyValueToString(property.NlsID());
    switch (property.Id()) {
    case PI::PROP_LOCATION:
        return "Location";
    case PI::PROP_MODEL_FAMILY:
        return "Known model family";
    default:
        return "Property " + std::to_string(property.Id());
    }
}

std::string valueText(const PI::CProperty& property)
{
    return std::visit(ValueToText{property.Units()}, property.GetValue());
}

std::string numberText(double number)
{
    std::string text = decimalText(number, 2);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

std::string withUnit(const std::string& number, std::uint32_t unit)
{
    // A property that was built without any unit has 0.
    if (unit <= PI::UNIT_NONE)
        return number;
    return number + (unit == PI::UNIT_PERCENT ? "" : " ") + PI::PropertyValueToString(unit);
}

std::string durationText(std::uint64_t hours)
{
    constexpr double hoursPerDay = 24;
    constexpr double daysPerYear = 365.25;
    constexpr double daysPerMonth = daysPerYear / 12;
    const double days = static_cast<double>(hours) / hoursPerDay;
    if (days >= 2 * daysPerYear)
        return decimalText(days / daysPerYear, 1) + " years";
    if (days >= 2 * daysPerMonth)
        return decimalText(days / daysPerMonth, 0) + " months";
    const std::string whole = decimalText(days, 0);
    return whole + (whole == "1" ? " day" : " days");
}

std::string hoursText(std::uint64_t hours)
{
    constexpr std::uint64_t hoursPerDay = 24;
    const std::string text = withUnit(std::to_string(hours), PI::UNIT_HOURS);
    return hours < hoursPerDay ? text : text + " (" + durationText(hours) + ")";
}

std::string sizeText(std::uint64_t mebibytes)
{
    constexpr double step = 1024;
    // If rounding gives a fourth digit, the next unit is used.
    constexpr double next = 1023.5;
    constexpr std::array units = {"MiB", "GiB", "TiB", "PiB", "EiB"};
    auto size = static_cast<double>(mebibytes);
    std::size_t unit = 0;
    while (size >= next && unit + 1 < units.size()) {
        size /= step;
        ++unit;
    }
    int decimals = 0;
    if (unit > 0 && size < 99.95)
        decimals = size < 9.995 ? 2 : 1;
    return decimalText(size, decimals) + " " + units[unit];
}

} // namespace Host::Cli
