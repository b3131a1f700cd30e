#include "Documents/CheckJson.h"

#include "Documents/Json.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace Host::Cli {
namespace {

void addVerdict(nlohmann::ordered_json& json, Verdict verdict, const std::string& message)
{
    json["state"] = static_cast<int>(verdict);
    json["stateText"] = verdictText(verdict);
    json["message"] = message;
}

} // namespace

nlohmann::ordered_json checkJson(Verdict verdict, const std::string& message,
                                 const std::vector<DriveCheck>& drives)
{
    nlohmann::ordered_json document;
    addVerdict(document, verdict, message);
    document["drives"] = nlohmann::ordered_json::array();
    for (const DriveCheck& each : drives) {
        nlohmann::ordered_json json = {{"key", each.m_Key}};
        addVerdict(json, each.m_Judgement.m_Verdict, each.m_Judgement.m_Reason);
        json["drive"] = listedJson(*each.m_Drive);
        document["drives"].push_back(std::move(json));
    }
    return document;
}

} // namespace Host::Cli
