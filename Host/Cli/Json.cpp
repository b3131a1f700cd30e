#include "Cli/Json.h"

#include "Cli/PropertyText.h"

#include <PI/ErrorCode.h>
#include <PI/PluginHelper.h>

#include <nlohmann/json.hpp>

#include <charconv>
#include <variant>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

/** The shortest decimal number that stands for `number`, so that 1.6 does not print as 1.60000002384. */
double shortest(float number)
{
    char buffer[64];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
    double result = 0;
    (void)std::from_chars(buffer, end, result);
    return result;
}

/** Adds a value, and the bounds and codes that come with it. */
struct ValueToJson
{
    Json& m_Json;

    void operator()(std::monostate) const {}
    void operator()(const std::string& text) const { m_Json["value"] = text; }
    void operator()(std::uint64_t number) const { m_Json["value"] = number; }
    void operator()(float number) const { m_Json["value"] = shortest(number); }
    void operator()(const PI::CBoundedValue& value) const { m_Json["value"] = value.m_Value; }
    void operator()(const PI::CCodeValue& value) const { m_Json["value"] = value.m_Code; }
    void operator()(const PI::CCodeListValue& value) const { m_Json["value"] = value.m_Codes; }
};

void addBounds(Json& json, const PI::CProperty::Value& value)
{
    if (const auto* bounded = std::get_if<PI::CBoundedValue>(&value)) {
        json["minimum"] = bounded->m_Minimum;
        json["maximum"] = bounded->m_Maximum;
        json["step"] = bounded->m_Step;
    } else if (const auto* code = std::get_if<PI::CCodeValue>(&value)) {
        json["allowed"] = code->m_Allowed;
    } else if (const auto* codes = std::get_if<PI::CCodeListValue>(&value)) {
        json["allowed"] = codes->m_Allowed;
    }
}

Json identifiers(const std::vector<std::uint64_t>& ids)
{
    Json list = Json::array();
    for (const std::uint64_t id : ids)
        list.push_back(identifierText(id));
    return list;
}

void add(Json& json, const char* name, const std::string& text)
{
    if (!text.empty())
        json[name] = text;
}

template<typename Number>
void add(Json& json, const char* name, const std::optional<Number>& number)
{
    if (number)
        json[name] = *number;
}

void add(Json& json, const char* name, const std::optional<Amount>& amount)
{
    if (!amount)
        return;
    Json& entry = json[name] = Json{{"value", shortest(amount->m_Value)}};
    if (amount->m_Unit > PI::UNIT_NONE)
        entry["unit"] = PI::PropertyValueToString(amount->m_Unit);
}

} // namespace

Json propertyJson(const PI::CProperty& property)
{
    Json json = {{"id", property.Id()}};
    if (property.NlsID() > 1)
        json["caption"] = PI::PropertyValueToString(property.NlsID());
    std::visit(ValueToJson{json}, property.GetValue());
    json["text"] = valueText(property);
    if (property.Units() > PI::UNIT_NONE) {
        json["unit"] = property.Units();
        json["unitText"] = PI::PropertyValueToString(property.Units());
    }
    json["settable"] = property.Settable();
    addBounds(json, property.GetValue());
    if (property.IconPathID() != 0)
        json["icon"] = property.IconPathID();
    return json;
}

Json objectJson(const PI::CObject& object)
{
    Json json = {{"id", identifierText(object.m_ID)},
                 {"type", object.m_Type},
                 {"parents", identifiers(object.m_Parents)},
                 {"children", identifiers(object.m_Children)},
                 {"updateCount", object.m_UpdateCount},
                 {"properties", Json::array()},
                 {"operations", Json::array()}};
    for (const PI::CProperty& property : object.m_Properties)
        json["properties"].push_back(propertyJson(property));
    for (const PI::COperation& operation : object.m_Operations)
        json["operations"].push_back(Json{{"id", operation.Id()}});
    return json;
}

Json driveJson(const Drive& drive)
{
    Json json = Json::object();
    add(json, "device", drive.m_Device);
    add(json, "vendor", drive.m_Vendor);
    add(json, "model", drive.m_Model);
    add(json, "serial", drive.m_Serial);
    add(json, "firmware", drive.m_Firmware);
    add(json, "capacityMiB", drive.m_CapacityMiB);
    add(json, "blockSize", drive.m_BlockSize);
    if (drive.m_Temperature)
        json["temperature"] = shortest(*drive.m_Temperature);
    add(json, "wear", drive.m_Wear);
    if (drive.m_Health) {
        json["health"] = drive.m_Health->m_Text;
        add(json, "healthCode", drive.m_Health->m_Code);
    }
    for (const CodeText& reason : drive.m_Reasons) {
        json["reasons"].push_back(reason.m_Text);
        json["reasonCodes"].push_back(reason.m_Code);
    }
    add(json, "pciAddress", drive.m_PciAddress);
    add(json, "location", drive.m_Location);
    add(json, "driver", drive.m_Driver);
    add(json, "driverVersion", drive.m_DriverVersion);
    add(json, "spare", drive.m_Spare);
    add(json, "spareThreshold", drive.m_SpareThreshold);
    add(json, "dataRead", drive.m_DataRead);
    add(json, "dataWritten", drive.m_DataWritten);
    add(json, "powerOnHours", drive.m_PowerOnHours);
    add(json, "mediaErrors", drive.m_MediaErrors);
    if (drive.m_AdapterId)
        json["adapterId"] = identifierText(*drive.m_AdapterId);
    if (drive.m_DriveId)
        json["driveId"] = identifierText(*drive.m_DriveId);
    return json;
}

Json failureJson(const std::string& message, const std::optional<RequestResult>& result)
{
    Json error = Json::object();
    if (result) {
        error["request"] = result->m_Request;
        error["code"] = result->m_Code;
        error["name"] = std::string(PI::errorName(result->m_Code));
    }
    error["message"] = message;
    return Json{{"error", error}};
}

std::string documentText(const Json& document)
{
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace Host::Cli
