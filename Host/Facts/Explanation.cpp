#include "Facts/Explanation.h"

#include "Plugins/ObjectStore.h"

#include <PI/PluginHelper.h>
#include <PI/StateCode.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <variant>

namespace Host::Cli {
namespace {

constexpr char NOTHING[] = "Nothing needs to be done.";
constexpr char REPLACE[] = "Back up what is on the drive now, and replace it.";

constexpr Explanation EXPLANATIONS[] = {
    // Reasons of a health status.
    {PI::REASON_TEMPERATURE,
     "The drive is hotter or colder than its maker allows. It slows down to protect itself, and ages faster.",
     "Look at fans, dust filters and the air's way to the drive; if it stays that way, move the drive or its "
     "load."},
    {PI::REASON_SPARE_LOW,
     "The blocks that the drive keeps to replace worn ones are nearly used up. When they are gone it stops "
     "taking "
     "data.",
     REPLACE},
    {PI::REASON_MEMORY_BACKUP_FAILED,
     "What saves the drive's volatile memory when the power fails does not work. Data that was just written "
     "may be "
     "lost then.",
     "Replace the drive; until then turn its write cache off, or see that the power cannot fail."},
    {PI::REASON_RELIABILITY_DEGRADED,
     "Errors of the medium or within the drive have made it unreliable: what it holds may become unreadable.",
     REPLACE},
    {PI::REASON_READ_ONLY, "The drive has stopped taking data, to keep what it holds readable.",
     "Copy what is on it to another drive at once, and replace it."},

    // States of wear and of spare blocks.
    {PI::WEAR_OK, "The drive reports no more wear than use brings with it.", NOTHING},
    {PI::WEAR_WARNING,
     "An attribute of the drive has fallen below the value of a new one: blocks wear out or fail.",
     "Plan to replace the drive, and watch whether this gets worse."},
    {PI::WEAR_CRITICAL, "The drive is worn out, or reports a wear that makes no sense.", REPLACE},
    {PI::SPARE_SUFFICIENT,
     "The drive has not reported that the blocks which replace worn ones are running out.", NOTHING},
    {PI::SPARE_EXHAUSTED, "The drive has no spare blocks left to replace worn ones.", REPLACE},
};

// A health status, for where no reason tells more.
constexpr Explanation HEALTH[] = {
    {PI::HEALTH_DEGRADED, "The drive works, but something about it is worse than in a new one.",
     "Look at the other states of the drive, and plan to replace it."},
    {PI::HEALTH_CRITICAL, "The drive is failing or about to.", REPLACE},
    {PI::DRIVE_WARNING, "The drive works, but something about it needs attention.",
     "Look at the other states of the drive."},
};

template<std::size_t Size>
const Explanation* find(const Explanation (&table)[Size], std::uint32_t code)
{
    const auto* found = std::find_if(std::begin(table), std::end(table),
                                     [&](const Explanation& row) { return row.m_Code == code; });
    return found == std::end(table) ? nullptr : found;
}

std::vector<std::uint32_t> codesOf(const PI::CProperty& property)
{
    if (const auto* code = std::get_if<PI::CCodeValue>(&property.GetValue()))
        return {code->m_Code};
    if (const auto* codes = std::get_if<PI::CCodeListValue>(&property.GetValue()))
        return codes->m_Codes;
    return {};
}

} // namespace

std::vector<ExplainedCode> explainedCodes(const PI::CObject& object)
{
    const PI::CProperty* health = findProperty(object, PI::PROP_HEALTH_STATUS);
    const std::vector<std::uint32_t> status =
        health != nullptr ? codesOf(*health) : std::vector<std::uint32_t>();
    const Explanation* trouble = status.empty() ? nullptr : find(HEALTH, status.front());
    const bool hasReasons = findProperty(object, PI::PROP_STATUS_REASONS) != nullptr;

    std::vector<ExplainedCode> explained;
    if (trouble != nullptr && !hasReasons)
        explained.push_back({health, trouble});
    for (const PI::CProperty& property : object.m_Properties)
        for (const std::uint32_t code : codesOf(property)) {
            const Explanation* explanation = find(EXPLANATIONS, code);
            // Nobody should read that nothing needs to be done for a drive that is failing.
            const bool hidden =
                trouble != nullptr && explanation != nullptr && explanation->m_Advice == NOTHING;
            if (explanation != nullptr && !hidden)
                explained.push_back({&property, explanation});
        }
    return explained;
}

nlohmann::ordered_json explanationsJson(const std::vector<const PI::CObject*>& objects)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const PI::CObject* object : objects)
        for (const ExplainedCode& each : explainedCodes(*object))
            list.push_back({{"object", identifierText(object->m_ID)},
                            {"property", each.m_Property->Id()},
                            {"code", each.m_Explanation->m_Code},
                            {"text", PI::PropertyValueToString(each.m_Explanation->m_Code)},
                            {"meaning", each.m_Explanation->m_Meaning},
                            {"advice", each.m_Explanation->m_Advice}});
    return list;
}

} // namespace Host::Cli
