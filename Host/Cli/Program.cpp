#include "Cli/Program.h"

#include "Cli/CommandLine.h"
#include "Cli/DoctorCommand.h"
#include "Cli/Drives.h"
#include "Cli/Json.h"
#include "Cli/ListCommand.h"
#include "Cli/PropertyText.h"
#include "Cli/Screen.h"
#include "Cli/Session.h"
#include "Cli/ShowCommand.h"
#include "Cli/TopologyCommand.h"
#include "Core/Failure.h"
#include "Core/Platform.h"
#include "Core/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

void tell(const std::string& message)
{
    const std::string line = "ostrel: " + printableLines(message) + '\n';
    (void)std::fputs(line.c_str(), stderr);
}

/** Runs one command and prints what it gives. */
class Execution
{
public:
    Execution(const Session& session, Platform::ResultChannel& results)
        : m_Session(session), m_Results(results), m_Screen(detectScreen(results))
    {}

    ExitCode execute()
    {
        switch (m_Session.m_Options.m_Command) {
        case Command::List:
            list();
            break;
        case Command::Topology:
            topology();
            break;
        case Command::Show:
            show();
            break;
        case Command::Doctor:
            return doctor();
        }
        return ExitCode::Done;
    }

private:
    void list()
    {
        const Inventory inventory(m_Session);
        const std::vector<Drive> drives = joinDrives(inventory.objects());
        if (!wantsJson())
            return print(listText(drives, m_Screen));
        Json document = {{"drives", Json::array()}};
        for (const Drive& drive : drives)
            document["drives"].push_back(driveJson(drive));
        print(document);
    }

    void topology()
    {
        const Inventory inventory(m_Session);
        const ObjectStore& store = inventory.objects();
        if (!wantsJson())
            return print(topologyText(store, m_Screen));
        Json document = {{"objects", Json::array()}};
        for (const PI::CObject& object : store.objects())
            document["objects"].push_back(objectJson(object));
        print(document);
    }

    void show()
    {
        const Inventory inventory(m_Session);
        const ObjectStore& store = inventory.objects();
        const std::vector<const PI::CObject*> objects = store.named(m_Session.m_Options.m_Object);
        if (m_Session.m_Options.m_Property) {
            const PI::CProperty& property = namedProperty(objects, *m_Session.m_Options.m_Property);
            return wantsJson() ? print(propertyJson(property)) : print(printable(valueText(property)) + '\n');
        }
        if (!wantsJson())
            return print(showText(objects, m_Screen));
        Json document = {{"objects", Json::array()}};
        for (const PI::CObject* object : objects)
            document["objects"].push_back(objectJson(*object));
        print(document);
    }

    ExitCode doctor()
    {
        const std::vector<Check> checks = examine(m_Session);
        if (wantsJson())
            print(doctorJson(checks));
        else
            print(doctorText(checks, m_Screen));
        return exitCodeOf(checks);
    }

    bool wantsJson() const { return m_Session.m_Options.m_Json; }

    void print(const std::string& text)
    {
        std::string marked = text;
        if (m_Session.simulated())
            marked.insert(
                0, printable("Simulated fleet: " + m_Session.m_Setup.fleet()->file().filename().string()) +
                       '\n');
        m_Results.write(marked);
    }

    void print(const Json& document)
    {
        if (!m_Session.simulated())
            return m_Results.write(documentText(document));
        Json marked = {{"simulated", true}};
        marked.update(document);
        m_Results.write(documentText(marked));
    }

    const Session& m_Session;
    Platform::ResultChannel& m_Results;
    Screen m_Screen;
};

ExitCode execute(const Options& options, Platform::ResultChannel& results)
{
    // Plug-ins print to standard output. That belongs to whoever reads errors and traces, but on a terminal
    // it would only stand between the results.
    results.divertOthers(Platform::errorsGoToTerminal() && options.m_TraceMask == 0
                             ? Platform::Elsewhere::Nowhere
                             : Platform::Elsewhere::StandardError);
    const std::filesystem::path programFolder = Platform::programFolder();
    const HostFolders folders = {shareFolder(programFolder),
                                 options.m_Data.value_or(Platform::defaultDataFolder()),
                                 options.m_Data.has_value()};
    const HostSetup setup(folders, {options.m_TraceMask, options.m_TraceFile}, options.m_Fleet, tell);
    const Session session = {options, setup, folders,
                             options.m_Plugin.value_or(Platform::pluginFile(programFolder)), tell};
    return Execution(session, results).execute();
}

ExitCode report(Platform::ResultChannel& results, bool json, ExitCode exitCode, const std::string& message,
                const std::optional<RequestResult>& result = std::nullopt)
{
    tell(message);
    try {
        if (json)
            results.write(documentText(failureJson(message, result)));
    } catch (const std::exception& error) {
        tell(error.what());
    }
    return exitCode;
}

} // namespace

int run(const std::vector<std::string>& words)
{
    Platform::ResultChannel results;
    // A command line that cannot be understood may still have asked for JSON.
    const bool json = std::find(words.begin(), words.end(), "--json") != words.end();
    ExitCode exitCode = ExitCode::Done;
    try {
        exitCode = execute(parseCommandLine(words), results);
    } catch (const TextAsked& asked) {
        try {
            results.write(asked.what());
        } catch (const std::exception& error) {
            exitCode = report(results, false, ExitCode::RequestFailed, error.what());
        }
    } catch (const Failure& failure) {
        exitCode = report(results, json, failure.exitCode(), failure.what(), failure.result());
    } catch (const std::exception& error) {
        exitCode = report(results, json, ExitCode::RequestFailed, error.what());
    }
    return static_cast<int>(exitCode);
}

} // namespace Host::Cli
