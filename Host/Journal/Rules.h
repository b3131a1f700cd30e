#pragma once

#include "Facts/Observation.h"
#include "Journal/Entry.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// What the journal tells of a drive, one row for each kind. Texts follow the drive's name.
namespace Host::Journal {

/** The plug-in's events that tell of drives, not of a condition. */
inline constexpr std::uint32_t EVENT_DRIVE_ADDED = 11093;
inline constexpr std::uint32_t EVENT_DRIVE_REMOVED = 11094;
inline constexpr std::uint32_t EVENT_WARNINGS_CLEARED = 10980;

/** Something that holds for some time. */
struct ConditionRule
{
    Kind m_Kind;
    /** Whether it holds now, when it held `before` or did not; none: not known. */
    std::optional<bool> (*m_Holds)(const Cli::ObservedDrive&, bool before);
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event; ///< of its beginning
    bool m_Warning; ///< the drive warns of it; then its end may be the end of all warnings
    const char* m_Text;
    const char* m_EndText;
};

std::span<const ConditionRule> conditionRules();

/** One of the degrees of a condition. */
struct Degree
{
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event; ///< of its beginning
    const char* m_Text;
};

/** Something that holds for some time in degrees. Another degree is told like a beginning. */
struct DegreeRule
{
    Kind m_Kind;
    /** The degree that holds, counted from 1; 0: none holds; nothing: not known. */
    std::optional<std::uint64_t> (*m_Degree)(const Cli::ObservedDrive&);
    std::span<const Degree> m_Degrees;
    const char* m_EndText;
};

std::span<const DegreeRule> degreeRules();

/** Whether a drive warns of nothing, as far as is known: then the plug-in tells that all warnings are over.
 */
bool warnsOfNothing(const Cli::ObservedDrive& drive);

/** A figure and the steps that are worth telling, each once. */
struct Step
{
    std::int32_t m_Limit;
    Severity m_Severity;
};

struct StepRule
{
    Kind m_Kind;
    std::optional<std::int32_t> Cli::ObservedDrive::*m_Figure; ///< percent
    bool m_Rises;                                              ///< it passes a step upwards
    std::span<const Step> m_Steps;                             ///< in the order in which they are passed
    std::optional<Kind> m_Unless;                              ///< while this condition holds, it says enough
    std::string (*m_Text)(std::int32_t figure);

    /** How many steps `figure` has passed. */
    std::uint64_t passed(std::int32_t figure) const;
};

std::span<const StepRule> stepRules();

/** A figure that becomes another. */
struct FigureRule
{
    Kind m_Kind;
    std::optional<std::uint64_t> Cli::ObservedDrive::*m_Figure;
    bool m_OnlyGrowth; ///< a lower one is taken over without a word
    Severity m_Severity;
    std::optional<std::uint32_t> m_Event;
    std::string (*m_Text)(std::uint64_t before, std::uint64_t now);
};

std::span<const FigureRule> figureRules();

/** A text that becomes another. An empty one is not known. */
struct TextRule
{
    Kind m_Kind;
    const std::string& (*m_Of)(const Cli::ObservedDrive&);
    Severity m_Severity;
    const char* m_Text; ///< before "from A to B."
};

std::span<const TextRule> textRules();

} // namespace Host::Journal
