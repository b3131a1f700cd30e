#include "Documents/EndOfLifeJson.h"

#include "Documents/JsonNumber.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace Host::Cli {
namespace {

const char* nameOf(EndOfLife::Limit limit)
{
    switch (limit) {
    case EndOfLife::Limit::None:
        return "none";
    case EndOfLife::Limit::Beyond:
        return "beyond";
    case EndOfLife::Limit::Writing:
        return "writing";
    case EndOfLife::Limit::Wear:
        return "wear";
    case EndOfLife::Limit::Worn:
        return "worn";
    }
    return "";
}

} // namespace

nlohmann::ordered_json endOfLifeJson(const EndOfLife& end)
{
    nlohmann::ordered_json entry = {{"object", identifierText(end.m_AdapterId)}, {"date", end.m_Date}};
    addNumber(entry, "powerOnHours", end.m_PowerOnHours);
    addNumber(entry, "dataWritten", end.m_DataWritten);
    addNumber(entry, "ratingTiB", end.m_Rating);
    addNumber(entry, "enduranceUsed", end.m_Endurance);
    addNumber(entry, "wear", end.m_Wear);
    entry["limit"] = nameOf(end.m_Limit);
    return entry;
}

nlohmann::ordered_json endOfLifeJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const PI::CObject* object : objects) {
        const std::optional<Drive> drive = driveOf(store, *object);
        const std::optional<EndOfLife> end = drive ? explainEndOfLife(*drive) : std::nullopt;
        if (end)
            list.push_back(endOfLifeJson(*end));
    }
    return list;
}

} // namespace Host::Cli
