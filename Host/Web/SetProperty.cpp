#include "Web/SetProperty.h"

#include "Base/Text.h"
#include "Documents/Json.h"
#include "Facts/PropertySetting.h"
#include "Web/Parameters.h"
#include "Web/Problem.h"

#include <nlohmann/json.hpp>

namespace Host::Web {
namespace {

using SetJson = nlohmann::ordered_json;

Response refusal(const Request& request)
{
    return problem(403, request.m_Local ? "Only root and members of the group ostrel may change something."
                                        : "Properties are not set over HTTP. Use ostrel set on the machine.");
}

bool isJson(const Request& request)
{
    const auto found = request.m_Headers.find("content-type");
    if (found == request.m_Headers.end())
        return false;
    const std::string_view type = found->second;
    return equalIgnoringCase(type.substr(0, type.find(';')), "application/json");
}

/** The value in the document `{"value": ...}`. Throws `WrongParameter`. */
std::string valueIn(const std::string& body)
{
    const SetJson json = SetJson::parse(body, nullptr, false);
    if (json.is_object() && json.size() == 1 && json.contains("value")) {
        const SetJson& value = json.at("value");
        if (value.is_string())
            return value.get<std::string>();
        if (value.is_number())
            return value.dump();
    }
    throw WrongParameter("value",
                         "The content must be an object with the member \"value\", a text or a number.");
}

Response outcome(const std::string& value, bool isSimulated, const PI::CProperty* property,
                 std::exception_ptr failure)
{
    try {
        if (property == nullptr)
            std::rethrow_exception(std::move(failure));
        Response response;
        response.m_Type = "application/json";
        response.m_Body = Cli::documentText(
            {{"property", Cli::propertyJson(*property)}, {"text", Cli::setText(*property, value)}},
            isSimulated);
        return response;
    } catch (const Failure& wrong) {
        return problem(wrong);
    } catch (const std::exception&) {
        return problem(500, "The property could not be set.");
    }
}

} // namespace

void setProperty(IServiceView& view, const PropertyName& name, const Request& request, const Respond& respond)
{
    if (!request.m_MayChange)
        return respond(refusal(request));
    if (!isJson(request))
        return respond(problem(415, "The content must be application/json."));
    const std::string value = valueIn(request.m_Body);
    view.set(name.m_Object, name.m_Property, value,
             [value, respond, isSimulated = view.figures().m_Simulated](const PI::CProperty* property,
                                                                        std::exception_ptr failure) {
                 respond(outcome(value, isSimulated, property, std::move(failure)));
             });
}

} // namespace Host::Web
