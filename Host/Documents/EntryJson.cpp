#include "Documents/EntryJson.h"

#include "Base/Time.h"
#include "Documents/Json.h"
#include "Documents/JsonNumber.h"

#include <nlohmann/json.hpp>

namespace Host::Cli {

nlohmann::ordered_json entryJson(const Journal::Entry& entry)
{
    nlohmann::ordered_json json = {{"time", utcText(entry.m_End)},
                                   {"kind", Journal::kindName(entry.m_Kind)},
                                   {"phase", Journal::phaseName(entry.m_Phase)},
                                   {"severity", static_cast<std::uint32_t>(entry.m_Severity)},
                                   {"text", entry.m_Text}};
    if (entry.m_Begin)
        json["begin"] = utcText(*entry.m_Begin);
    if (entry.m_Event)
        json["event"] = *entry.m_Event;
    if (entry.m_Key.empty())
        return json;
    json["key"] = entry.m_Key;
    json["drive"] = identityJson(entry.m_Drive);
    return json;
}

nlohmann::ordered_json numberedEntryJson(const Journal::NumberedEntry& entry)
{
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    addNumber(json, "number", entry.m_Number);
    json.update(entryJson(entry.m_Entry));
    return json;
}

} // namespace Host::Cli
