#include "Drives/SimulatedFleet.h"

#include "Base/Failure.h"
#include "Base/FileText.h"
#include "Base/Text.h"
#include "Drives/FileEdits.h"

#include <algorithm>
#include <utility>

namespace Host {
namespace {

// Statuses as a system and a drive would give them: no such file; internal error; invalid log page.
constexpr std::uint32_t NO_SUCH_DISK = 2;
constexpr std::uint32_t INTERNAL_ERROR = 0x10006;
constexpr std::uint32_t INVALID_LOG_PAGE = 0x10109;

constexpr char REMEDY[] = " Correct the file; DemoFleet.json in the program's share folder is an example.";

std::string nameOf(const std::filesystem::path& file)
{
    return "The fleet file " + printable(file.string());
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
        m_Controllers = parseFleet(*m_LastText);
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::WrongUsage, nameOf(m_File) + " is wrong: " + error.what() + "." + REMEDY);
    }
}

void SimulatedFleet::lookAgain()
{
    std::optional<std::string> text = readFile(m_File);
    if (text == m_LastText)
        return;
    m_LastText = std::move(text);
    if (!m_LastText) {
        m_Warn(nameOf(m_File) + " can no longer be read; the fleet stays as it was.");
        return;
    }
    try {
        m_Controllers = parseFleet(*m_LastText);
    } catch (const std::runtime_error& error) {
        m_Warn(nameOf(m_File) + " is wrong now, the fleet stays as it was: " + error.what() + "." + REMEDY);
    }
}

std::vector<TLXX::CDeviceEntry> SimulatedFleet::Enumerate(const TLXX::DeviceWalk& /*walk*/)
{
    const std::scoped_lock guard(m_Lock);
    lookAgain();
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

const SimulatedController* SimulatedFleet::find(const std::string& path) const
{
    const auto found =
        std::find_if(m_Controllers.begin(), m_Controllers.end(),
                     [&](const SimulatedController& controller) { return controller.m_DeviceName == path; });
    return found == m_Controllers.end() ? nullptr : &*found;
}

template<typename Block>
std::uint32_t SimulatedFleet::answer(const std::string& path,
                                     std::optional<Block> SimulatedController::*source, Block& target,
                                     std::uint32_t refusal) const
{
    const std::scoped_lock guard(m_Lock);
    const SimulatedController* controller = find(path);
    if (controller == nullptr)
        return NO_SUCH_DISK;
    const std::optional<Block>& block = controller->*source;
    if (!block)
        return refusal;
    target = *block;
    return 0;
}

std::uint32_t SimulatedFleet::IdentifyController(const std::string& path,
                                                 TLXX::NVME_IDENTIFY_CONTROLLER& controller)
{
    return answer(path, &SimulatedController::m_Identify, controller, INTERNAL_ERROR);
}

std::uint32_t SimulatedFleet::IdentifyNamespace(const std::string& path,
                                                TLXX::NVME_IDENTIFY_NAMESPACE& name_space)
{
    return answer(path, &SimulatedController::m_Namespace, name_space, INTERNAL_ERROR);
}

std::uint32_t SimulatedFleet::SmartHealthLog(const std::string& path,
                                             TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return answer(path, &SimulatedController::m_Health, log, INVALID_LOG_PAGE);
}

std::uint32_t SimulatedFleet::VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                            TLXX::VendorLogPage& page)
{
    const std::scoped_lock guard(m_Lock);
    const SimulatedController* controller = find(path);
    if (controller == nullptr)
        return NO_SUCH_DISK;
    const auto log = controller->m_VendorLogs.find(logIdentifier);
    if (log == controller->m_VendorLogs.end())
        return INVALID_LOG_PAGE;
    page = log->second;
    return 0;
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
