#include "Facts/Explanation.h"

#include "Facts/Drives.h"
#include "Facts/Measured.h"

#include <PI/PluginHelper.h>
#include <PI/StateCode.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <variant>

namespace Host::Cli {
namespace {

constexpr char NOTHING[] = "Nothing needs to be done.";
constexpr char REPLACE[] = "Back up what is on the drive now, and replace it.";

struct Explanation
{
    std::uint32_t m_Code;
    const char* m_Meaning;
    const char* m_Advice;
};

constexpr Explanation EXPLANATIONS[] = {
    // Reasons of a health status.
    {PI::REASON_TEMPERATURE,
     "The drive is hotter or colder than its maker allows. It slows down to protect itself, and ages faster.",
     "Check fans, dust filters and the flow of air to the drive. If that does not help, move the drive "
     "or its load."},
    {PI::REASON_SPARE_LOW,
     "The blocks that the drive keeps to replace worn ones are nearly used up. When none is left, it stops "
     "taking data.",
     REPLACE},
    {PI::REASON_MEMORY_BACKUP_FAILED,
     "The backup of the drive's volatile memory for power failures does not work. Data that was just written "
     "may be lost then.",
     "Replace the drive; until then turn its write cache off, or make sure that the power cannot fail."},
    {PI::REASON_RELIABILITY_DEGRADED,
     "Errors of the medium or within the drive have made it unreliable. Its data may become unreadable.",
     REPLACE},
    {PI::REASON_READ_ONLY, "The drive has stopped taking data, so that its data stays readable.",
     "Copy what is on it to another drive at once, and replace it."},

    // States of wear and of spare blocks.
    {PI::WEAR_OK, "The drive reports no unusual wear.", NOTHING},
    {PI::WEAR_WARNING,
     "An attribute of the drive has fallen below the value of a new one: blocks wear out or fail.",
     "Plan to replace the drive, and watch whether this gets worse."},
    {PI::WEAR_CRITICAL, "The drive is worn out, or reports an impossible value for its wear.", REPLACE},
    {PI::SPARE_SUFFICIENT,
     "The drive has not reported that the blocks which replace worn ones are running out.", NOTHING},
    {PI::SPARE_EXHAUSTED, "The drive has no spare blocks left to replace worn ones.", REPLACE},
};

// A health status, if no reason tells more.
constexpr Explanation HEALTH[] = {
    {PI::HEALTH_DEGRADED, "The drive works, but something about it is worse than in a new one.",
     "Look at the other states of the drive, and plan to replace it."},
    {PI::HEALTH_CRITICAL, "The drive is failing or about to.", REPLACE},
    {PI::DRIVE_WARNING, "The drive works, but something about it needs attention.",
     "Look at the other states of the drive."},
};

/** The texts for states that were not measured, by property. The last row is for the health of a medium. */
struct Constant
{
    std::uint32_t m_Property;
    const char* m_Meaning;
    const char* m_Advice;
};

constexpr Constant CONSTANTS[] = {
    {PI::PROP_SPARE_STATE, "This state is not measured; every drive is shown with it.",
     "Look at the available spare and its threshold."},
    {PI::PROP_WEAR_STATE,
     "This state is not measured for drives of this maker; all of them are shown with it.",
     "Look at the endurance used and the available spare."},
    {PI::PROP_HEALTH_STATUS, "This state is not measured; every drive is shown with it.",
     "Look at the health of its adapter."},
};

/** The texts for states whose log was never read, by property. */
constexpr Constant UNREAD[] = {
    {PI::PROP_HEALTH_STATUS, "The health log of this drive was not read, so its health is not known.",
     "\"ostrel doctor\" says why the log was not read."},
    {PI::PROP_WEAR_STATE, "The log with the wear of this drive was not read, so its wear is not known.",
     "Look at the endurance used and the available spare."},
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

ExplainedCode explain(const PI::CProperty& property, const Explanation& explanation)
{
    return {&property, explanation.m_Code, PI::PropertyValueToString(explanation.m_Code),
            explanation.m_Meaning, explanation.m_Advice};
}

void addUnmeasured(const PI::CProperty& property, Basis basis, std::vector<ExplainedCode>& explained)
{
    const std::vector<std::uint32_t> codes = codesOf(property);
    // For numbers that were not measured there is a sentence above the rows.
    if (codes.empty())
        return;
    const bool isUnread = basis == Basis::NotRead;
    const std::string state =
        isUnread ? UNKNOWN_HEALTH : PI::PropertyValueToString(codes.front()) + NOT_MEASURED;
    for (const Constant& row : isUnread ? std::span<const Constant>(UNREAD) : CONSTANTS)
        if (row.m_Property == property.Id())
            explained.push_back({&property, codes.front(), state, row.m_Meaning, row.m_Advice});
}

} // namespace

std::vector<ExplainedCode> explainedCodes(const ObjectStore& store, const PI::CObject& object)
{
    const PI::CProperty* health = findProperty(object, PI::PROP_HEALTH_STATUS);
    const std::vector<std::uint32_t> status =
        health != nullptr ? codesOf(*health) : std::vector<std::uint32_t>();
    const Explanation* trouble = status.empty() ? nullptr : find(HEALTH, status.front());
    const bool hasReasons = findProperty(object, PI::PROP_STATUS_REASONS) != nullptr;

    std::vector<ExplainedCode> explained;
    if (trouble != nullptr && !hasReasons)
        explained.push_back(explain(*health, *trouble));
    for (const PI::CProperty& property : object.m_Properties) {
        const Basis basis = basisOf(store, object, property);
        if (basis != Basis::Measured) {
            addUnmeasured(property, basis, explained);
            continue;
        }
        for (const std::uint32_t code : codesOf(property)) {
            const Explanation* explanation = find(EXPLANATIONS, code);
            // Without this, a failing drive would be shown with the text that nothing needs to be done.
            const bool hidden =
                trouble != nullptr && explanation != nullptr && explanation->m_Advice == NOTHING;
            if (explanation != nullptr && !hidden)
                explained.push_back(explain(property, *explanation));
        }
    }
    return explained;
}

} // namespace Host::Cli
