#pragma once

#include "Drives/DriveAnswer.h"
#include "Facts/DriveIdentity.h"
#include "Facts/Measured.h"
#include "Plugins/ObjectStore.h"

#include <PI/Property.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** A code and its text. */
struct CodeText
{
    std::uint32_t m_Code = 0;
    std::string m_Text;
};

/** The health of a drive. It has no code when it is not known. */
struct Health
{
    std::optional<std::uint32_t> m_Code;
    std::string m_Text;
};

/** The text for a health that is not known. */
inline constexpr char UNKNOWN_HEALTH[] = "Unknown";

/** A measured amount. */
struct Amount
{
    float m_Value = 0;
    std::uint32_t m_Unit = 0;

    friend bool operator==(const Amount&, const Amount&) = default;
};

/** The amount in bytes. Nothing when its unit is not one of data. */
std::optional<double> bytesOf(const Amount& amount);

/** An adapter and its drive, as one line of `list`. A text is empty when the plug-in does not report it. */
struct Drive : DriveIdentity
{
    std::optional<std::uint64_t> m_AdapterId;
    std::optional<std::uint64_t> m_DriveId;
    std::string m_Firmware;
    std::string m_Driver;
    std::string m_DriverVersion;
    std::optional<std::uint64_t> m_CapacityMiB;
    std::optional<std::uint64_t> m_BlockSize;
    std::optional<float> m_Temperature; ///< degrees Celsius
    std::optional<std::int32_t> m_Wear; ///< percent; above 100 when the rating is exceeded
    std::optional<Health> m_Health;
    std::optional<bool> m_HealthLogRead; ///< none: the plug-in shows nothing from a health log
    std::vector<CodeText> m_Reasons;
    std::optional<std::int32_t> m_Spare;
    std::optional<std::int32_t> m_SpareThreshold;
    std::optional<Amount> m_DataRead;
    std::optional<Amount> m_DataWritten;
    std::optional<std::uint64_t> m_PowerOnHours;
    std::optional<std::uint64_t> m_MediaErrors;
    std::string m_EndOfLifeDate;  ///< year-month-day
    bool m_DateCountsWear = true; ///< whether that date takes the drive's own count of wear into account
    std::optional<TLXX::CControllerState> m_System; ///< what the system tells about its controller
    std::optional<DriveAnswer> m_Answer; ///< whether it answered in the last round; none: nobody knows
    // What the drive itself told last. Null when it was never read.
    std::shared_ptr<const TLXX::NVME_SMART_HEALTH_INFORMATION_LOG> m_HealthLog;
    std::shared_ptr<const TLXX::VendorLogPage> m_TemperatureLog; ///< temperature statistics of an Intel drive
    std::shared_ptr<const TLXX::NVME_IDENTIFY_CONTROLLER> m_Identify;
};

/**
 * Whether the drive reports its spare blocks, if anyone knows them. A drive without spare blocks left still
 * reports a threshold. When both are 0, the drive reports neither.
 */
bool reportsSpare(const Drive& drive);

/**
 * Every adapter with each of its drives, in the plug-in's order, then each drive that no plug-in shows
 * because it has never answered.
 */
std::vector<Drive> joinDrives(const ObjectStore& store);

/** `object` with its first drive. Nothing when it is no adapter. */
std::optional<Drive> driveOf(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
