#include "Drives/SimulatedFleet.h"

#include "Base/Failure.h"
#include "Base/FileText.h"
#include "Base/Text.h"
#include "Drives/FileEdits.h"

#include <algorithm>
#include <utility>

namespace Host {
namespace {

// Statuses that a system and a drive would return: no such file, internal error, invalid log page.
constexpr std::uint32_t NO_SUCH_DISK = 2;
constexpr std::uint32_t INTERNAL_ERROR = 0x10006;
constexpr std::uint32_t INVALID_LOG_PAGE = 0x10109;

/** The time after which a command that hangs looks again whether the file was edited. */
constexpr std::chrono::milliseconds LOOK_INTERVAL{250};

constexpr char REMEDY[] = " Correct the file; DemoFleet.json in the program's share folder is an example.";

std::string nameOf(const std::filesystem::path& file)
{
    return "The fleet file " + printable(file.string());
}

template<typename Block>
std::uint32_t copyBlock(const std::optional<Block>& block, Block& target, std::uint32_t refusal)
{
    if (!block)
        return refusal;
    target = *block;
    return 0;
}

} // namespace

SimulatedFleet::SimulatedFleet(std::filesystem::path file, Warn warn)
    : m_File(std::move(file)), m_Warn(std::move(warn)), m_LastText(readFile(m_File))
{
    if (!m_LastText)
        throw Failure(ExitCode::WrongUsage,
                      nameOf(m_File) + (TLX::Misc::isSpecialFile(m_File)
                                            ? " is no regular file."
                                            : " cannot be read, or is larger than 64 MiB."));
    try {
        take(parseFleet(*m_LastText));
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::WrongUsage, nameOf(m_File) + " is wrong: " + error.what() + "." + REMEDY);
    }
}

void SimulatedFleet::take(std::vector<SimulatedController> controllers)
{
    std::vector<Controller> taken;
    for (SimulatedController& each : controllers) {
        const Controller* before = find(each.m_DeviceName);
        // Names have no line ends, so different pairs give different texts.
        std::string instance = each.m_Identify ? each.m_DeviceName + '\n' + each.m_Identify->sSerialNumber()
                               : before        ? before->m_Instance
                                               : each.m_DeviceName;
        taken.push_back({std::move(each), std::move(instance)});
    }
    m_Controllers = std::move(taken);
    m_Changed.notify_all();
}

void SimulatedFleet::lookAgain()
{
    std::optional<std::string> text = readFile(m_File);
    if (text == m_LastText)
        return;
    m_LastText = std::move(text);
    if (!m_LastText) {
        m_Complaint = nameOf(m_File) + " can no longer be read; the fleet stays as it was.";
        return;
    }
    try {
        take(parseFleet(*m_LastText));
        m_Complaint.clear();
    } catch (const std::runtime_error& error) {
        m_Complaint =
            nameOf(m_File) + " is wrong now, the fleet stays as it was: " + error.what() + "." + REMEDY;
    }
}

std::vector<TLXX::CDeviceEntry> SimulatedFleet::Enumerate(const TLXX::DeviceWalk& /*walk*/)
{
    const std::scoped_lock guard(m_Lock);
    lookAgain();
    // Only an enumeration warns. A command that hangs also reads the file, but at a time when a warning may
    // not be possible.
    if (!m_Complaint.empty())
        m_Warn(std::exchange(m_Complaint, {}));
    std::vector<TLXX::CDeviceEntry> entries;
    for (const SimulatedController& controller : m_Controllers)
        entries.push_back({controller.m_DeviceName, controller.m_Driver});
    return entries;
}

std::vector<TLXX::CControllerState> SimulatedFleet::ControllerStates()
{
    const std::scoped_lock guard(m_Lock);
    std::vector<TLXX::CControllerState> states;
    for (const SimulatedController& controller : m_Controllers) {
        TLXX::CControllerState state;
        state.m_Name = controller.m_DeviceName;
        state.m_DeviceName = controller.m_DeviceName;
        state.m_Driver = controller.m_Driver;
        state.m_Location = controller.m_Location;
        state.m_Transport = state.m_Location ? "pcie" : "";
        state.m_Namespaces = 1;
        state.m_AccessPath = controller.m_DeviceName;
        if (controller.m_Identify) {
            state.m_SerialNumber = controller.m_Identify->sSerialNumber();
            state.m_Model = controller.m_Identify->sModelNumber();
            state.m_FirmwareRevision = controller.m_Identify->sFirmwareRevision();
        }
        states.push_back(std::move(state));
    }
    return states;
}

const SimulatedFleet::Controller* SimulatedFleet::find(const std::string& path) const
{
    const auto found =
        std::find_if(m_Controllers.begin(), m_Controllers.end(),
                     [&](const SimulatedController& controller) { return controller.m_DeviceName == path; });
    return found == m_Controllers.end() ? nullptr : &*found;
}

/**
 * Waits until the controller at `path` is ready to answer. Null when there is none, or when it goes away
 * during the wait. The lock is released while this waits.
 */
const SimulatedFleet::Controller* SimulatedFleet::awaitTurn(std::unique_lock<std::mutex>& guard,
                                                            const std::string& path)
{
    using Clock = std::chrono::steady_clock;
    const Controller* controller = find(path);
    if (controller == nullptr || (controller->m_Delay == controller->m_Delay.zero() && !controller->m_Hangs))
        return controller;
    const std::string instance = controller->m_Instance;
    const auto isGone = [&] {
        controller = find(path);
        return controller == nullptr || controller->m_Instance != instance;
    };
    m_Changed.wait_until(guard, Clock::now() + controller->m_Delay, isGone);
    while (!isGone() && controller->m_Hangs) {
        m_Changed.wait_for(guard, LOOK_INTERVAL);
        if (Clock::now() >= m_NextLook) {
            lookAgain();
            m_NextLook = Clock::now() + LOOK_INTERVAL;
        }
    }
    return isGone() ? nullptr : controller;
}

/** `fetch` gives the status of a drive that is ready to answer. */
template<typename Fetch>
std::uint32_t SimulatedFleet::answer(const std::string& path, TLXX::EQuery query, const Fetch& fetch)
{
    std::unique_lock guard(m_Lock);
    const Controller* controller = awaitTurn(guard, path);
    if (controller == nullptr)
        return NO_SUCH_DISK;
    return controller->m_Fails.contains(query) ? INTERNAL_ERROR : fetch(*controller);
}

std::uint32_t SimulatedFleet::IdentifyController(const std::string& path,
                                                 TLXX::NVME_IDENTIFY_CONTROLLER& controller)
{
    return answer(path, TLXX::EQuery::IdentifyController, [&](const SimulatedController& drive) {
        return copyBlock(drive.m_Identify, controller, INTERNAL_ERROR);
    });
}

std::uint32_t SimulatedFleet::IdentifyNamespace(const std::string& path,
                                                TLXX::NVME_IDENTIFY_NAMESPACE& name_space)
{
    return answer(path, TLXX::EQuery::IdentifyNamespace, [&](const SimulatedController& drive) {
        return copyBlock(drive.m_Namespace, name_space, INTERNAL_ERROR);
    });
}

std::uint32_t SimulatedFleet::SmartHealthLog(const std::string& path,
                                             TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return answer(path, TLXX::EQuery::SmartHealthLog, [&](const SimulatedController& drive) {
        return copyBlock(drive.m_Health, log, INVALID_LOG_PAGE);
    });
}

std::uint32_t SimulatedFleet::VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                            TLXX::VendorLogPage& page)
{
    return answer(path, TLXX::EQuery::VendorLog, [&](const SimulatedController& drive) {
        const auto log = drive.m_VendorLogs.find(logIdentifier);
        return copyBlock(log == drive.m_VendorLogs.end() ? std::nullopt : std::optional(log->second), page,
                         INVALID_LOG_PAGE);
    });
}

std::string SimulatedFleet::Instance(const std::string& path)
{
    const std::scoped_lock guard(m_Lock);
    const Controller* controller = find(path);
    return controller != nullptr ? controller->m_Instance : path;
}

std::optional<TLXX::CPciLocation> SimulatedFleet::Location(std::uint32_t number)
{
    const std::scoped_lock guard(m_Lock);
    return number >= 1 && number <= m_Controllers.size() ? m_Controllers[number - 1].m_Location
                                                         : std::nullopt;
}

std::string SimulatedFleet::ModuleVersion(const std::string& driver)
{
    const std::scoped_lock guard(m_Lock);
    const auto found =
        std::find_if(m_Controllers.begin(), m_Controllers.end(),
                     [&](const SimulatedController& controller) { return controller.m_Driver == driver; });
    return found == m_Controllers.end() ? std::string() : found->m_DriverVersion;
}

std::unique_ptr<TLXX::IAnnouncements> SimulatedFleet::Subscribe(std::function<void()> announce)
{
    return announceEdits(m_File, std::move(announce));
}

} // namespace Host
