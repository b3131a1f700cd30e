#include "Drives/Fleet.h"

#include "Base/JsonReader.h"
#include "Base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>
#include <set>
#include <span>
#include <stdexcept>

namespace Host {
namespace {

constexpr std::uint64_t LARGEST_BYTE = 0xFF;
constexpr std::uint64_t LARGEST_COUNTER = std::numeric_limits<std::uint64_t>::max();
constexpr std::int64_t ZERO_CELSIUS = 273;

template<std::size_t Size>
void setField(std::array<std::uint8_t, Size>& field, const std::string& text)
{
    field.fill(' ');
    std::copy(text.begin(), text.end(), field.begin());
}

/** A number with a name in fleet files, and its place in a page. */
struct NamedNumber
{
    const char* m_Name;
    std::size_t m_Offset;
    std::size_t m_Size; ///< bytes, at most 8; if the field is wider, the other bytes are zero
};

std::vector<std::string> namesOf(std::span<const NamedNumber> numbers, std::vector<std::string> others)
{
    for (const NamedNumber& number : numbers)
        others.emplace_back(number.m_Name);
    return others;
}

void putNumber(std::uint8_t* page, std::uint64_t number, std::size_t offset, std::size_t size)
{
    std::memcpy(page + offset, &number, size); // little-endian, as in the page
}

template<typename Block>
void putNumbers(const JsonReader& reader, std::span<const NamedNumber> numbers, Block& block)
{
    constexpr unsigned bitsAByte = 8;
    for (const NamedNumber& number : numbers) {
        const std::uint64_t largest = LARGEST_COUNTER >> bitsAByte * (sizeof LARGEST_COUNTER - number.m_Size);
        if (const auto value = reader.number(number.m_Name, largest))
            putNumber(reinterpret_cast<std::uint8_t*>(&block), *value, number.m_Offset, number.m_Size);
    }
}

/** The temperature in kelvin. Nothing when the file has none. */
std::optional<std::uint16_t> kelvin(const JsonReader& reader, const char* key)
{
    constexpr std::int64_t hottest = 727;
    const auto celsius = reader.signedNumber(key, 1 - ZERO_CELSIUS, hottest);
    return celsius ? std::optional(static_cast<std::uint16_t>(*celsius + ZERO_CELSIUS)) : std::nullopt;
}

/** The version as Identify Controller has it, from a text such as "1.4" or "1.2.1". */
std::uint32_t nvmeVersion(const JsonReader& reader)
{
    constexpr std::size_t longest = 16;
    const std::string text = reader.text("nvmeVersion", longest).value_or("");
    std::array<std::uint64_t, 3> parts{};
    std::size_t part = 0;
    for (std::size_t begin = 0; begin < text.size(); ++part) {
        const std::size_t end = std::min(text.find('.', begin), text.size());
        const auto number = parseNumber(text.substr(begin, end - begin), 10);
        if (part == parts.size() || !number || *number > LARGEST_BYTE || end + 1 == text.size())
            reader.fail("nvmeVersion", "has to be a version such as \"1.4\"");
        parts[part] = *number;
        begin = end + 1;
    }
    return static_cast<std::uint32_t>(parts[0] << 16U | parts[1] << 8U | parts[2]);
}

void fill(const JsonReader& reader, TLXX::NVME_IDENTIFY_CONTROLLER& block)
{
    using Block = TLXX::NVME_IDENTIFY_CONTROLLER;
    constexpr std::size_t tagOffset = 3100 - offsetof(Block, VS);
    constexpr std::size_t tagSize = 8;
    constexpr NamedNumber numbers[] = {{"namespaceLimit", offsetof(Block, NN), 4},
                                       {"totalCapacityBytes", offsetof(Block, TNVMCAP), 8},
                                       {"unallocatedCapacityBytes", offsetof(Block, UNVMCAP), 8}};
    reader.allowOnly(namesOf(numbers, {"vendorId", "model", "serial", "firmware", "tag", "nvmeVersion",
                                       "warningTemperature", "criticalTemperature"}));
    block.VID = static_cast<std::uint16_t>(reader.required("vendorId", reader.number("vendorId", 0xFFFF)));
    setField(block.MN, reader.required("model", reader.text("model", block.MN.size())));
    setField(block.SN, reader.required("serial", reader.text("serial", block.SN.size())));
    setField(block.FR, reader.text("firmware", block.FR.size()).value_or(""));
    const std::string tag = reader.text("tag", tagSize).value_or("");
    std::copy(tag.begin(), tag.end(), block.VS.begin() + tagOffset);
    block.VER = nvmeVersion(reader);
    block.WCTEMP = kelvin(reader, "warningTemperature").value_or(0);
    block.CCTEMP = kelvin(reader, "criticalTemperature").value_or(0);
    putNumbers(reader, numbers, block);
}

void fill(const JsonReader& reader, TLXX::NVME_IDENTIFY_NAMESPACE& block)
{
    constexpr std::uint64_t smallestBlock = 512;
    constexpr std::uint64_t largestBlock = 65536;
    reader.allowOnly({"blocks", "capacity", "blockSize"});
    const std::uint64_t blockSize = reader.number("blockSize", largestBlock).value_or(smallestBlock);
    if (blockSize < smallestBlock || !std::has_single_bit(blockSize))
        reader.fail("blockSize", "has to be a power of two from 512 to 65536");
    const auto blocks = reader.number("blocks", LARGEST_COUNTER);
    const auto capacity = reader.number("capacity", LARGEST_COUNTER);
    if (blocks.has_value() == capacity.has_value())
        reader.fail("", "needs either \"blocks\" or \"capacity\" (in bytes)");
    if (capacity && *capacity % blockSize != 0)
        reader.fail("capacity", "has to be a multiple of the block size, " + std::to_string(blockSize));
    block.NSZE = blocks ? *blocks : *capacity / blockSize;
    block.NCAP = block.NSZE;
    block.NUSE = block.NSZE;
    block.LBAF[0].LBADS = static_cast<std::uint8_t>(std::countr_zero(blockSize));
}

void fill(const JsonReader& reader, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& block)
{
    using Block = TLXX::NVME_SMART_HEALTH_INFORMATION_LOG;
    constexpr NamedNumber numbers[] = {
        {"criticalWarning", offsetof(Block, Warning), 1},
        {"spare", offsetof(Block, AvailableSpare), 1},
        {"threshold", offsetof(Block, AvailableSpareThreshold), 1},
        {"percentageUsed", offsetof(Block, PercentageUsed), 1},
        {"dataUnitsRead", offsetof(Block, DataUnitsRead), 8},
        {"dataUnitsWritten", offsetof(Block, DataUnitsWritten), 8},
        {"hostReadCommands", offsetof(Block, HostReadCommands), 8},
        {"hostWriteCommands", offsetof(Block, HostWriteCommands), 8},
        {"controllerBusyMinutes", offsetof(Block, ControllerBusyTime), 8},
        {"powerCycles", offsetof(Block, PowerCycles), 8},
        {"powerOnHours", offsetof(Block, Counter128), 8},
        {"unsafeShutdowns", offsetof(Block, UnsafeShutdowns), 8},
        {"mediaErrors", offsetof(Block, Counter160), 8},
        {"errorLogEntries", offsetof(Block, ErrorLogEntries), 8},
        {"warningTemperatureMinutes", offsetof(Block, WarningTemperatureTime), 4},
        {"criticalTemperatureMinutes", offsetof(Block, CriticalTemperatureTime), 4},
        {"thermalTransitions1", offsetof(Block, ThermalTransitions), 4},
        {"thermalTransitions2", offsetof(Block, ThermalTransitions) + 4, 4},
        {"thermalSeconds1", offsetof(Block, ThermalTime), 4},
        {"thermalSeconds2", offsetof(Block, ThermalTime) + 4, 4},
    };
    constexpr std::uint8_t usualSpare = 100;
    constexpr std::uint8_t usualThreshold = 10;
    std::vector<std::string> names = namesOf(numbers, {"temperature"});
    for (std::size_t i = 0; i < block.TemperatureSensor.size(); ++i) {
        names.push_back("temperatureSensor" + std::to_string(i + 1));
        block.TemperatureSensor[i] = kelvin(reader, names.back().c_str()).value_or(0);
    }
    reader.allowOnly(names);
    const std::uint16_t composite = reader.required("temperature", kelvin(reader, "temperature"));
    block.Temperature = {static_cast<std::uint8_t>(composite & LARGEST_BYTE),
                         static_cast<std::uint8_t>(composite >> 8U)};
    block.AvailableSpare = usualSpare;
    block.AvailableSpareThreshold = usualThreshold;
    putNumbers(reader, numbers, block);
}

/** The block at `key`: either values with names, or a recorded page in hexadecimal digits. */
template<typename Block>
std::optional<Block> readBlock(const JsonReader& parent, const char* key)
{
    if (!parent.has(key))
        return std::nullopt;
    Block block{};
    if (parent.isText(key)) {
        const std::vector<std::uint8_t> bytes = parent.hexadecimal(key, sizeof block);
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::uint8_t*>(&block));
    } else {
        fill(parent.object(key), block);
    }
    return block;
}

/** A vendor log with values that this program knows by name. */
struct NamedLog
{
    std::uint8_t m_Identifier;
    struct Value
    {
        const char* m_Name;
        std::size_t m_Offset;
    };
    std::vector<Value> m_Bytes;
    const char* m_Text; ///< name of the text at the beginning of the page; null: there is none
};

const std::vector<NamedLog>& namedLogs()
{
    static const std::vector<NamedLog> logs = {
        {0xC5, {{"temperature", 0}, {"offset", 104}}, nullptr},
        {0xCA, {{"attributeAD", 27}, {"attributeEA", 99}}, nullptr},
        {0xDD, {}, "name"},
    };
    return logs;
}

std::uint8_t logIdentifier(const JsonReader& logs, const std::string& key)
{
    constexpr std::uint64_t firstVendorLog = 0xC0;
    const auto identifier = parseHexadecimal(key);
    if (identifier && *identifier >= firstVendorLog && *identifier <= LARGEST_BYTE)
        return static_cast<std::uint8_t>(*identifier);
    logs.fail(key.c_str(), "is no vendor log; their names go from \"0xC0\" to \"0xFF\"");
}

TLXX::VendorLogPage readVendorLog(const JsonReader& logs, const std::string& key, std::uint8_t identifier)
{
    TLXX::VendorLogPage page{};
    if (logs.isText(key.c_str())) {
        const std::vector<std::uint8_t> bytes = logs.hexadecimal(key.c_str(), page.size());
        std::copy(bytes.begin(), bytes.end(), page.begin());
        return page;
    }
    const auto known = std::find_if(namedLogs().begin(), namedLogs().end(),
                                    [&](const NamedLog& log) { return log.m_Identifier == identifier; });
    if (known == namedLogs().end())
        logs.fail(key.c_str(), "has no values known by name; give it as hexadecimal digits");
    const JsonReader reader = logs.object(key.c_str());
    std::vector<std::string> names;
    for (const NamedLog::Value& value : known->m_Bytes) {
        names.emplace_back(value.m_Name);
        page[value.m_Offset] =
            static_cast<std::uint8_t>(reader.number(value.m_Name, LARGEST_BYTE).value_or(0));
    }
    if (known->m_Text != nullptr) {
        names.emplace_back(known->m_Text);
        const std::string text = reader.text(known->m_Text, page.size() - 1).value_or("");
        std::copy(text.begin(), text.end(), page.begin());
    }
    reader.allowOnly(names);
    return page;
}

/** Whether and how the drive answers. The answers themselves come from its blocks. */
void readBehaviour(const JsonReader& reader, SimulatedController& controller)
{
    constexpr std::uint64_t longestDelay = 3600000;
    static const std::vector<std::string> commands = {"identifyController", "identifyNamespace", "healthLog",
                                                      "vendorLog"};
    static constexpr std::array queries = {TLXX::EQuery::IdentifyController, TLXX::EQuery::IdentifyNamespace,
                                           TLXX::EQuery::SmartHealthLog, TLXX::EQuery::VendorLog};
    controller.m_Delay =
        std::chrono::milliseconds(reader.number("delayMilliseconds", longestDelay).value_or(0));
    controller.m_Hangs = reader.flag("hangs").value_or(false);
    for (const std::size_t place : reader.choices("fails", commands).value_or(std::vector<std::size_t>()))
        controller.m_Fails.insert(queries.at(place));
}

SimulatedController readController(const JsonReader& reader, std::size_t index)
{
    constexpr std::size_t longestText = 255;
    reader.allowOnly({"device", "driver", "driverVersion", "location", "identify", "namespace", "health",
                      "vendorLogs", "delayMilliseconds", "hangs", "fails"});
    SimulatedController controller;
    controller.m_DeviceName =
        reader.text("device", longestText).value_or("/dev/nvme" + std::to_string(index) + "n1");
    controller.m_Driver = reader.text("driver", longestText).value_or("nvme");
    controller.m_DriverVersion = reader.text("driverVersion", longestText).value_or("");
    if (const auto address = reader.text("location", longestText)) {
        controller.m_Location = TLXX::CPciLocation::Parse(*address);
        if (!controller.m_Location)
            reader.fail("location", "has to be a PCI address such as \"0000:3b:00.0\"");
    }
    controller.m_Identify = readBlock<TLXX::NVME_IDENTIFY_CONTROLLER>(reader, "identify");
    controller.m_Namespace = readBlock<TLXX::NVME_IDENTIFY_NAMESPACE>(reader, "namespace");
    controller.m_Health = readBlock<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG>(reader, "health");
    if (reader.has("vendorLogs")) {
        const JsonReader logs = reader.object("vendorLogs");
        for (const std::string& key : logs.keys()) {
            const std::uint8_t identifier = logIdentifier(logs, key);
            if (!controller.m_VendorLogs.emplace(identifier, readVendorLog(logs, key, identifier)).second)
                logs.fail(key.c_str(), "is there in another spelling, too");
        }
    }
    readBehaviour(reader, controller);
    return controller;
}

/**
 * Parses the document in `text`. If one name had several values, the library would silently take the last
 * one.
 */
nlohmann::json parseDocument(std::string_view text)
{
    using Event = nlohmann::json::parse_event_t;
    std::vector<std::set<std::string>> names;
    const auto look = [&](int, Event event, nlohmann::json& parsed) {
        if (event == Event::object_start)
            names.emplace_back();
        else if (event == Event::object_end)
            names.pop_back();
        else if (event == Event::key && !names.back().insert(parsed.get<std::string>()).second)
            throw std::runtime_error("\"" + printable(parsed.get<std::string>()) +
                                     "\" stands twice in one object");
        return true;
    };
    try {
        return nlohmann::json::parse(text, look);
    } catch (const nlohmann::json::exception& error) {
        // The library's messages begin with a code in brackets, which is removed.
        const std::string message = error.what();
        throw std::runtime_error(printable(message.substr(message.find(']') + 2)));
    }
}

} // namespace

std::vector<SimulatedController> parseFleet(std::string_view text)
{
    const nlohmann::json document = parseDocument(text);
    const JsonReader root(document, "");
    root.allowOnly({"controllers"});
    std::vector<SimulatedController> controllers;
    std::set<std::string> devices;
    for (const JsonReader& reader : root.list("controllers")) {
        controllers.push_back(readController(reader, controllers.size()));
        if (!devices.insert(controllers.back().m_DeviceName).second)
            reader.fail("device", "stands for two controllers");
    }
    return controllers;
}

} // namespace Host
