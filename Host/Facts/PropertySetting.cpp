#include "Facts/PropertySetting.h"

#include "Base/Failure.h"
#include "Base/FileText.h"
#include "Base/Platform.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"
#include "Facts/PropertyText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace Host::Cli {
namespace {

std::string withoutBlanks(std::string_view text)
{
    std::string result(text);
    std::erase(result, ' ');
    return result;
}

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
    // The plug-in checks the value against the bounds that are in the property that it gets back.
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

/** The reason why `file` cannot be replaced. Empty when there is none. */
std::string writeFault(const std::filesystem::path& file)
{
    namespace fs = std::filesystem;
    const auto fault = [&](const std::string& reason) {
        return printable(file.string()) + " cannot be written: " + reason + ". ";
    };
    std::error_code error;
    const bool there = fs::exists(file, error);
    if (there && !fs::is_regular_file(file, error))
        return fault("it is no file");
    if (there && (error = Platform::accessError(file, Platform::Access::Read)))
        return fault(error.message());
    const std::optional<std::string> text = there ? readFile(file) : std::nullopt;
    if (text && text->find('\0') != std::string::npos)
        return fault("it contains zero bytes, probably because writing it was interrupted; delete it");
    const fs::path folder = file.parent_path();
    if ((error = Platform::accessError(folder, Platform::Access::AddFile)))
        return fault(printable(folder.string()) + ": " + error.message());
    if (const fs::space_info space = fs::space(folder, error); !error && space.available == 0)
        return fault("no space is left");
    return {};
}

} // namespace

NamedProperty namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name)
{
    std::string known;
    std::vector<std::string> captions;
    std::optional<NamedProperty> empty;
    for (const PI::CObject* object : objects)
        for (const PI::CProperty& property : object->m_Properties) {
            const std::string caption = captionText(property);
            captions.push_back(caption);
            known += "\n  " + std::to_string(property.Id()) + "  " + printable(caption);
            if (!equalIgnoringCase(withoutBlanks(caption), withoutBlanks(name)) &&
                std::to_string(property.Id()) != name)
                continue;
            const NamedProperty found = {*object, property};
            if (!valueText(property).empty())
                return found;
            if (!empty)
                empty.emplace(found);
        }
    if (empty)
        return *empty;
    throw Failure(ExitCode::WrongUsage, "There is no property \"" + printable(name) + "\" here." +
                                            didYouMean(name, captions) + " These exist:" + known);
}

PI::CProperty setProperty(PluginLibrary& plugin, const PI::CObject& object, const PI::CProperty& property,
                          std::string_view value, const std::filesystem::path& settings)
{
    PI::CProperty wanted = plugin.property(object.m_ID, property.Id());
    // A property that cannot be set is sent as it is, so that the plug-in refuses it itself.
    if (wanted.Settable())
        putValue(wanted, value);
    try {
        plugin.setProperty(object.m_ID, wanted);
    } catch (const Failure& failure) {
        const std::string fault = wanted.Settable() ? writeFault(settings) : std::string();
        throw Failure(failure.exitCode(),
                      "Property " + std::to_string(wanted.Id()) + ", " + printable(captionText(wanted)) +
                          ", cannot be set. " + fault + failure.what(),
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
