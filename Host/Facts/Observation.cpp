#include "Facts/Observation.h"

#include "Facts/Drives.h"
#include "Facts/PageFields.h"
#include "Facts/Silence.h"
#include "Facts/Snapshot.h"

#include <PI/LifeTimeData.h>
#include <PI/PropertyId.h>
#include <PI/StateCode.h>

#include <utility>
#include <variant>

namespace Host::Cli {
namespace {

using Log = TLXX::NVME_SMART_HEALTH_INFORMATION_LOG;

// The plug-in does not show the warning byte. It shows each of its bits as a reason of the drive's health.
constexpr std::pair<std::uint32_t, CriticalWarning> REASONS[] = {
    {PI::REASON_SPARE_LOW, WARNING_SPARE},
    {PI::REASON_TEMPERATURE, WARNING_TEMPERATURE},
    {PI::REASON_RELIABILITY_DEGRADED, WARNING_RELIABILITY},
    {PI::REASON_READ_ONLY, WARNING_READ_ONLY},
    {PI::REASON_MEMORY_BACKUP_FAILED, WARNING_MEMORY_BACKUP},
};

/** Nothing when the health log was not read. A warning that could not be read has not ended. */
std::optional<std::uint8_t> warningsOf(const Drive& drive)
{
    const bool unread = drive.m_HealthLogRead == false && drive.m_Reasons.empty();
    if (unread || !drive.m_Health || !drive.m_Health->m_Code)
        return std::nullopt;
    std::uint8_t warnings = 0;
    for (const CodeText& reason : drive.m_Reasons)
        for (const auto& [code, warning] : REASONS)
            if (reason.m_Code == code)
                warnings |= warning;
    return warnings;
}

/** Nothing when the wear was not read. The plug-in then shows the state of a new drive. */
std::optional<bool> belowNew(const ObjectStore& objects, const PI::CObject* adapter)
{
    const PI::CProperty* state = adapter != nullptr ? findProperty(*adapter, PI::PROP_WEAR_STATE) : nullptr;
    const auto* code = state != nullptr ? std::get_if<PI::CCodeValue>(&state->GetValue()) : nullptr;
    return code != nullptr && basisOf(objects, *adapter, *state) == Basis::Measured
               ? std::optional(code->m_Code != PI::WEAR_OK)
               : std::nullopt;
}

/** Without a rating, the plug-in's figure does not mean a percentage. */
std::optional<std::int32_t> wearOf(const Drive& drive)
{
    return PI::findLifeTimeData(PI::GetLifeTimeDataNVMe(), drive.m_Model) != nullptr ? drive.m_Wear
                                                                                     : std::nullopt;
}

/** Every drive has blocks. A count of 0 means that the namespace was not read. */
std::optional<std::uint64_t> unlessNone(const std::optional<std::uint64_t>& amount)
{
    return amount && *amount > 0 ? amount : std::nullopt;
}

/** The value from the drive itself, or the plug-in's value when the program cannot read the drive. */
std::optional<float> temperatureOf(const Drive& drive)
{
    if (!drive.m_HealthLog)
        return drive.m_Temperature;
    const std::optional<std::int32_t> own = compositeTemperature(drive);
    return own ? std::optional(static_cast<float>(*own)) : std::nullopt;
}

ObservedDrive observed(const Drive& drive, std::optional<bool> belowNew, std::string key)
{
    ObservedDrive result;
    static_cast<DriveIdentity&>(result) = drive;
    result.m_Key = std::move(key);
    result.m_Firmware = drive.m_Firmware;
    if (drive.m_Answer)
        result.m_Silent = isSilent(drive);
    result.m_CapacityMiB = unlessNone(drive.m_CapacityMiB);
    // The plug-in shows a block size even for a namespace that was not read.
    result.m_BlockSize = result.m_CapacityMiB ? unlessNone(drive.m_BlockSize) : std::nullopt;
    result.m_Warnings = warningsOf(drive);
    result.m_BelowNew = belowNew;
    result.m_Temperature = temperatureOf(drive);
    if (drive.m_TemperatureLog)
        result.m_TemperatureMargin = TLXX::temperatureMargin(*drive.m_TemperatureLog);
    result.m_TemperatureLimit = limit<&TLXX::NVME_IDENTIFY_CONTROLLER::WCTEMP>(drive);
    result.m_CriticalTemperatureLimit = limit<&TLXX::NVME_IDENTIFY_CONTROLLER::CCTEMP>(drive);
    if (drive.m_MediaErrors != UNKNOWN_COUNTER)
        result.m_MediaErrors = drive.m_MediaErrors;
    if (reportsSpare(drive))
        result.m_Spare = drive.m_Spare;
    result.m_Wear = wearOf(drive);
    result.m_OwnWear = logPercentage<&Log::PercentageUsed>(drive);
    result.m_PowerCycles = logCounter<&Log::PowerCycles>(drive);
    result.m_UnsafeShutdowns = logCounter<&Log::UnsafeShutdowns>(drive);
    result.m_PowerOnHours = logCounter<&Log::Counter128>(drive);
    result.m_DataUnitsWritten = logCounter<&Log::DataUnitsWritten>(drive);
    result.m_ErrorLogEntries = logCounter<&Log::ErrorLogEntries>(drive);
    return result;
}

} // namespace

Observation observe(const ObjectStore& objects, const Moment& moment)
{
    return observe(Snapshot(objects, 0, moment.m_Time), moment);
}

Observation observe(const Snapshot& snapshot, const Moment& moment)
{
    Observation result{moment, {}};
    for (std::size_t i = 0; i < snapshot.m_Drives.size(); ++i) {
        const Drive& drive = snapshot.m_Drives[i];
        const PI::CObject* const adapter =
            drive.m_AdapterId ? snapshot.m_Objects.byId(*drive.m_AdapterId) : nullptr;
        result.m_Drives.push_back(observed(drive, belowNew(snapshot.m_Objects, adapter), snapshot.m_Keys[i]));
    }
    return result;
}

} // namespace Host::Cli
