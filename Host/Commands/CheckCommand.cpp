#include "Commands/CheckCommand.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Documents/CheckJson.h"
#include "Documents/Json.h"
#include "Facts/Performance.h"
#include "Facts/Silence.h"
#include "Plugins/ControllerNames.h"

#include <TLX/Clock.h>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Host::Cli {
namespace {

constexpr char SERVICE[] = "OSTREL ";

/** Only those of the objects that the user named. */
std::vector<DriveCheck> namedOnly(std::vector<DriveCheck> drives, const Session& session,
                                  const ObjectStore& store)
{
    const std::string name = diskOfController(store.controllers(), session.m_Options.m_Object);
    const auto unheard = std::find_if(drives.begin(), drives.end(),
                                      [&](const DriveCheck& each) { return isUnheard(*each.m_Drive, name); });
    if (unheard != drives.end())
        return {*unheard};
    const std::vector<const PI::CObject*> named = session.namedObjects(store);
    std::erase_if(drives, [&](const DriveCheck& each) {
        return std::none_of(named.begin(), named.end(), [&](const PI::CObject* object) {
            return object->m_ID == each.m_Drive->m_AdapterId || object->m_ID == each.m_Drive->m_DriveId;
        });
    });
    if (drives.empty())
        throw Failure(ExitCode::NoSuchObject, session.m_Options.m_Object + " is no drive.");
    return drives;
}

struct Result
{
    Verdict m_Verdict;
    std::string m_Text;
};

/** The plug-ins are gone when it returns, so that none can crash after the verdict. */
Result lookAtDrives(const Session& session)
{
    Inventory inventory(session);
    // A drive that was busy for a moment may answer now.
    const std::set<std::string> missed = silentInstances(inventory.objects().answers());
    if (!missed.empty())
        inventory.askAgain(session);
    const std::uint64_t now = TLX::Misc::now();
    std::vector<DriveCheck> drives = checkDrives(Snapshot(inventory.objects(), 0, now), now, missed);
    if (!session.m_Options.m_Object.empty())
        drives = namedOnly(std::move(drives), session, inventory.objects());
    const Verdict verdict = worstOf(drives);
    if (session.m_Options.m_Json)
        return {verdict, documentText(checkJson(verdict, messageOf(drives), drives), session.simulated())};
    return {verdict,
            checkLine(drives, session.simulated() ? session.m_Setup.fleet()->file().filename().string()
                                                  : std::string())};
}

} // namespace

Verdict check(const Session& session)
{
    const Result result = lookAtDrives(session);
    session.printAsIs(result.m_Text);
    return result.m_Verdict;
}

std::string checkLine(const std::vector<DriveCheck>& drives, const std::string& fleet)
{
    std::string performance;
    for (const DriveCheck& each : drives) {
        const std::string figures = performanceText(each.m_Key, performanceOf(*each.m_Drive));
        performance += (performance.empty() || figures.empty() ? "" : " ") + figures;
    }
    return SERVICE + verdictText(worstOf(drives)) + ": " +
           (fleet.empty() ? "" : monitoringText("simulated fleet " + fleet + ": ")) +
           monitoringText(messageOf(drives)) + (performance.empty() ? "" : " | " + performance) + '\n';
}

std::string noVerdict(const std::string& message, bool asJson, bool simulated,
                      const std::optional<RequestResult>& result)
{
    if (!asJson)
        return SERVICE + verdictText(Verdict::Unknown) + ": " + monitoringText(message) + '\n';
    nlohmann::ordered_json document = checkJson(Verdict::Unknown, message, {});
    document.update(failureJson(message, result));
    return documentText(document, simulated);
}

} // namespace Host::Cli
