#include "Documents/Json.h"

#include "Base/Time.h"
#include "Documents/EndOfLifeJson.h"
#include "Documents/JsonNumber.h"
#include "Facts/FactTable.h"
#include "Facts/PropertyText.h"
#include "Facts/Silence.h"

#include <PI/ErrorCode.h>
#include <PI/PluginHelper.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <string>
#include <variant>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

/** Adds a value with its bounds and allowed codes. */
struct ValueToJson
{
    Json& m_Json;

    void operator()(std::monostate) const {}
    void operator()(const std::string& text) const { m_Json["value"] = text; }
    void operator()(std::uint64_t number) const { addNumber(m_Json, "value", number); }
    void operator()(float number) const { addNumber(m_Json, "value", number); }
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

void addLocationDoubt(Json& json, ShownPlace place)
{
    if (place != ShownPlace::Real)
        json["locationIsReal"] = false;
}

void addHealthLogDoubt(Json& json, std::optional<bool> healthLogRead)
{
    if (healthLogRead == false)
        json["healthLogRead"] = false;
}

Json operationJson(const PI::COperation& operation)
{
    Json json = {{"id", operation.Id()}};
    const std::string name = PI::PropertyValueToString(operation.Id());
    if (name != std::to_string(operation.Id()))
        json["name"] = name;
    return json;
}

/** Adds a fact, if it is known. */
struct FactToJson
{
    Json& m_Json;
    const char* m_Key;

    void operator()(std::monostate) const {}
    void operator()(std::uint64_t number) const { addNumber(m_Json, m_Key, number); }
    void operator()(std::int32_t number) const { addNumber(m_Json, m_Key, number); }
    void operator()(float number) const { addNumber(m_Json, m_Key, number); }
    void operator()(const Amount& amount) const { addNumber(m_Json, m_Key, amount); }
    template<typename Value>
    void operator()(const Value& value) const
    {
        m_Json[m_Key] = value;
    }
};

void addFact(Json& json, const Fact& fact, const Drive& drive)
{
    std::visit(FactToJson{json, fact.m_Key}, fact.m_Value(drive));
}

Json documentJson(const Json& content, bool simulated)
{
    Json document = {{"format", FORMAT}};
    if (simulated)
        document["simulated"] = true;
    document.update(content);
    return document;
}

/** JSON allows DEL and the C1 control characters unescaped, but a terminal obeys them. */
std::string withoutControls(const std::string& json)
{
    constexpr char lead = '\xC2'; // the second byte of U+0080 to U+00BF
    std::string text;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const bool isLead = json[i] == lead && i + 1 < json.size();
        const auto code = static_cast<unsigned char>(json[isLead ? i + 1 : i]);
        if (isLead ? code < 0xA0 : code == 0x7F) {
            std::array<char, 8> escape{};
            (void)std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(code));
            text += escape.data();
            i += isLead ? 1 : 0;
        } else
            text += json[i];
    }
    return text;
}

std::string dumped(const Json& content, bool simulated, int indent)
{
    return withoutControls(
               documentJson(content, simulated).dump(indent, ' ', false, Json::error_handler_t::replace)) +
           '\n';
}

} // namespace

Json identityJson(const DriveIdentity& identity)
{
    Drive drive;
    static_cast<DriveIdentity&>(drive) = identity;
    return driveJson(drive);
}

Json propertyJson(const PI::CProperty& property, Basis basis)
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
    if (basis != Basis::Measured)
        json["measured"] = false;
    json["settable"] = property.Settable();
    addBounds(json, property.GetValue());
    if (property.IconPathID() != 0)
        json["icon"] = property.IconPathID();
    return json;
}

Json objectJson(const ObjectStore& store, const PI::CObject& object)
{
    Json json = {{"id", identifierText(object.m_ID)},
                 {"type", object.m_Type},
                 {"parents", identifiers(object.m_Parents)},
                 {"children", identifiers(object.m_Children)}};
    addNumber(json, "updateCount", object.m_UpdateCount);
    if (object.m_Type == PI::TYPE_ADAPTER) {
        if (const std::optional<TLXX::CPciLocation> address = store.addressOf(object))
            json["pciAddress"] = address->Text();
        addLocationDoubt(json, shownPlaceOf(store, object));
    }
    const PI::CObject* adapter = adapterOf(store, object);
    if (const DriveAnswer* answer = adapter != nullptr ? store.answerOf(*adapter) : nullptr) {
        json["answering"] = answer->m_Answering;
        if (isSilent(*answer) && answer->m_LastAnswer)
            json["lastAnswer"] = utcText(*answer->m_LastAnswer);
    }
    addHealthLogDoubt(json, healthLogRead(store, object));
    json["properties"] = Json::array();
    json["operations"] = Json::array();
    for (const PI::CProperty& property : object.m_Properties)
        json["properties"].push_back(propertyJson(property, basisOf(store, object, property)));
    for (const PI::COperation& operation : object.m_Operations)
        json["operations"].push_back(operationJson(operation));
    return json;
}

Json driveJson(const Drive& drive)
{
    Json json = Json::object();
    for (const Fact& fact : facts())
        addFact(json, fact, drive);
    if (drive.m_AdapterId)
        json["adapterId"] = identifierText(*drive.m_AdapterId);
    if (drive.m_DriveId)
        json["driveId"] = identifierText(*drive.m_DriveId);
    return json;
}

Json ownFactsJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects)
{
    Json list = Json::array();
    for (const PI::CObject* object : objects) {
        const std::optional<Drive> drive = driveOf(store, *object);
        if (!drive)
            continue;
        Json json = {{"object", identifierText(object->m_ID)}};
        for (const Fact& fact : facts())
            if (isOwn(fact.m_Source.m_Origin))
                addFact(json, fact, *drive);
        list.push_back(std::move(json));
    }
    return list;
}

Json listedJson(const Drive& drive)
{
    Json json = driveJson(drive);
    if (const auto end = explainEndOfLife(drive))
        json["endOfLife"] = endOfLifeJson(*end);
    return json;
}

Json unheardJson(const ObjectStore& store)
{
    Json list = Json::array();
    for (const Drive& drive : joinDrives(store))
        if (!drive.m_AdapterId)
            list.push_back(driveJson(drive));
    return list;
}

Json listJson(const ObjectStore& store)
{
    Json document = {{"drives", Json::array()}};
    for (const Drive& drive : joinDrives(store))
        document["drives"].push_back(listedJson(drive));
    return document;
}

Json eventJson(const DriveEvent& event)
{
    Json json = {{"time", utcText(event.m_Event.m_Time)},
                 {"id", event.m_Event.m_Id},
                 {"severity", event.m_Event.m_Severity},
                 {"text", eventText(event)},
                 {"source", identifierText(event.m_Event.m_Source)},
                 {"sourceName", event.m_Event.SourceText()},
                 {"placeholder1", event.m_Event.PlaceHolder1()},
                 {"placeholder2", event.m_Event.PlaceHolder2()}};
    if (event.m_Drive)
        json["drive"] = identityJson(*event.m_Drive);
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

std::string documentText(const Json& content, bool simulated)
{
    constexpr int indent = 2;
    return dumped(content, simulated, indent);
}

std::string lineText(const Json& content, bool simulated)
{
    constexpr int oneLine = -1;
    return dumped(content, simulated, oneLine);
}

} // namespace Host::Cli
