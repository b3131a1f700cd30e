#include "Journal/StateText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace Host::Journal {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<std::pair<const char*, std::string Cli::DriveIdentity::*>, 7> IDENTITY = {{
    {"name", &Cli::DriveIdentity::m_Name},
    {"device", &Cli::DriveIdentity::m_Device},
    {"vendor", &Cli::DriveIdentity::m_Vendor},
    {"model", &Cli::DriveIdentity::m_Model},
    {"serial", &Cli::DriveIdentity::m_Serial},
    {"location", &Cli::DriveIdentity::m_Location},
    {"pciAddress", &Cli::DriveIdentity::m_PciAddress},
}};

std::string textOf(const Json& json)
{
    // Texts of a drive are printable. This only keeps an unexpected byte from losing the whole state.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json identity(const Cli::DriveIdentity& drive)
{
    Json json = Json::object();
    for (const auto& [name, member] : IDENTITY)
        if (!(drive.*member).empty())
            json[name] = drive.*member;
    if (drive.m_Place != Cli::ShownPlace::Real)
        json["place"] = static_cast<int>(drive.m_Place);
    return json;
}

Cli::DriveIdentity identityOf(const Json& json)
{
    Cli::DriveIdentity drive;
    for (const auto& [name, member] : IDENTITY)
        drive.*member = json.value(name, std::string());
    drive.m_Place = static_cast<Cli::ShownPlace>(json.value("place", 0));
    return drive;
}

/** A value, and the time when it was known unless that is `look`. */
Json timed(Json value, std::uint64_t time, std::uint64_t look)
{
    Json json = Json::array({std::move(value)});
    if (time != look)
        json.push_back(time);
    return json;
}

std::uint64_t timeOf(const Json& json, std::uint64_t look)
{
    return json.size() > 1 ? json.at(1).get<std::uint64_t>() : look;
}

Json figures(const Figures& figures, std::uint64_t look)
{
    Json json = Json::object();
    for (const auto& [counter, figure] : figures)
        json[rowOf(counter).m_Word] = timed(figure.m_Value, figure.m_Time, look);
    return json;
}

Figures figuresOf(const Json& json, std::uint64_t look)
{
    Figures figures;
    for (const CounterRow& row : counterRows())
        if (const auto found = json.find(row.m_Word); found != json.end())
            figures[row.m_Counter] = {found->at(0).get<std::uint64_t>(), timeOf(*found, look)};
    return figures;
}

Kind kindOf(const std::string& word)
{
    const std::optional<Kind> kind = kindByName(word);
    if (!kind)
        throw std::runtime_error("unknown kind " + word);
    return *kind;
}

Remembered rememberedOf(const Json& json, std::uint64_t look)
{
    const Json& value = json.at(0);
    Remembered remembered{false, timeOf(json, look)};
    if (value.is_boolean())
        remembered.m_Value = value.get<bool>();
    else if (value.is_string())
        remembered.m_Value = value.get<std::string>();
    else
        remembered.m_Value = value.get<std::uint64_t>();
    return remembered;
}

Json moment(const Moment& moment)
{
    Json json = {{"time", moment.m_Time}, {"boot", moment.m_Boot}};
    if (moment.m_Uptime)
        json["uptime"] = *moment.m_Uptime;
    return json;
}

Moment momentOf(const Json& json)
{
    Moment moment{json.at("time").get<std::uint64_t>(), std::nullopt, json.at("boot").get<std::string>()};
    if (json.contains("uptime"))
        moment.m_Uptime = json.at("uptime").get<std::uint64_t>();
    return moment;
}

} // namespace

std::string lookText(const State& state)
{
    Json json = {{"runs", state.m_Runs}, {"bootTime", state.m_BootTime}};
    if (state.m_Time)
        json["time"] = *state.m_Time;
    if (state.m_Moment)
        json["moment"] = moment(*state.m_Moment);
    return textOf(json);
}

State parseLook(std::string_view text)
{
    const Json json = Json::parse(text);
    State state;
    state.m_Runs = json.at("runs").get<bool>();
    state.m_BootTime = json.at("bootTime").get<std::uint64_t>();
    if (json.contains("time"))
        state.m_Time = json.at("time").get<std::uint64_t>();
    if (json.contains("moment"))
        state.m_Moment = momentOf(json.at("moment"));
    return state;
}

std::string driveText(const DriveState& drive, std::uint64_t look)
{
    Json known = Json::object();
    for (const auto& [kind, remembered] : drive.m_Known)
        known[std::string(kindName(kind))] =
            timed(std::visit([](const auto& value) { return Json(value); }, remembered.m_Value),
                  remembered.m_Time, look);
    Json told = Json::object();
    for (const auto& [kind, time] : drive.m_Told)
        told[std::string(kindName(kind))] = time;
    return textOf({{"key", drive.m_Key},
                   {"drive", identity(drive.m_Drive)},
                   {"known", std::move(known)},
                   {"counters", figures(drive.m_Counters, look)},
                   {"told", std::move(told)},
                   {"since", drive.m_Since}});
}

bool haveSameText(const DriveState& one, std::uint64_t oneLook, const DriveState& other,
                  std::uint64_t otherLook)
{
    const auto isSame = [&](const auto& a, const auto& b) {
        const bool isOfLook = a.second.m_Time == oneLook;
        return a.first == b.first && a.second.m_Value == b.second.m_Value &&
               isOfLook == (b.second.m_Time == otherLook) && (isOfLook || a.second.m_Time == b.second.m_Time);
    };
    return one.m_Key == other.m_Key && one.m_Since == other.m_Since && one.m_Drive == other.m_Drive &&
           one.m_Told == other.m_Told && std::ranges::equal(one.m_Known, other.m_Known, isSame) &&
           std::ranges::equal(one.m_Counters, other.m_Counters, isSame);
}

DriveState parseDrive(std::string_view text, std::uint64_t look)
{
    const Json json = Json::parse(text);
    DriveState drive;
    drive.m_Key = json.at("key").get<std::string>();
    drive.m_Drive = identityOf(json.at("drive"));
    for (const auto& [word, remembered] : json.at("known").items())
        drive.m_Known.emplace(kindOf(word), rememberedOf(remembered, look));
    drive.m_Counters = figuresOf(json.at("counters"), look);
    for (const auto& [word, time] : json.at("told").items())
        drive.m_Told.emplace(kindOf(word), time.get<std::uint64_t>());
    drive.m_Since = json.at("since").get<std::uint64_t>();
    return drive;
}

std::string goneText(const GoneDrive& drive)
{
    return textOf({{"time", drive.m_Time},
                   {"drive", identity(drive.m_Drive)},
                   {"counters", figures(drive.m_Counters, drive.m_Time)}});
}

GoneDrive parseGone(std::string_view text)
{
    const Json json = Json::parse(text);
    const auto time = json.at("time").get<std::uint64_t>();
    return {identityOf(json.at("drive")), figuresOf(json.at("counters"), time), time};
}

} // namespace Host::Journal
