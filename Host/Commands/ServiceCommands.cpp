#include "Commands/ServiceCommands.h"

#include "Base/Instant.h"
#include "Base/Platform.h"
#include "Base/Text.h"
#include "Base/Time.h"
#include "Commands/ListCommand.h"
#include "Documents/Json.h"
#include "Terminal/EventLine.h"
#include "Web/ObjectPath.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>
#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {
namespace {

using ServiceJson = nlohmann::ordered_json;

/** Signals an event when the user asks for the end, or when the time of `--for` is over. */
class EndOfWatch
{
public:
    EndOfWatch(TLX::Threading::CEvent& asked, const std::optional<std::uint32_t>& seconds)
    {
        if (m_Ended.Init(false, true) != TLX::Threading::WaitResult::Taken ||
            m_Over.Init(false, true) != TLX::Threading::WaitResult::Taken)
            throw Failure(ExitCode::RequestFailed, "The system has no event left for the program.");
        m_Thread.emplace([this, &asked, seconds] {
            TLX::Threading::CWaiter waiter{&asked, &m_Over};
            (void)(seconds ? waiter.Wait(TLX::Threading::CWaitInterval(std::uint64_t{*seconds} *
                                                                       MILLISECONDS_A_SECOND))
                           : waiter.Wait());
            m_Ended.Set();
        });
    }
    ~EndOfWatch()
    {
        m_Over.Set();
        (void)m_Thread->Wait();
    }
    EndOfWatch(const EndOfWatch&) = delete;
    EndOfWatch& operator=(const EndOfWatch&) = delete;

    TLX::Threading::CEvent& ended() { return m_Ended; }

private:
    TLX::Threading::CEvent m_Ended;
    TLX::Threading::CEvent m_Over;
    std::optional<TLX::Threading::CThread> m_Thread;
};

DriveIdentity identityIn(const ServiceJson& drive)
{
    DriveIdentity identity;
    identity.m_Name = drive.value("name", "");
    identity.m_Device = drive.value("device", "");
    identity.m_Vendor = drive.value("vendor", "");
    identity.m_Model = drive.value("model", "");
    identity.m_Serial = drive.value("serial", "");
    identity.m_Location = drive.value("location", "");
    identity.m_PciAddress = drive.value("pciAddress", "");
    return identity;
}

template<typename Value>
void take(const ServiceJson& json, const char* key, std::optional<Value>& value)
{
    if (json.contains(key))
        value = json[key].get<Value>();
}

void printProperty(const ServiceJson& property, Terminal& terminal)
{
    if (!property.value("measured", true))
        terminal.tell(printable(property.value("caption", "The value")) + " is not measured.");
    terminal.print(printable(property.at("text").get<std::string>()) + '\n');
}

} // namespace

ExitCode watchService(const RunningService& service, const Options& options, Terminal& terminal)
{
    Platform::TerminationRequest termination;
    termination.defer();
    EndOfWatch end(termination.asked(), options.m_Seconds);
    const ServiceJson status = ServiceJson::parse(service.m_Client.get("/api/v1/status"));
    terminal.announce("A service watches these drives. Now: " +
                      printable(status.at("stateText").get<std::string>() + ", " +
                                status.at("message").get<std::string>()) +
                      ". Its journal from now on:");
    const std::string after = std::to_string(status.at("journal").value("lastNumber", std::uint64_t{0}));
    const auto take = [&](const Web::SentEvent& event) {
        const ServiceJson entry = ServiceJson::parse(event.m_Data);
        terminal.print(options.m_Json ? lineText(entry, false)
                                      : entryLine(entryOfService(entry), terminal.screen()));
    };
    const Web::FollowEnd why =
        service.m_Client.follow("/api/v1/journal/stream?after=" + after, take, end.ended());
    if (why == Web::FollowEnd::Service)
        terminal.tell("The service has ended.");
    return ExitCode::Done;
}

Journal::Entry entryOfService(const nlohmann::ordered_json& json)
{
    const auto time = [&](const char* name) { return parseInstant(json.value(name, ""), 0); };
    Journal::Entry entry;
    entry.m_Severity = static_cast<Journal::Severity>(json.at("severity").get<std::uint32_t>());
    entry.m_Key = json.value("key", "");
    if (json.contains("drive"))
        entry.m_Drive = identityIn(json["drive"]);
    entry.m_Text = json.at("text").get<std::string>();
    entry.m_Begin = time("begin");
    entry.m_End = time("time").value_or(0);
    return entry;
}

ExitCode hereOrThroughService(const Options& options, const std::function<ExitCode()>& here,
                              const std::function<ExitCode(const RunningService&)>& throughService)
{
    try {
        return here();
    } catch (const Failure& failure) {
        if (failure.exitCode() != ExitCode::NoPermission)
            throw;
        const std::optional<RunningService> service = runningService(options);
        if (!service)
            throw;
        return throughService(*service);
    }
}

ExitCode listThroughService(const RunningService& service, const Options& options, Terminal& terminal)
{
    const std::string answer = service.m_Client.get("/api/v1/drives");
    if (options.m_Json) {
        terminal.print(answer);
        return ExitCode::Done;
    }
    std::vector<Drive> drives;
    const ServiceJson document = ServiceJson::parse(answer);
    for (const ServiceJson& drive : document.at("drives"))
        drives.push_back(listedDrive(drive));
    terminal.print(listText(drives, terminal.screen()));
    return ExitCode::Done;
}

Drive listedDrive(const ServiceJson& json)
{
    Drive drive;
    static_cast<DriveIdentity&>(drive) = identityIn(json);
    drive.m_Firmware = json.value("firmware", "");
    take(json, "capacityMiB", drive.m_CapacityMiB);
    take(json, "temperature", drive.m_Temperature);
    take(json, "wear", drive.m_Wear);
    if (json.contains("health")) {
        drive.m_Health = Health{std::nullopt, json["health"].get<std::string>()};
        take(json, "healthCode", drive.m_Health->m_Code);
    }
    const ServiceJson reasons = json.value("reasons", ServiceJson::array());
    for (std::size_t i = 0; i < reasons.size(); ++i)
        drive.m_Reasons.push_back(
            {json.at("reasonCodes").at(i).get<std::uint32_t>(), reasons[i].get<std::string>()});
    if (!json.value("answering", true))
        drive.m_Answer.emplace();
    return drive;
}

ExitCode showThroughService(const RunningService& service, const Options& options, Terminal& terminal)
{
    const std::string path = options.m_Property ? Web::propertyPath({options.m_Object, *options.m_Property})
                                                : Web::objectPath(options.m_Object);
    if (options.m_Json)
        terminal.print(service.m_Client.get(path));
    else if (options.m_Property)
        printProperty(ServiceJson::parse(service.m_Client.get(path)).at("property"), terminal);
    else
        terminal.print(
            service.m_Client.get(path + "?columns=" + std::to_string(terminal.screen().m_Width.value_or(0)) +
                                 "&colours=" + (terminal.screen().m_Colour ? "1" : "0")));
    return ExitCode::Done;
}

ExitCode setThroughService(const RunningService& service, const Options& options, Terminal& terminal)
{
    const std::string path = Web::propertyPath({options.m_Object, options.m_Property.value_or("")});
    const std::string answer = service.m_Client.put(path, ServiceJson{{"value", options.m_Value}}.dump());
    ServiceJson json = ServiceJson::parse(answer);
    if (options.m_Json) {
        json.erase("text"); // The rest is the document of a set without a service, with "simulated" if it is.
        terminal.print(documentText(json, false));
    } else
        terminal.print(json.at("text").get<std::string>());
    return ExitCode::Done;
}

} // namespace Host::Cli
