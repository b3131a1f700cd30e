#include "Cli/DoctorCommand.h"

#include "Core/DataFolder.h"
#include "Core/DeviceAccess.h"
#include "Core/FileText.h"
#include "Core/PluginLibrary.h"
#include "Core/Text.h"

#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>
#include <PI/LifeTimeData.h>
#include <TLX/LanguageSupport.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
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

std::unique_ptr<PluginLibrary> checkPlugin(const Session& session, Checks& checks)
{
    try {
        auto plugin = std::make_unique<PluginLibrary>(session.m_Plugin);
        checks.push_back(ok("plug-in", session.m_Plugin.string() + ", interface version " +
                                           std::to_string(plugin->version()) + ", module " +
                                           std::to_string(plugin->module())));
        return plugin;
    } catch (const Failure& failure) {
        checks.push_back(problem(failure.exitCode(), "plug-in", failure.what(), REINSTALL));
        return nullptr;
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
                       "there is no " + file.string() + "; wear and end of life are those of unrated drives",
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

Check checkRows(const HostFolders& folders)
{
    if (!folders.m_KeepsRows)
        return ok("database", "in memory for this run; --data DIR keeps one");
    try {
        checkDatabase();
        return ok("database", databaseFile(folders.m_Data).string());
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        return problem(ExitCode::RequestFailed, "database", exception.what(),
                       "See to the file and its folder, or name another folder with --data.");
    }
}

void checkRequests(PluginLibrary& plugin, const std::vector<TLXX::CControllerState>& states, Checks& checks)
{
    try {
        const std::size_t adapters = plugin.initialize().size();
        const ObjectStore store(plugin.topology());
        checks.push_back(
            ok("inventory", counted(adapters, "adapter") + ", " + counted(store.objects().size(), "object")));
        append(checks, checkInventory(states, store));
    } catch (const Failure& failure) {
        checks.push_back(problem(failure.exitCode(), "inventory", failure.what(),
                                 "See the other lines; --trace 31 shows each step."));
        if (failure.result())
            append(checks, checkRefusal(states, *failure.result()));
    }
}

} // namespace

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

Check checkSettings(const std::filesystem::path& folder)
{
    const std::filesystem::path file = folder / "Ostrel.ini";
    std::error_code error;
    if (!std::filesystem::exists(file, error) && !error)
        return ok("settings", "no " + file.string() + ", so the usual values hold");
    const std::optional<std::string> text = readFile(file);
    if (!text)
        return problem(ExitCode::RequestFailed, "settings",
                       file.string() + " cannot be read, so the usual values hold",
                       "Make it a file that this user may read, or delete it.");
    if (text->find('\0') != std::string::npos)
        return problem(ExitCode::RequestFailed, "settings",
                       file.string() + " holds zero bytes, as a write that was cut off leaves them; it is " +
                           "ignored, and the usual values hold",
                       "Write it again, or delete it.");
    return ok("settings", file.string());
}

Checks examine(const Session& session)
{
    Checks checks;
    const std::unique_ptr<PluginLibrary> plugin = checkPlugin(session, checks);
    // The catalogue is the plug-in's, and known as long as that is loaded.
    if (plugin)
        checks.push_back(checkTexts(session.m_Folders));
    checks.push_back(checkEndurance(session.m_Folders));
    checks.push_back(checkSettings(session.m_Folders.m_Data));
    checks.push_back(checkRows(session.m_Folders));

    if (!session.simulated())
        for (const Platform::UnservedFunction& function : Platform::unservedFunctions())
            checks.push_back(
                problem(ExitCode::NoHardware, function.m_Address,
                        "an NVMe controller that the NVMe driver does not serve; it has " +
                            (function.m_Driver.empty() ? "no driver" : "the driver " + function.m_Driver),
                        std::string(Platform::driverRemedy())));
    const std::vector<TLXX::CControllerState> states = TLXX::controllerStates();
    append(checks, checkControllers(states));
    const bool anyOpen = std::any_of(states.begin(), states.end(), [](const TLXX::CControllerState& state) {
        return !state.m_DeviceName.empty() && !isRefused(state);
    });
    if (plugin && anyOpen)
        checkRequests(*plugin, states, checks);
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
    std::string text;
    for (const Check& check : checks) {
        switch (check.m_Finding) {
        case Finding::Ok:
            text += toned(screen, Tone::Good, "OK") + "       ";
            break;
        case Finding::Note:
            text += toned(screen, Tone::Warning, "NOTE") + "     ";
            break;
        case Finding::Problem:
            text += toned(screen, Tone::Bad, "PROBLEM") + "  ";
            break;
        }
        text += printable(check.m_Subject + ": " + check.m_Message +
                          (check.m_Remedy.empty() ? "" : " -> " + check.m_Remedy)) +
                '\n';
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
