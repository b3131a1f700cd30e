#include "Facts/FactTable.h"
#include "InterfaceTables.h"
#include "Tables.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace DocsTest {
namespace {

using namespace Host::Cli;

std::string typeText(FactType type)
{
    constexpr std::array names = {"gauge", "counter", "state", "text"};
    return names.at(static_cast<std::size_t>(type));
}

std::string sourceText(const FactSource& source)
{
    constexpr std::array origins = {"property ", "health log, byte ", "Identify Controller, byte ",
                                    "the system", "the program"};
    const std::string origin = origins.at(static_cast<std::size_t>(source.m_Origin));
    return origin.ends_with(' ') ? origin + std::to_string(source.m_Place) : origin;
}

std::string reference(const char* definition)
{
    return std::string(R"("$ref": "#/$defs/)") + definition + '"';
}

/** Members that a definition of their own describes in more detail. */
bool hasDefinition(std::string_view key)
{
    constexpr std::array<std::string_view, 5> keys = {"pciAddress", "locationIsReal", "healthLogRead",
                                                      "answering", "lastAnswer"};
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

/** The schema of the value. */
std::string shapeText(const Fact& fact)
{
    if (hasDefinition(fact.m_Key))
        return reference(fact.m_Key);
    switch (fact.m_Kind) {
    case factKind<std::string>():
        return R"("type": "string", "minLength": 1)";
    case factKind<std::uint64_t>():
        return reference("counter");
    case factKind<std::uint32_t>():
        return reference("code");
    case factKind<std::int32_t>():
        return std::string_view(fact.m_Unit) == "%" ? reference("percentage") : R"("type": "integer")";
    case factKind<float>():
        return R"("type": "number")";
    case factKind<Amount>():
        return reference("amount");
    case factKind<std::vector<std::string>>():
        return R"("type": "array", "minItems": 1, "items": { "type": "string", "minLength": 1 })";
    case factKind<std::vector<std::uint32_t>>():
        return reference("codes");
    default:
        throw std::runtime_error(std::string("no schema describes ") + fact.m_Key);
    }
}

std::string descriptionText(const Fact& fact)
{
    const std::string unit = fact.m_Unit;
    return std::string(R"("description": ")") + fact.m_Caption + (unit.empty() ? "" : ", in " + unit) +
           "\", ";
}

class Members
{
public:
    void add(const std::string& key, const std::string& content)
    {
        m_Properties.push_back("\"" + key + "\": { " + content + " }");
    }

    /** `member` is only there together with `others`. */
    void tie(const std::string& member, const std::vector<std::string>& others)
    {
        std::string list;
        for (const std::string& other : others)
            list += (list.empty() ? "\"" : ", \"") + other + "\"";
        m_Ties.push_back("\"" + member + "\": [" + list + "]");
    }

    void add(const Fact& fact)
    {
        const std::string key = fact.m_Key;
        add(key, descriptionText(fact) + shapeText(fact));
        if (fact.m_Kind != factKind<std::uint64_t>())
            return;
        add(key + "Text", reference("counterText"));
        tie(key + "Text", {key});
    }

    std::string text() const
    {
        return section("properties", m_Properties) + ",\n" + section("dependentRequired", m_Ties);
    }

private:
    static std::string section(const std::string& name, const std::vector<std::string>& lines)
    {
        std::string text = "      \"" + name + "\": {";
        for (const std::string& line : lines)
            text += (&line == lines.data() ? "\n        " : ",\n        ") + line;
        return text + "\n      }";
    }

    std::vector<std::string> m_Properties;
    std::vector<std::string> m_Ties;
};

std::string driveMembers()
{
    Members members;
    for (const Fact& fact : facts())
        members.add(fact);
    members.add("endOfLife", reference("endOfLife"));
    members.add("adapterId", reference("identifier"));
    members.add("driveId", reference("identifier"));
    members.tie("capacityBytes", {"capacityMiB"});
    members.tie("healthCode", {"health"});
    members.tie("reasons", {"reasonCodes", "health"});
    members.tie("reasonCodes", {"reasons"});
    members.tie("dataReadBytes", {"dataRead"});
    members.tie("dataWrittenBytes", {"dataWritten"});
    members.tie("locationIsReal", {"pciAddress", "location"});
    members.tie("unallocatedCapacityBytes", {"totalCapacityBytes"});
    return members.text();
}

std::string ownFactMembers()
{
    Members members;
    members.add("object", reference("identifier"));
    for (const Fact& fact : facts())
        if (isOwn(fact.m_Source.m_Origin))
            members.add(fact);
    members.tie("unallocatedCapacityBytes", {"totalCapacityBytes"});
    return members.text();
}

} // namespace

std::string factTable()
{
    std::vector<Row> rows;
    for (const Fact& fact : facts())
        rows.push_back({"`" + std::string(fact.m_Key) + "`", fact.m_Caption, fact.m_Unit,
                        typeText(fact.m_Type), sourceText(fact.m_Source)});
    return table({"Member", "What it is", "Unit", "Type", "Told by"}, rows);
}

std::map<std::string, std::string> schemaMembers(const std::string& schema)
{
    if (schema == "list" || schema == "check")
        return {{"drive", driveMembers()}};
    if (schema == "show")
        return {{"facts", ownFactMembers()}};
    return {};
}

} // namespace DocsTest
