#pragma once

#include "Facts/DriveIdentity.h"
#include "Facts/Measured.h"
#include "Plugins/ObjectStore.h"

#include <PI/Property.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/NvmeStructures.h>

#include <cstdint>
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

/** How a drive fares. Without a code: nobody knows. */
struct Health
{
    std::optional<std::uint32_t> m_Code;
    std::string m_Text;
};

/** What is said of a health that nobody knows. */
inline constexpr char UNKNOWN_HEALTH[] = "Unknown";

/** A measured amount. */
struct Amount
{
    float m_Value = 0;
    std::uint32_t m_Unit = 0;

    friend bool operator==(const Amount&, const Amount&) = default;
};

/** In bytes; none for a unit that is no amount of data. */
std::optional<double> bytesOf(const Amount& amount);

/** An adapter and the drive behind it, as one line of `list`. Empty: the plug-in does not report it. */
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
    std::optional<std::int32_t> m_Wear; ///< percent; above 100 past the rating
    std::optional<Health> m_Health;
    std::optional<bool> m_HealthLogRead; ///< none: the plug-in shows nothing from such a log
    std::vector<CodeText> m_Reasons;
    std::optional<std::int32_t> m_Spare;
    std::optional<std::int32_t> m_SpareThreshold;
    std::optional<Amount> m_DataRead;
    std::optional<Amount> m_DataWritten;
    std::optional<std::uint64_t> m_PowerOnHours;
    std::optional<std::uint64_t> m_MediaErrors;
    std::string m_EndOfLifeDate;  ///< year-month-day
    bool m_DateCountsWear = true; ///< whether the drive's own wear was looked at for that date
    std::optional<TLXX::CControllerState> m_System; ///< what the system says of its controller
    // What the drive itself told last; none: it was never read.
    std::optional<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG> m_HealthLog;
    std::optional<TLXX::VendorLogPage> m_TemperatureLog; ///< temperature statistics of an Intel drive
    std::optional<TLXX::NVME_IDENTIFY_CONTROLLER> m_Identify;
};

/** Every adapter with each of its drives, in the plug-in's order. */
std::vector<Drive> joinDrives(const ObjectStore& store);

/** `object` with the first of its drives; none when it is no adapter. */
std::optional<Drive> driveOf(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
