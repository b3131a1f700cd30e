#include "Facts/FactTable.h"

#include "Base/Time.h"
#include "Facts/PageFields.h"
#include "Facts/Silence.h"

#include <PI/PropertyId.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace Host::Cli {
namespace {

// Makes a value of the table from what a getter returned. Nothing and an empty value mean not known.

template<typename Value>
struct Plain
{
    using Type = Value;
};

template<typename Value>
struct Plain<std::optional<Value>>
{
    using Type = Value;
};

template<typename Value>
FactValue known(const std::optional<Value>& value)
{
    return value ? FactValue(*value) : FactValue();
}

template<typename List>
FactValue known(const List& list)
{
    return list.empty() ? FactValue() : FactValue(list);
}

/** A row whose value is what `Get` returns. `Get` is a member or a function of `Drive`. */
template<auto Get>
constexpr Fact fact(const char* key, const char* caption, const char* unit, FactType type, FactSource source)
{
    using Value =
        typename Plain<std::remove_cvref_t<std::invoke_result_t<decltype(Get), const Drive&>>>::Type;
    return {key,
            caption,
            unit,
            type,
            source,
            [](const Drive& drive) { return known(std::invoke(Get, drive)); },
            factKind<Value>()};
}

// Getters that need more than one member.

std::optional<bool> locationIsReal(const Drive& drive)
{
    return drive.m_Place == ShownPlace::Real ? std::nullopt : std::optional(false);
}

std::optional<bool> answering(const Drive& drive)
{
    return drive.m_Answer ? std::optional(drive.m_Answer->m_Answering) : std::nullopt;
}

std::string lastAnswer(const Drive& drive)
{
    // The other drives answered just now.
    return isSilent(drive) && drive.m_Answer->m_LastAnswer ? utcText(*drive.m_Answer->m_LastAnswer) : "";
}

std::optional<bool> healthLogIsRead(const Drive& drive)
{
    return drive.m_HealthLogRead == false ? std::optional(false) : std::nullopt;
}

std::optional<std::uint64_t> capacityBytes(const Drive& drive)
{
    constexpr unsigned shift = 20;
    const bool fits =
        drive.m_CapacityMiB && *drive.m_CapacityMiB <= std::numeric_limits<std::uint64_t>::max() >> shift;
    return fits ? std::optional(*drive.m_CapacityMiB << shift) : std::nullopt;
}

template<std::optional<Amount> Drive::*Member>
std::optional<std::uint64_t> wholeBytes(const Drive& drive)
{
    const std::optional<double> bytes = drive.*Member ? bytesOf(*(drive.*Member)) : std::nullopt;
    return bytes && *bytes >= 0 && *bytes < 0x1p64 ? std::optional(static_cast<std::uint64_t>(*bytes))
                                                   : std::nullopt;
}

std::string healthText(const Drive& drive)
{
    return drive.m_Health ? drive.m_Health->m_Text : std::string();
}

std::optional<std::uint32_t> healthCode(const Drive& drive)
{
    return drive.m_Health ? drive.m_Health->m_Code : std::nullopt;
}

std::vector<std::string> reasonTexts(const Drive& drive)
{
    std::vector<std::string> texts;
    for (const CodeText& reason : drive.m_Reasons)
        texts.push_back(reason.m_Text);
    return texts;
}

std::vector<std::uint32_t> reasonCodes(const Drive& drive)
{
    std::vector<std::uint32_t> codes;
    for (const CodeText& reason : drive.m_Reasons)
        codes.push_back(reason.m_Code);
    return codes;
}

std::string controllerState(const Drive& drive)
{
    return drive.m_System ? drive.m_System->m_State : std::string();
}

std::optional<std::uint64_t> namespaces(const Drive& drive)
{
    return drive.m_System ? std::optional<std::uint64_t>(drive.m_System->m_Namespaces) : std::nullopt;
}

template<std::optional<float> TLXX::CPciLink::*Member>
std::optional<float> linkSpeed(const Drive& drive)
{
    return drive.m_System ? drive.m_System->m_Link.*Member : std::nullopt;
}

template<std::optional<std::uint32_t> TLXX::CPciLink::*Member>
std::optional<std::uint64_t> linkNumber(const Drive& drive)
{
    return drive.m_System && drive.m_System->m_Link.*Member
               ? std::optional<std::uint64_t>(*(drive.m_System->m_Link.*Member))
               : std::nullopt;
}

using enum FactType;
using Log = TLXX::NVME_SMART_HEALTH_INFORMATION_LOG;
using Controller = TLXX::NVME_IDENTIFY_CONTROLLER;
using Link = TLXX::CPciLink;

constexpr FactSource property(std::uint32_t id)
{
    return {FactOrigin::Plugin, id};
}

constexpr FactSource healthLog(std::uint32_t byte)
{
    return {FactOrigin::HealthLog, byte};
}

constexpr FactSource identify(std::uint32_t byte)
{
    return {FactOrigin::Identify, byte};
}

constexpr FactSource SYSTEM = {FactOrigin::System};
constexpr FactSource PROGRAM = {FactOrigin::Program};

constexpr std::uint32_t SECONDS_A_MINUTE = 60;
constexpr std::uint32_t SECONDS_AN_HOUR = 3600;
constexpr std::uint32_t TRANSFERS_A_GIGATRANSFER = 1'000'000'000;

// Metrics of several facts, or of a fact whose caption does not fit them.
constexpr MetricFamily TEMPERATURE = {"ostrel_drive_temperature_celsius",
                                      "Temperature of the drive as a whole, and of each of its sensors",
                                      "sensor"};
constexpr MetricFamily TEMPERATURE_LIMIT = {"ostrel_drive_temperature_threshold_celsius",
                                            "Temperatures at which the drive itself warns", "level"};
constexpr MetricFamily OVERTEMPERATURE = {"ostrel_drive_overtemperature_seconds_total",
                                          "Time above a temperature at which the drive warns", "level"};
constexpr MetricFamily HOST_COMMANDS = {"ostrel_drive_host_commands_total", "Commands from the host",
                                        "operation"};
constexpr MetricFamily THERMAL_TIME = {"ostrel_drive_thermal_management_seconds_total",
                                       "Time in which the drive was slower to cool down", "level"};
constexpr MetricFamily THERMAL_TRANSITIONS = {"ostrel_drive_thermal_management_starts_total",
                                              "Times that the drive became slower to cool down", "level"};
constexpr MetricFamily POWER_ON = {"ostrel_drive_power_on_seconds_total", "Time with power, in whole hours"};
constexpr MetricFamily LINK_SPEED = {"ostrel_drive_pcie_link_speed",
                                     "PCIe link speed, in transfers a second on each lane"};
constexpr MetricFamily HIGHEST_LINK_SPEED = {"ostrel_drive_pcie_link_speed_max",
                                             "Highest PCIe link speed, in transfers a second on each lane"};

/** Every drive has blocks. A count of 0 means that the namespace was not read. */
bool hasCapacity(const Drive& drive)
{
    return drive.m_CapacityMiB != 0U;
}

// clang-format off
constexpr Fact FACTS[] = {
    fact<&Drive::m_Device>("device", "Device", "", Text, property(PI::PROP_DEVICE_NAME)).labelled("device"),
    fact<&Drive::m_Vendor>("vendor", "Vendor", "", Text, property(PI::PROP_VENDOR)).labelled("vendor"),
    fact<&Drive::m_Model>("model", "Model", "", Text, property(PI::PROP_MODEL)).labelled("model"),
    fact<&Drive::m_Serial>("serial", "Serial number", "", Text, property(PI::PROP_SERIAL_NUMBER)).headed("Serial").labelled("serial"),
    fact<&Drive::m_PciAddress>("pciAddress", "PCI address", "", Text, PROGRAM).labelled("pci_address"),
    fact<&Drive::m_Location>("location", "Location", "", Text, property(PI::PROP_LOCATION)),
    fact<locationIsReal>("locationIsReal", "Whether the location is the PCI address", "", State, PROGRAM),
    fact<&Drive::m_Firmware>("firmware", "Firmware", "", Text, property(PI::PROP_FIRMWARE)).labelled("firmware"),
    fact<&Drive::m_CapacityMiB>("capacityMiB", "Capacity", "MiB", Gauge, property(PI::PROP_CAPACITY)),
    fact<capacityBytes>("capacityBytes", "Capacity", "bytes", Gauge, property(PI::PROP_CAPACITY)).metric("ostrel_drive_capacity_bytes").given(hasCapacity),
    fact<&Drive::m_BlockSize>("blockSize", "Block size", "bytes", Gauge, property(PI::PROP_BLOCK_SIZE)),
    fact<&Drive::m_Temperature>("temperature", "Temperature", "°C", Gauge, property(PI::PROP_DRIVE_TEMPERATURE)).headed("Temp").metric(TEMPERATURE, "composite"),
    fact<&Drive::m_Wear>("wear", "Rated amount of writing that is used", "%", Counter, property(PI::PROP_ENDURANCE_USED)).headed("Wear"),
    fact<healthText>("health", "Health", "", State, property(PI::PROP_HEALTH_STATUS)),
    fact<healthCode>("healthCode", "Code of the health", "", State, property(PI::PROP_HEALTH_STATUS)),
    fact<reasonTexts>("reasons", "Reasons of the health", "", State, property(PI::PROP_STATUS_REASONS)),
    fact<reasonCodes>("reasonCodes", "Codes of the reasons", "", State, property(PI::PROP_STATUS_REASONS)),
    fact<healthLogIsRead>("healthLogRead", "Whether the health log was read", "", State, PROGRAM),
    fact<answering>("answering", "Whether the drive answered when it was asked last", "", State, PROGRAM).metric("ostrel_drive_up"),
    fact<lastAnswer>("lastAnswer", "Time of the last answer of a drive that does not answer, UTC", "", Text, PROGRAM),
    fact<&Drive::m_Driver>("driver", "Driver", "", Text, property(PI::PROP_DRIVER)),
    fact<&Drive::m_DriverVersion>("driverVersion", "Version of the driver", "", Text, property(PI::PROP_DRIVER_VERSION)),
    fact<&Drive::m_Spare>("spare", "Available spare", "%", Gauge, property(PI::PROP_AVAILABLE_SPARE)).metric("ostrel_drive_available_spare_ratio").percent().given(reportsSpare),
    fact<&Drive::m_SpareThreshold>("spareThreshold", "Threshold of the available spare", "%", Gauge, property(PI::PROP_SPARE_THRESHOLD)).metric("ostrel_drive_available_spare_threshold_ratio").percent().given(reportsSpare),
    fact<&Drive::m_DataRead>("dataRead", "Data read", "", Counter, property(PI::PROP_DATA_READ)),
    fact<wholeBytes<&Drive::m_DataRead>>("dataReadBytes", "Data read, as exact as dataRead: about seven digits", "bytes", Counter, property(PI::PROP_DATA_READ)),
    fact<&Drive::m_DataWritten>("dataWritten", "Data written", "", Counter, property(PI::PROP_DATA_WRITTEN)),
    fact<wholeBytes<&Drive::m_DataWritten>>("dataWrittenBytes", "Data written, as exact as dataWritten: about seven digits", "bytes", Counter, property(PI::PROP_DATA_WRITTEN)),
    fact<&Drive::m_PowerOnHours>("powerOnHours", "Power-on hours", "h", Counter, property(PI::PROP_POWER_ON_HOURS)).metric(POWER_ON).times(SECONDS_AN_HOUR),
    fact<&Drive::m_MediaErrors>("mediaErrors", "Media and data integrity errors", "", Counter, property(PI::PROP_MEDIA_ERRORS)).metric("ostrel_drive_media_errors_total"),

    fact<logPercentage<&Log::PercentageUsed>>("percentageUsed", "Life used, by the drive's own count", "%", Counter, healthLog(5)).metric("ostrel_drive_endurance_used_ratio").percent(),
    fact<logCounter<&Log::PowerCycles>>("powerCycles", "Power cycles", "", Counter, healthLog(112)).metric("ostrel_drive_power_cycles_total"),
    fact<logCounter<&Log::UnsafeShutdowns>>("unsafeShutdowns", "Unsafe shutdowns", "", Counter, healthLog(144)).metric("ostrel_drive_unsafe_shutdowns_total"),
    fact<logCounter<&Log::ErrorLogEntries>>("errorLogEntries", "Entries in the error log", "", Counter, healthLog(176)).metric("ostrel_drive_error_log_entries_total"),
    fact<logCounter<&Log::HostReadCommands>>("hostReadCommands", "Host read commands", "", Counter, healthLog(64)).metric(HOST_COMMANDS, "read"),
    fact<logCounter<&Log::HostWriteCommands>>("hostWriteCommands", "Host write commands", "", Counter, healthLog(80)).metric(HOST_COMMANDS, "write"),
    fact<logCounter<&Log::ControllerBusyTime>>("controllerBusyMinutes", "Controller busy time", "min", Counter, healthLog(96)).metric("ostrel_drive_busy_seconds_total").times(SECONDS_A_MINUTE),
    fact<logCounter<&Log::WarningTemperatureTime>>("warningTemperatureMinutes", "Time above the warning temperature", "min", Counter, healthLog(192)).metric(OVERTEMPERATURE, "warning").times(SECONDS_A_MINUTE),
    fact<logCounter<&Log::CriticalTemperatureTime>>("criticalTemperatureMinutes", "Time above the critical temperature", "min", Counter, healthLog(196)).metric(OVERTEMPERATURE, "critical").times(SECONDS_A_MINUTE),
    fact<sensor<0>>("temperatureSensor1", "Temperature sensor 1", "°C", Gauge, healthLog(200)).metric(TEMPERATURE, "1"),
    fact<sensor<1>>("temperatureSensor2", "Temperature sensor 2", "°C", Gauge, healthLog(202)).metric(TEMPERATURE, "2"),
    fact<sensor<2>>("temperatureSensor3", "Temperature sensor 3", "°C", Gauge, healthLog(204)).metric(TEMPERATURE, "3"),
    fact<sensor<3>>("temperatureSensor4", "Temperature sensor 4", "°C", Gauge, healthLog(206)).metric(TEMPERATURE, "4"),
    fact<sensor<4>>("temperatureSensor5", "Temperature sensor 5", "°C", Gauge, healthLog(208)).metric(TEMPERATURE, "5"),
    fact<sensor<5>>("temperatureSensor6", "Temperature sensor 6", "°C", Gauge, healthLog(210)).metric(TEMPERATURE, "6"),
    fact<sensor<6>>("temperatureSensor7", "Temperature sensor 7", "°C", Gauge, healthLog(212)).metric(TEMPERATURE, "7"),
    fact<sensor<7>>("temperatureSensor8", "Temperature sensor 8", "°C", Gauge, healthLog(214)).metric(TEMPERATURE, "8"),
    fact<logElement<&Log::ThermalTransitions, 0>>("thermalTransitions1", "Times that light thermal management began", "", Counter, healthLog(216)).metric(THERMAL_TRANSITIONS, "light"),
    fact<logElement<&Log::ThermalTransitions, 1>>("thermalTransitions2", "Times that heavy thermal management began", "", Counter, healthLog(220)).metric(THERMAL_TRANSITIONS, "heavy"),
    fact<logElement<&Log::ThermalTime, 0>>("thermalSeconds1", "Time under light thermal management", "s", Counter, healthLog(224)).metric(THERMAL_TIME, "light"),
    fact<logElement<&Log::ThermalTime, 1>>("thermalSeconds2", "Time under heavy thermal management", "s", Counter, healthLog(228)).metric(THERMAL_TIME, "heavy"),

    fact<limit<&Controller::WCTEMP>>("warningTemperature", "Warning temperature", "°C", Gauge, identify(266)).metric(TEMPERATURE_LIMIT, "warning"),
    fact<limit<&Controller::CCTEMP>>("criticalTemperature", "Critical temperature", "°C", Gauge, identify(268)).metric(TEMPERATURE_LIMIT, "critical"),
    fact<nvmeVersion>("nvmeVersion", "NVMe version", "", Text, identify(80)),
    fact<namespaceLimit>("namespaceLimit", "Highest identifier that a namespace may have", "", Gauge, identify(516)),
    fact<totalCapacity>("totalCapacityBytes", "Total capacity", "bytes", Gauge, identify(280)),
    fact<unallocatedCapacity>("unallocatedCapacityBytes", "Unallocated capacity", "bytes", Gauge, identify(296)),

    fact<controllerState>("controllerState", "Controller state", "", State, SYSTEM),
    fact<namespaces>("namespaces", "Namespaces", "", Gauge, SYSTEM),
    fact<linkSpeed<&Link::m_Speed>>("linkSpeed", "PCIe link speed", "GT/s", Gauge, SYSTEM).metric(LINK_SPEED).times(TRANSFERS_A_GIGATRANSFER),
    fact<linkSpeed<&Link::m_HighestSpeed>>("linkSpeedMaximum", "Highest PCIe link speed", "GT/s", Gauge, SYSTEM).metric(HIGHEST_LINK_SPEED).times(TRANSFERS_A_GIGATRANSFER),
    fact<linkNumber<&Link::m_Lanes>>("linkLanes", "PCIe lanes", "", Gauge, SYSTEM).metric("ostrel_drive_pcie_link_width"),
    fact<linkNumber<&Link::m_MostLanes>>("linkLanesMaximum", "Most PCIe lanes", "", Gauge, SYSTEM).metric("ostrel_drive_pcie_link_width_max"),
    fact<linkNumber<&Link::m_NumaNode>>("numaNode", "NUMA node", "", State, SYSTEM),
};
// clang-format on

} // namespace

std::span<const Fact> facts()
{
    return FACTS;
}

const Fact& factOf(std::string_view key)
{
    const auto* const found = std::find_if(std::begin(FACTS), std::end(FACTS),
                                           [key](const Fact& fact) { return fact.m_Key == key; });
    if (found == std::end(FACTS))
        throw std::logic_error("There is no fact " + std::string(key) + ".");
    return *found;
}

} // namespace Host::Cli
