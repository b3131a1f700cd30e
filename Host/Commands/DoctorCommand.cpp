#include "Commands/DoctorCommand.h"

#include "Base/Text.h"
#include "Drives/DeviceAccess.h"
#include "Plugins/PluginSet.h"
#include "Terminal/Paragraph.h"

#include <PI/LifeTimeData.h>
#include <TLX/LanguageSupport.h>
#include <TLXX/DeviceNotification.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <utility>

namespace Host::Cli {
namespace {

using Checks = std::vector<Check>;

constexpr char REINSTALL[] = "Install Ostrel again.";

void append(Checks& checks, const Checks& more)
{
    checks.insert(checks.end(), more.begin(), more.end());
}

Check checkPlugin(PluginSet& plugins, const std::filesystem::path& file)
{
    try {
        const PluginLibrary& plugin = plugins.load(file);
        return ok("plug-in", file.string() + ", interface version " + std::to_string(plugin.version()) +
                                 ", module " + std::to_string(plugin.module()));
    } catch (const Failure& failure) {
        return problem(failure.exitCode(), "plug-in", failure.what(),
                       failure.exitCode() == ExitCode::WrongUsage ? "Name each plug-in once." : REINSTALL);
    }
}

Check checkTexts(const HostFolders& folders)
{
    if (TLX::Language_Support::CLanguageSupport::Find(PI::TYPE_ADAPTER))
        return ok("texts", "catalogue in " + folders.m_Share.string());
    return problem(ExitCode::RequestFailed, "texts",
                   "no catalogue in " + folders.m_Share.string() + "; codes are shown as numbers", REINSTALL);
}

Check checkEndurance(const HostFolders& folders)
{
    const std::filesystem::path file = folders.m_Share / "Endurance.txt";
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return problem(ExitCode::RequestFailed, "endurance",
                       "there is no " + file.string() + "; wear and end of life are computed without ratings",
                       REINSTALL);
    try {
        return ok("endurance", std::to_string(PI::readLifeTimeData(file).size()) +
                                   " rated drive families in " + file.string());
    } catch (const std::runtime_error& wrong) {
        return problem(ExitCode::RequestFailed, "endurance", wrong.what(), "Correct the line.");
    }
}

std::string counted(std::size_t number, const std::string& things)
{
    return std::to_string(number) + " " + things + (number == 1 ? "" : "s");
}

void checkRequests(PluginSet& plugins, const std::vector<TLXX::CControllerState>& states,
                   const Session& session, Checks& checks)
{
    try {
        const Progress progress = signOfLife(states, session);
        const ObjectStore store = askForObjects(plugins, states, session);
        const auto adapters =
            std::count_if(store.objects().begin(), store.objects().end(),
                          [](const PI::CObject& object) { return object.m_Type == PI::TYPE_ADAPTER; });
        checks.push_back(ok("inventory", counted(static_cast<std::size_t>(adapters), "adapter") + ", " +
                                             counted(store.objects().size(), "object")));
        append(checks, checkVersions(store));
        append(checks, checkInventory(store));
    } catch (const Failure& failure) {
        checks.push_back(problem(failure.exitCode(), "inventory", failure.what(),
                                 "See the other lines; --trace 31 shows each step."));
        if (failure.result())
            append(checks, checkRefusal(states, *failure.result()));
    }
}

std::pair<std::string, Tone> wordOf(Finding finding)
{
    switch (finding) {
    case Finding::Ok:
        return {"OK", Tone::Good};
    case Finding::Note:
        return {"NOTE", Tone::Warning};
    case Finding::Problem:
        return {"PROBLEM", Tone::Bad};
    }
    return {};
}

} // namespace

ExitCode doctor(const Session& session)
{
    const std::vector<Check> checks = examine(session);
    if (session.m_Options.m_Json)
        session.print(doctorJson(checks));
    else
        session.print(doctorText(checks, session.m_Terminal.screen()));
    return exitCodeOf(checks);
}

Check ok(std::string subject, std::string message)
{
    return {Finding::Ok, std::move(subject), std::move(message), {}, ExitCode::Done};
}

Check note(std::string subject, std::string message)
{
    return {Finding::Note, std::move(subject), std::move(message), {}, ExitCode::Done};
}

Check problem(ExitCode exitCode, std::string subject, std::string message, std::string remedy)
{
    return {Finding::Problem, std::move(subject), std::move(message), std::move(remedy), exitCode};
}

Checks examine(const Session& session)
{
    Checks checks;
    PluginSet plugins;
    for (const std::filesystem::path& file : session.m_Plugins)
        checks.push_back(checkPlugin(plugins, file));
    // The catalogue belongs to the plug-in and is only available while the plug-in is loaded.
    if (!plugins.empty())
        checks.push_back(checkTexts(session.m_Folders));
    checks.push_back(checkEndurance(session.m_Folders));
    checks.push_back(checkSettings(session.m_Folders.m_Data));
    checks.push_back(checkRows(session));
    checks.push_back(checkService(session.m_Options));

    const std::vector<TLXX::CControllerState> states = TLXX::controllerStates();
    Checks unserved;
    if (!session.simulated()) {
        append(checks, checkSystem(Platform::runningSystem(), Platform::isDriverThere(), states));
        checks.push_back(checkAnnouncements(TLXX::CDeviceNotification::Available()));
        unserved = checkUnserved(Platform::unservedFunctions());
    }
    append(checks, unserved);
    append(checks, checkControllers(states));
    append(checks, checkAnyDisk(states, !unserved.empty(), session.m_Setup.fleet().get()));
    // Other plug-ins may look for other kinds of devices.
    if (!plugins.empty() && (anyDiskOpens(states) || session.m_Plugins.size() > 1))
        checkRequests(plugins, states, session, checks);
    return checks;
}

ExitCode exitCodeOf(const Checks& checks)
{
    const auto first = std::find_if(checks.begin(), checks.end(),
                                    [](const Check& check) { return check.m_Finding == Finding::Problem; });
    return first == checks.end() ? ExitCode::Done : first->m_ExitCode;
}

std::string doctorText(const Checks& checks, const Screen& screen)
{
    constexpr std::size_t column = 9; // the longest word and a gap
    std::string text;
    for (const Check& check : checks) {
        const auto [word, tone] = wordOf(check.m_Finding);
        const std::string what = check.m_Subject + ": " + check.m_Message +
                                 (check.m_Remedy.empty() ? "" : " -> " + check.m_Remedy);
        text += toned(screen, tone, word) + std::string(column - word.size(), ' ') +
                paragraph(printable(what), column, screen);
    }
    return text;
}

nlohmann::ordered_json doctorJson(const Checks& checks)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Check& check : checks) {
        nlohmann::ordered_json entry = {{"subject", check.m_Subject}};
        switch (check.m_Finding) {
        case Finding::Ok:
            entry["result"] = "ok";
            break;
        case Finding::Note:
            entry["result"] = "note";
            break;
        case Finding::Problem:
            entry["result"] = "problem";
            break;
        }
        entry["message"] = check.m_Message;
        if (!check.m_Remedy.empty())
            entry["remedy"] = check.m_Remedy;
        list.push_back(std::move(entry));
    }
    return {{"checks", std::move(list)}};
}

} // namespace Host::Cli
