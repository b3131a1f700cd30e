#include "Commands/Session.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Text.h"
#include "Documents/Json.h"
#include "Drives/DeviceAccess.h"
#include "Facts/NamedObjects.h"
#include "Facts/Silence.h"
#include "Plugins/DataFolder.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace Host::Cli {
namespace {

/** In milliseconds. Commands that take one look and keep what they see have ended by then. */
constexpr std::uint64_t WATCH_PATIENCE = 3000;

/** Whether the command goes on for as long as the user wants. */
bool watches(const Options& options)
{
    return options.m_Command == Command::Watch || options.m_Command == Command::Serve;
}

HostFolders foldersOf(const Options& options)
{
    return {shareFolder(Platform::programFolder()), options.m_Data.value_or(Platform::defaultDataFolder()),
            keepsRows(options), watches(options) ? WATCH_PATIENCE : 0, options.m_Reader};
}

std::vector<std::filesystem::path> pluginsOf(const Options& options)
{
    std::vector<std::filesystem::path> plugins = {installedPlugin(Platform::programFolder())};
    plugins.insert(plugins.end(), options.m_Plugins.begin(), options.m_Plugins.end());
    return plugins;
}

ObjectStore takeInventory(PluginSet& plugins, const Session& session)
{
    const std::vector<TLXX::CControllerState> states =
        beginInventory(plugins, session.m_Plugins, session.warn());
    const Progress progress = signOfLife(states, session);
    ObjectStore inventory = askForObjects(plugins, states, session);
    if (session.keepsRows())
        keepInventory(session.keptData(), inventory, session.warn());
    return inventory;
}

} // namespace

Session::Session(const Options& options, Terminal& terminal)
    : m_Options(options),
      m_Terminal(terminal),
      m_Folders(foldersOf(options)),
      m_Plugins(pluginsOf(options)),
      m_Setup(m_Folders, options.m_Trace, options.m_Fleet, warn())
{
    if (!m_Setup.claim() || keepsRows())
        return;
    if (watches(options))
        throw m_Setup.claim()->failure();
    // "doctor" reports this in a line of its own.
    if (options.m_Command != Command::Doctor)
        terminal.tell(m_Setup.claim()->refusal() + ". This run does not change that data.");
}

Warn Session::warn() const
{
    return [&terminal = m_Terminal](const std::string& message) { terminal.tell(message); };
}

WatchPlan Session::watchPlan() const
{
    return {m_Plugins, keptData(), drives(), warn()};
}

std::vector<DriveAnswer> Session::answers() const
{
    return drives()->lastRound().m_Answers;
}

std::vector<const PI::CObject*> Session::namedObjects(const ObjectStore& store) const
{
    return Cli::namedObjects(store, m_Options.m_Object);
}

void Session::print(const std::string& text) const
{
    const std::string mark =
        simulated() ? printable("Simulated fleet: " + m_Setup.fleet()->file().filename().string()) + '\n'
                    : "";
    printAsIs(mark + text);
}

void Session::print(const nlohmann::ordered_json& document) const
{
    printAsIs(documentText(document, simulated()));
}

void Session::printAsIs(const std::string& text) const
{
    try {
        m_Terminal.print(text);
    } catch (const Platform::ReaderGone&) {
        return;
    }
}

Progress signOfLife(const std::vector<TLXX::CControllerState>& states, const Session& session)
{
    // Trace lines show progress themselves, and a progress line must not break them.
    const TraceOptions& trace = session.m_Options.m_Trace;
    const bool traced = trace.wanted() && !trace.m_File;
    const std::size_t drives = countDisks(states);
    return Progress("Asking " + std::to_string(drives) + (drives == 1 ? " drive" : " drives"),
                    traced ? nullptr : &session.m_Terminal);
}

ObjectStore askForObjects(PluginSet& plugins, const std::vector<TLXX::CControllerState>& states,
                          const Session& session)
{
    std::vector<PI::CObject> objects;
    try {
        objects = plugins.inventory();
    } catch (const Failure& failure) {
        // The plug-in knows no drive that has never answered.
        if (failure.exitCode() != ExitCode::NoHardware || silentInstances(session.answers()).empty())
            throw;
    }
    return ObjectStore(std::move(objects), states, session.answers());
}

void Inventory::askAgain(const Session& session)
{
    m_Plugins.deInitialize();
    m_Objects = askForObjects(m_Plugins, TLXX::controllerStates(), session);
}

Inventory::Inventory(const Session& session) : m_Objects(takeInventory(m_Plugins, session)) {}

} // namespace Host::Cli
