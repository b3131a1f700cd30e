#include "Documents/ServiceJson.h"

#include "Base/Time.h"
#include "Documents/Json.h"
#include "Documents/JsonNumber.h"
#include "Facts/ServiceVerdict.h"
#include "Facts/Silence.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

Json countsJson(const std::vector<DriveCheck>& drives)
{
    const auto count = [&](Verdict verdict) {
        return std::count_if(drives.begin(), drives.end(),
                             [&](const DriveCheck& each) { return each.m_Judgement.m_Verdict == verdict; });
    };
    const auto silent = std::count_if(drives.begin(), drives.end(),
                                      [](const DriveCheck& each) { return isSilent(*each.m_Drive); });
    return {{"total", drives.size()},
            {"ok", count(Verdict::Ok)},
            {"warning", count(Verdict::Warning)},
            {"critical", count(Verdict::Critical)},
            {"unknown", count(Verdict::Unknown)},
            {"silent", silent}};
}

Json roundJson(const Snapshot& snapshot)
{
    Json json = Json::object();
    addNumber(json, "number", snapshot.m_Round);
    json["time"] = utcText(snapshot.m_Time);
    return json;
}

Json journalJson(const ServiceFigures& figures)
{
    Json json = Json::object();
    addNumber(json, "lastNumber", figures.m_LastEntry);
    if (!figures.m_JournalFailure.empty())
        json["failure"] = figures.m_JournalFailure;
    return json;
}

} // namespace

Json statusJson(const Snapshot& snapshot, const ServiceFigures& figures, std::uint64_t now)
{
    const std::vector<DriveCheck> drives = checkDrives(snapshot, now);
    const Judgement judgement = judgeService(drives, snapshot, figures);
    Json json = {{"version", OSTREL_VERSION},
                 {"time", utcText(now)},
                 {"started", utcText(figures.m_Started)},
                 {"state", static_cast<int>(judgement.m_Verdict)},
                 {"stateText", verdictText(judgement.m_Verdict)},
                 {"message", judgement.m_Reason},
                 {"drives", countsJson(drives)}};
    if (!figures.m_Trouble.empty())
        json["trouble"] = figures.m_Trouble;
    if (snapshot.m_Round > 0)
        json["round"] = roundJson(snapshot);
    if (figures.m_PollInterval > 0)
        addNumber(json, "pollSeconds", figures.m_PollInterval / MILLISECONDS_A_SECOND);
    addNumber(json, "readErrors", figures.m_ReadErrors);
    json["journal"] = journalJson(figures);
    return json;
}

Json keyedDriveJson(const std::string& key, const Drive& drive)
{
    Json json = {{"key", key}};
    json.update(listedJson(drive));
    return json;
}

Json drivesJson(const Snapshot& snapshot)
{
    Json document = {{"drives", Json::array()}};
    for (std::size_t i = 0; i < snapshot.m_Drives.size(); ++i)
        document["drives"].push_back(keyedDriveJson(snapshot.m_Keys[i], snapshot.m_Drives[i]));
    return document;
}

} // namespace Host::Cli
