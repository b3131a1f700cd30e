#include "Commands/Session.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Text.h"
#include "Documents/Json.h"
#include "Drives/DeviceAccess.h"
#include "Facts/Silence.h"
#include "Plugins/ControllerNames.h"
#include "Plugins/DataFolder.h"

#include <TLX/Clock.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <utility>

namespace Host::Cli {
namespace {

/** In milliseconds. Commands that take one look and keep what they see have ended by then. */
constexpr std::uint64_t WATCH_PATIENCE = 3000;

HostFolders foldersOf(const Options& options)
{
    return {shareFolder(Platform::programFolder()), options.m_Data.value_or(Platform::defaultDataFolder()),
            keepsRows(options), options.m_Command == Command::Watch ? WATCH_PATIENCE : 0, options.m_Reader};
}

std::vector<std::filesystem::path> pluginsOf(const Options& options)
{
    std::vector<std::filesystem::path> plugins = {installedPlugin(Platform::programFolder())};
    plugins.insert(plugins.end(), options.m_Plugins.begin(), options.m_Plugins.end());
    return plugins;
}

/** Loads the plug-ins and reports the devices that this user may not open. */
std::vector<TLXX::CControllerState> beginInventory(PluginSet& plugins, const Session& session)
{
    for (const std::filesystem::path& file : session.m_Plugins)
        plugins.load(file);
    std::vector<TLXX::CControllerState> states = TLXX::controllerStates();
    checkAccess(states, session.warn());
    return states;
}

ObjectStore takeInventory(PluginSet& plugins, const Session& session)
{
    const std::vector<TLXX::CControllerState> states = beginInventory(plugins, session);
    const Progress progress = signOfLife(states, session);
    ObjectStore inventory = askForObjects(plugins, states, session);
    if (session.keepsRows())
        keepInventory(session.keptData(), inventory, session.warn());
    return inventory;
}

/** Empty when the system cannot tell now. Events must not be lost because an address is unknown. */
std::vector<TLXX::CControllerState> controllersNow()
{
    try {
        return TLXX::controllerStates();
    } catch (const std::exception&) {
        return {};
    }
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
    if (options.m_Command == Command::Watch)
        throw m_Setup.claim()->failure();
    // "doctor" reports this in a line of its own.
    if (options.m_Command != Command::Doctor)
        terminal.tell(m_Setup.claim()->refusal() + ". This run does not change that data.");
}

Warn Session::warn() const
{
    return [&terminal = m_Terminal](const std::string& message) { terminal.tell(message); };
}

std::vector<DriveAnswer> Session::answers() const
{
    return drives()->lastRound().m_Answers;
}

std::vector<const PI::CObject*> Session::namedObjects(const ObjectStore& store) const
{
    const std::string name = diskOfController(TLXX::controllerStates(), m_Options.m_Object);
    for (const Drive& drive : joinDrives(store))
        if (isUnheard(drive, name))
            throw Failure(ExitCode::RequestFailed,
                          unheardText(drive, TLX::Misc::now()) + " " + SILENCE_REMEDY);
    return store.named(name);
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

Watched::Watched(const Session& session) : m_Rows(session.warn()), m_Drives(session.drives())
{
    const Progress progress = signOfLife(beginInventory(m_Plugins, session), session);
    for (EquippedPlugin& plugin : m_Plugins.initialize())
        m_Monitors.emplace_back(std::move(plugin), session.keptData(), session.warn());
    cleanUp();
    lookAtControllers();
    keepAdapterNumbers(session.keptData(), session.warn());
}

void Watched::start()
{
    for (Monitor& monitor : m_Monitors)
        monitor.start();
}

std::vector<PI::CEvent> Watched::collect(Monitor& monitor)
{
    std::vector<PI::CEvent> events = monitor.collect();
    cleanUp();
    lookAtControllers();
    return events;
}

void Watched::cleanUp()
{
    const auto look = [this] {
        std::vector<PI::CObject> all;
        for (const Monitor& monitor : m_Monitors) {
            const ObjectStore shown = monitor.look();
            all.insert(all.end(), shown.objects().begin(), shown.objects().end());
        }
        return ObjectStore(std::move(all));
    };
    // A plug-in that may not be asked may still have drives with rows.
    if (std::any_of(m_Monitors.begin(), m_Monitors.end(),
                    [](const Monitor& monitor) { return monitor.ending() == Ending::NotYet; }))
        return;
    try {
        m_Rows.cleanUp(look);
    } catch (const Failure&) {
        // The monitor has already reported it.
    }
}

void Watched::lookAtControllers()
{
    // Where a plug-in was stuck, the program would be, too.
    if (m_Looks && std::all_of(m_Monitors.begin(), m_Monitors.end(),
                               [](const Monitor& monitor) { return monitor.ending() == Ending::ByItself; }))
        m_Controllers = controllersNow();
}

ObjectStore Watched::objectsOf(const Monitor& monitor, std::vector<DriveAnswer> answers) const
{
    return ObjectStore(monitor.objects().objects(), m_Controllers, std::move(answers));
}

ObjectStore Watched::objects() const
{
    std::vector<PI::CObject> all;
    for (const Monitor& monitor : m_Monitors) {
        const std::vector<PI::CObject>& objects = monitor.objects().objects();
        all.insert(all.end(), objects.begin(), objects.end());
    }
    return ObjectStore(std::move(all), m_Controllers, m_Drives->lastRound().m_Answers);
}

} // namespace Host::Cli
