#include "InterfaceTables.h"
#include "Journal/Entry.h"
#include "Service/Settings.h"
#include "Tables.h"
#include "Web/OpenApi.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cctype>

namespace DocsTest {
namespace {

using Host::Journal::Kind;

struct Meaning
{
    Kind m_Kind;
    const char* m_Text;
};

// Each kind must have its meaning, in the order of the enumerators.
constexpr std::array MEANINGS = {
    Meaning{Kind::DriveAdded, "a drive is there that was not there before"},
    Meaning{Kind::DriveRemoved, "a drive is no longer there"},
    Meaning{Kind::DoesNotAnswer, "a drive is there and does not answer"},
    Meaning{Kind::SpareLow, "the available spare is below the drive's threshold"},
    Meaning{Kind::OverTemperature, "the temperature is outside the drive's limits"},
    Meaning{Kind::OverCriticalTemperature, "the temperature has reached the drive's critical limit"},
    Meaning{Kind::ReliabilityDegraded, "the drive says that it is less reliable"},
    Meaning{Kind::ReadOnly, "the drive takes no data any more"},
    Meaning{Kind::MemoryBackupFailed, "the backup of the drive's volatile memory has failed"},
    Meaning{Kind::TemperatureMargin,
            "the temperature is close to the critical level, has reached it or is above"},
    Meaning{Kind::BelowNew, "blocks wear out or fail"},
    Meaning{Kind::SpareFell, "the available spare is down to 75, 50, 25 or 10 %"},
    Meaning{Kind::WearGrew, "50, 80, 90 or 100 % of the rated life is used"},
    Meaning{Kind::OwnWearGrew, "the same, by the drive's own count"},
    Meaning{Kind::MediaErrorsGrew, "the drive counted further media errors"},
    Meaning{Kind::ErrorLogGrew, "the drive's error log has further entries, which alone is no trouble"},
    Meaning{Kind::FirmwareChanged, "the drive has another firmware"},
    Meaning{Kind::CapacityChanged, "the drive has another capacity"},
    Meaning{Kind::BlockSizeChanged, "the drive has another block size"},
    Meaning{Kind::Moved, "the drive is in another slot"},
    Meaning{Kind::PowerLost, "the drive lost its power"},
    Meaning{Kind::CounterWentBack, "a figure that can only grow became smaller"},
    Meaning{Kind::WorkedElsewhere, "the drive worked in another machine while it was gone"},
    Meaning{Kind::ClockStepped, "the clock of this machine was set"},
    Meaning{Kind::MachineRestarted, "this machine was restarted"},
    Meaning{Kind::ServiceStarted, "the service began to watch"},
    Meaning{Kind::ServiceEnded, "the service ended"},
};

constexpr bool isComplete()
{
    for (std::size_t i = 0; i < MEANINGS.size(); ++i)
        if (MEANINGS[i].m_Kind != static_cast<Kind>(i))
            return false;
    return MEANINGS.size() == static_cast<std::size_t>(Kind::ServiceEnded) + 1;
}
static_assert(isComplete());

std::string kindTable()
{
    std::vector<Row> rows;
    for (const Meaning& meaning : MEANINGS)
        rows.push_back({"`" + std::string(kindName(meaning.m_Kind)) + "`", meaning.m_Text});
    return table({"Kind", "What it tells"}, rows);
}

std::string settingTable()
{
    std::vector<Row> rows;
    for (const Host::Service::SettingRow& row : Host::Service::settingRows())
        rows.push_back({"`" + std::string(row.m_Key) + "`", std::string(row.m_Value),
                        std::string(row.m_Default), std::string(row.m_Description)});
    return table({"Setting", "Value", "Default", "What it is"}, rows);
}

std::string inCapitals(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

std::string endpointTable()
{
    std::vector<Row> rows;
    const auto description = nlohmann::ordered_json::parse(Host::Web::openApi());
    for (const auto& [path, operations] : description.at("paths").items())
        for (const auto& [method, operation] : operations.items())
            rows.push_back(
                {"`" + inCapitals(method) + " " + path + "`", operation.at("summary").get<std::string>()});
    return table({"Request", "Answer"}, rows);
}

} // namespace

std::map<std::string, std::string> serviceTables()
{
    return {{"endpoints", endpointTable()}, {"journal", kindTable()}, {"settings", settingTable()}};
}

} // namespace DocsTest
