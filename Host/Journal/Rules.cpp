#include "Journal/Rules.h"

#include <PI/EventCode.h>

#include <algorithm>

namespace Host::Journal {
namespace {

using Cli::ObservedDrive;

// The temperature of a drive near its limit goes up and down around it.
constexpr float HYSTERESIS = 3; // degrees

// Drives log every command that they do not know, so some of these logs grow all the time.
constexpr std::uint64_t DAY = 86'400'000; // milliseconds

std::optional<bool> isOver(const std::optional<float>& temperature, const std::optional<float>& limit,
                           bool before)
{
    if (!temperature || !limit)
        return std::nullopt;
    return before ? *temperature > *limit - HYSTERESIS : *temperature >= *limit;
}

template<std::uint8_t Warning>
std::optional<bool> warns(const ObservedDrive& drive, bool /*before*/)
{
    return drive.m_Warnings ? std::optional((*drive.m_Warnings & Warning) != 0) : std::nullopt;
}

/** A drive may set its warning before, at, or after the limit that it reports. */
std::optional<bool> isTooHot(const ObservedDrive& drive, bool before)
{
    const std::optional<bool> warned = warns<Cli::WARNING_TEMPERATURE>(drive, before);
    const std::optional<bool> over = isOver(drive.m_Temperature, drive.m_TemperatureLimit, before);
    if (warned.value_or(false) || over.value_or(false))
        return true;
    // One of the two may be unknown, and that one may be over its limit. Then the result is unknown.
    const bool allKnown = warned && (over || !drive.m_TemperatureLimit);
    return allKnown ? std::optional(false) : std::nullopt;
}

std::optional<bool> isCritical(const ObservedDrive& drive, bool before)
{
    return isOver(drive.m_Temperature, drive.m_CriticalTemperatureLimit, before);
}

std::optional<bool> isBelowNew(const ObservedDrive& drive, bool /*before*/)
{
    return drive.m_BelowNew;
}

std::optional<bool> isSilentNow(const ObservedDrive& drive, bool /*before*/)
{
    return drive.m_Silent;
}

constexpr ConditionRule CONDITIONS[] = {
    {Kind::DoesNotAnswer, isSilentNow, Severity::Warning, std::nullopt, false,
     "the drive does not answer; what is shown of it is from its last answer.", "the drive answers again."},
    {Kind::ReadOnly, warns<Cli::WARNING_READ_ONLY>, Severity::Error, std::nullopt, true,
     "the drive is read-only and takes no data any more.", "the drive takes data again."},
    {Kind::ReliabilityDegraded, warns<Cli::WARNING_RELIABILITY>, Severity::Warning,
     PI::EVENT_RELIABILITY_DEGRADED, true, "the reliability is degraded.",
     "the reliability is no longer degraded."},
    {Kind::MemoryBackupFailed, warns<Cli::WARNING_MEMORY_BACKUP>, Severity::Error,
     PI::EVENT_MEMORY_BACKUP_FAILED, true, "the backup of the volatile memory has failed.",
     "the backup of the volatile memory works again."},
    {Kind::SpareLow, warns<Cli::WARNING_SPARE>, Severity::Error, PI::EVENT_SPARE_LOW, true,
     "the available spare is below its threshold.", "the available spare is no longer below its threshold."},
    {Kind::OverTemperature, isTooHot, Severity::Warning, std::nullopt, true,
     "the temperature is outside the drive's limits.", "the temperature is within the drive's limits again."},
    {Kind::OverCriticalTemperature, isCritical, Severity::Error, std::nullopt, false,
     "the temperature has reached the drive's critical limit.",
     "the temperature is below the drive's critical limit again."},
    {Kind::BelowNew, isBelowNew, Severity::Warning, std::nullopt, false,
     "blocks wear out or fail: an attribute is below that of a new drive.",
     "no attribute is below that of a new drive any more."},
};

std::optional<std::uint64_t> marginDegree(const ObservedDrive& drive)
{
    return drive.m_TemperatureMargin ? std::optional(static_cast<std::uint64_t>(*drive.m_TemperatureMargin))
                                     : std::nullopt;
}

// In the order of `TLXX::ETemperatureMargin`, without the first one.
constexpr Degree MARGIN_DEGREES[] = {
    {Severity::Warning, PI::EVENT_TEMPERATURE_NEAR_CRITICAL,
     "the temperature is close to the critical level."},
    {Severity::Error, PI::EVENT_TEMPERATURE_CRITICAL, "the temperature has reached the critical level."},
    {Severity::Error, PI::EVENT_TEMPERATURE_ABOVE_CRITICAL,
     "the temperature is well above the critical level."},
};

constexpr DegreeRule DEGREES[] = {
    {Kind::TemperatureMargin, marginDegree, MARGIN_DEGREES,
     "the temperature is no longer close to the critical level."},
};

constexpr Step SPARE_STEPS[] = {
    {75, Severity::Information}, {50, Severity::Warning}, {25, Severity::Warning}, {10, Severity::Error}};
constexpr Step WEAR_STEPS[] = {
    {50, Severity::Information}, {80, Severity::Warning}, {90, Severity::Warning}, {100, Severity::Error}};

std::string spareText(std::int32_t figure)
{
    return "the available spare is down to " + std::to_string(figure) + " %.";
}

std::string wearText(std::int32_t figure)
{
    return std::to_string(figure) + " % of the rated life is used.";
}

std::string ownWearText(std::int32_t figure)
{
    return "by its own count the drive has used " + std::to_string(figure) + " % of its life.";
}

const StepRule STEPS[] = {
    {Kind::SpareFell, &ObservedDrive::m_Spare, false, SPARE_STEPS, Kind::SpareLow, spareText},
    {Kind::WearGrew, &ObservedDrive::m_Wear, true, WEAR_STEPS, std::nullopt, wearText},
    {Kind::OwnWearGrew, &ObservedDrive::m_OwnWear, true, WEAR_STEPS, std::nullopt, ownWearText},
};

std::string fromTo(const char* what, std::uint64_t before, std::uint64_t now, const char* unit)
{
    return what + std::to_string(before) + " to " + std::to_string(now) + unit;
}

std::string mediaErrorsText(std::uint64_t before, std::uint64_t now)
{
    return fromTo("the media errors grew from ", before, now, ".");
}

std::string mediaErrorsPresentText(std::uint64_t now)
{
    return "the drive has counted " + std::to_string(now) + (now == 1 ? " media error" : " media errors") +
           " so far.";
}

std::string errorLogText(std::uint64_t before, std::uint64_t now)
{
    return fromTo("the entries in the error log grew from ", before, now, ".");
}

std::string capacityText(std::uint64_t before, std::uint64_t now)
{
    return fromTo("the capacity changed from ", before, now, " MiB.");
}

std::string blockSizeText(std::uint64_t before, std::uint64_t now)
{
    return fromTo("the block size changed from ", before, now, " bytes.");
}

constexpr FigureRule FIGURES[] = {
    {Kind::MediaErrorsGrew, &ObservedDrive::m_MediaErrors, true, Severity::Warning, std::nullopt,
     mediaErrorsText, mediaErrorsPresentText},
    {Kind::ErrorLogGrew, &ObservedDrive::m_ErrorLogEntries, true, Severity::Information, std::nullopt,
     errorLogText, nullptr, DAY},
    {Kind::CapacityChanged, &ObservedDrive::m_CapacityMiB, false, Severity::Warning, std::nullopt,
     capacityText, nullptr},
    {Kind::BlockSizeChanged, &ObservedDrive::m_BlockSize, false, Severity::Information,
     PI::EVENT_DRIVE_CHANGED, blockSizeText, nullptr},
};

const std::string& firmwareOf(const ObservedDrive& drive)
{
    return drive.m_Firmware;
}

const std::string& placeOf(const ObservedDrive& drive)
{
    return drive.m_PciAddress;
}

constexpr TextRule TEXTS[] = {
    {Kind::FirmwareChanged, firmwareOf, Severity::Information, "the firmware changed "},
    {Kind::Moved, placeOf, Severity::Information, "the drive moved "},
};

} // namespace

std::uint64_t StepRule::passed(std::int32_t figure) const
{
    const auto isPassed = [&](const Step& step) {
        return m_Rises ? figure >= step.m_Limit : figure <= step.m_Limit;
    };
    return static_cast<std::uint64_t>(std::count_if(m_Steps.begin(), m_Steps.end(), isPassed));
}

std::span<const ConditionRule> conditionRules()
{
    return CONDITIONS;
}

std::span<const DegreeRule> degreeRules()
{
    return DEGREES;
}

bool warnsOfNothing(const ObservedDrive& drive)
{
    return drive.m_Warnings == 0 && drive.m_TemperatureMargin.value_or(TLXX::ETemperatureMargin::Safe) ==
                                        TLXX::ETemperatureMargin::Safe;
}

std::span<const StepRule> stepRules()
{
    return STEPS;
}

std::span<const FigureRule> figureRules()
{
    return FIGURES;
}

std::span<const TextRule> textRules()
{
    return TEXTS;
}

} // namespace Host::Journal
