#include "Commands/Program.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Text.h"
#include "Commands/CommandLine.h"
#include "Commands/DoctorCommand.h"
#include "Commands/ListCommand.h"
#include "Commands/Session.h"
#include "Commands/SetCommand.h"
#include "Commands/ShowCommand.h"
#include "Commands/TopologyCommand.h"
#include "Commands/WatchCommand.h"
#include "Documents/Json.h"
#include "Facts/Drives.h"
#include "Facts/EndOfLife.h"
#include "Facts/Explanation.h"
#include "Plugins/ControllerNames.h"
#include "Terminal/Messages.h"
#include "Terminal/PropertyText.h"
#include "Terminal/Screen.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace Host::Cli {
namespace {

using Json = nlohmann::ordered_json;

// Commands that look and keep what they see are done by then, in milliseconds.
constexpr std::uint64_t WATCH_PATIENCE = 3000;

/** What a command line asks for even where it cannot be understood. */
bool asksFor(const std::vector<std::string>& words, const std::string& option)
{
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
        return word == option || word.starts_with(option + '=');
    });
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
        case Command::Set:
            set();
            break;
        case Command::Watch:
            watch(m_Session, m_Results, m_Screen);
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
        if (wantsJson())
            print(listJson(inventory.objects()));
        else
            print(listText(joinDrives(inventory.objects()), m_Screen));
    }

    void topology()
    {
        const Inventory inventory(m_Session);
        const ObjectStore& store = inventory.objects();
        if (!wantsJson())
            return print(topologyText(store, m_Screen));
        Json document = {{"objects", Json::array()}};
        for (const PI::CObject& object : store.objects())
            document["objects"].push_back(objectJson(store, object));
        print(document);
    }

    void show()
    {
        const Inventory inventory(m_Session);
        const ObjectStore& store = inventory.objects();
        const std::vector<const PI::CObject*> objects = objectsNamed(store);
        if (m_Session.m_Options.m_Property) {
            const NamedProperty named = namedProperty(objects, *m_Session.m_Options.m_Property);
            return showProperty(named.m_Property, basisOf(store, named.m_Object, named.m_Property));
        }
        if (!wantsJson())
            return print(showText(store, objects, m_Screen));
        Json document = {{"objects", Json::array()}};
        for (const PI::CObject* object : objects)
            document["objects"].push_back(objectJson(store, *object));
        document["facts"] = ownFactsJson(store, objects);
        document["explanations"] = explanationsJson(store, objects);
        document["endOfLife"] = endOfLifeJson(store, objects);
        print(document);
    }

    void showProperty(const PI::CProperty& property, Basis basis)
    {
        if (wantsJson())
            return print(Json{{"property", propertyJson(property, basis)}});
        if (basis != Basis::Measured)
            m_Session.m_Messages.tell(printable(captionText(property)) + " is not measured: " +
                                      (basis == Basis::NotRead
                                           ? "the health log of this drive was not read."
                                           : "the plug-in shows the same for other drives."));
        print(printable(valueText(property)) + '\n');
    }

    void set()
    {
        // The rows that this leaves shall be those of a host at work, which hands out names.
        Watched watched(m_Session);
        const ObjectStore store = watched.objects();
        const Options& options = m_Session.m_Options;
        const NamedProperty named = namedProperty(objectsNamed(store), options.m_Property.value_or(""));
        const PI::CProperty property =
            setProperty(watched.plugins().showing(named.m_Object.m_ID), named.m_Object, named.m_Property,
                        options.m_Value, settingsFile(m_Session.m_Folders.m_Data));
        if (wantsJson())
            print(Json{{"property", propertyJson(property)}});
        else
            print(setText(property, options.m_Value));
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

    std::vector<const PI::CObject*> objectsNamed(const ObjectStore& store) const
    {
        return store.named(diskOfController(TLXX::controllerStates(), m_Session.m_Options.m_Object));
    }

    bool wantsJson() const { return m_Session.m_Options.m_Json; }

    void print(const std::string& text)
    {
        std::string marked = text;
        if (m_Session.simulated())
            marked.insert(
                0, printable("Simulated fleet: " + m_Session.m_Setup.fleet()->file().filename().string()) +
                       '\n');
        write(marked);
    }

    void print(const Json& content) { write(documentText(content, m_Session.simulated())); }

    /** Whoever reads no further has read enough. What the command found still makes the exit code. */
    void write(const std::string& text)
    {
        try {
            m_Results.write(text);
        } catch (const Platform::ReaderGone&) {
        }
    }

    const Session& m_Session;
    Platform::ResultChannel& m_Results;
    Screen m_Screen;
};

/** A command that shows what there is works without rows, and `set` does not need them. */
void refuseOrWarn(Command command, const DataFolderClaim& claim, Messages& messages)
{
    switch (command) {
    case Command::Watch:
        throw claim.failure();
    case Command::List:
    case Command::Topology:
    case Command::Show:
        messages.tell(claim.refusal() + ". This run leaves them as they are.");
        return;
    case Command::Set:
    case Command::Doctor:
        return;
    }
}

ExitCode execute(const Options& options, Platform::ResultChannel& results, Messages& messages)
{
    // Plug-ins print to standard output. Only those who read traces want that.
    results.divertOthers(options.m_Trace.wanted() ? Platform::Elsewhere::StandardError
                                                  : Platform::Elsewhere::Nowhere);
    const std::filesystem::path programFolder = Platform::programFolder();
    const HostFolders folders = {shareFolder(programFolder),
                                 options.m_Data.value_or(Platform::defaultDataFolder()), keepsData(options),
                                 options.m_Command == Command::Watch ? WATCH_PATIENCE : 0};
    const HostSetup setup(folders, options.m_Trace, options.m_Fleet,
                          [&](const std::string& warning) { messages.tell(warning); });
    if (setup.claim() && !setup.claim()->granted())
        refuseOrWarn(options.m_Command, *setup.claim(), messages);
    std::vector<std::filesystem::path> plugins = options.m_Plugins;
    plugins.insert(plugins.begin(), installedPlugin(programFolder));
    const Session session = {options, setup, folders, plugins, messages};
    return Execution(session, results).execute();
}

/** Tells failures; those who asked for documents get one, too. */
class FailureReport
{
public:
    FailureReport(const std::vector<std::string>& words, Platform::ResultChannel& results, Messages& messages)
        : m_Words(words),
          m_Results(results),
          m_Messages(messages),
          m_Json(asksFor(words, "--json")),
          m_Simulated(asksFor(words, "--simulate"))
    {}

    ExitCode report(ExitCode exitCode, const std::string& message,
                    const std::optional<RequestResult>& result = std::nullopt) const
    {
        m_Messages.tell(message);
        try {
            if (m_Json) {
                const auto text = commandIn(m_Words) == "watch" ? lineText : documentText;
                m_Results.write(text(failureJson(message, result), m_Simulated));
            }
        } catch (const Platform::ReaderGone&) {
            // The exit code tells the failure, too.
        } catch (const std::exception& error) {
            // That the results cannot be written may be just what was told.
            if (error.what() != message)
                m_Messages.tell(error.what());
        }
        return exitCode;
    }

private:
    const std::vector<std::string>& m_Words;
    Platform::ResultChannel& m_Results;
    Messages& m_Messages;
    const bool m_Json;
    const bool m_Simulated;
};

void writeErrors(const std::string& text)
{
    (void)std::fputs(text.c_str(), stderr);
    (void)std::fflush(stderr);
}

} // namespace

int run(const std::vector<std::string>& words)
{
    Platform::ResultChannel results;
    Messages messages(Platform::errorsGoToTerminal(), writeErrors);
    const FailureReport failures(words, results, messages);
    ExitCode exitCode = ExitCode::Done;
    try {
        try {
            exitCode = execute(parseCommandLine(words), results, messages);
        } catch (const TextAsked& asked) {
            results.write(asked.what());
        }
    } catch (const Platform::ReaderGone&) {
        // Whoever closes a pipe has read enough.
    } catch (const Failure& failure) {
        exitCode = failures.report(failure.exitCode(), failure.what(), failure.result());
    } catch (const std::exception& error) {
        exitCode = failures.report(ExitCode::RequestFailed, error.what());
    }
    return static_cast<int>(exitCode);
}

} // namespace Host::Cli
