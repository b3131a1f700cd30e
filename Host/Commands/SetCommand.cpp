#include "Commands/SetCommand.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Terminal/PropertyText.h"

#include <charconv>
#include <limits>
#include <optional>

namespace Host::Cli {
namespace {

std::optional<std::int32_t> parseValue(std::string_view text)
{
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    if (next != end || (error != std::errc() && error != std::errc::result_out_of_range))
        return std::nullopt;
    if (error == std::errc())
        return number;
    return text.front() == '-' ? std::numeric_limits<std::int32_t>::min()
                               : std::numeric_limits<std::int32_t>::max();
}

void putValue(PI::CProperty& property, std::string_view text)
{
    std::int32_t value = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t step = 0;
    // The plug-in holds the value against the bounds that it gets back.
    if (!property.GetValue(value, minimum, maximum, step))
        return;
    const std::optional<std::int32_t> wanted = parseValue(text);
    if (!wanted)
        throw Failure(ExitCode::WrongUsage, "\"" + printable(text) + "\" is no value for " +
                                                printable(captionText(property)) +
                                                ", which takes a number from " + std::to_string(minimum) +
                                                " to " + std::to_string(maximum) + ".");
    property.SetValue(*wanted, minimum, maximum, step);
}

} // namespace

PI::CProperty setProperty(PluginLibrary& plugin, const PI::CObject& object, const PI::CProperty& property,
                          std::string_view value)
{
    PI::CProperty wanted = plugin.property(object.m_ID, property.Id());
    // What cannot be set goes back as it is: it is the plug-in's to refuse.
    if (wanted.Settable())
        putValue(wanted, value);
    try {
        plugin.setProperty(object.m_ID, wanted);
    } catch (const Failure& failure) {
        throw Failure(failure.exitCode(),
                      "Property " + std::to_string(wanted.Id()) + ", " + printable(captionText(wanted)) +
                          ", cannot be set. " + failure.what(),
                      failure.result().value_or(RequestResult{}));
    }
    return plugin.property(object.m_ID, property.Id());
}

std::string setText(const PI::CProperty& property, std::string_view value)
{
    const std::string text = captionText(property) + " is now " + valueText(property);
    const auto* bounded = std::get_if<PI::CBoundedValue>(&property.GetValue());
    if (bounded == nullptr || bounded->m_Value == parseValue(value))
        return printable(text) + ".\n";
    return printable(text) + ", for " + printable(value) + " is beyond its limits, " +
           std::to_string(bounded->m_Minimum) + " and " + std::to_string(bounded->m_Maximum) + ".\n";
}

} // namespace Host::Cli
