#pragma once

#include <PI/Event.h>
#include <PI/Object.h>
#include <PI/StateCode.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** A 64-bit counter that could not be read. */
inline constexpr std::uint64_t UNKNOWN_COUNTER = std::numeric_limits<std::uint64_t>::max();

/** A temperature that could not be read. */
inline constexpr float UNKNOWN_TEMPERATURE = -1.0F;

/** What is known of one NVMe controller. The scan fills it in; unknown members keep their defaults. */
struct CNVMeAdapterData
{
    std::uint32_t m_DeviceIndex = 0; ///< position in the device list at the time of the scan
    std::int32_t m_GlobalAdapterNumber = 0;
    std::string m_SerialNumber;
    std::string m_Vendor; ///< "INTEL", "SAMSUNG", "KIOXIA", "MICRON"; empty for any other maker
    std::string m_Model;
    std::string m_Name; ///< display name; empty until the host has assigned an identity
    std::string m_Location;
    std::string m_Driver;
    std::string m_DriverVersion;
    std::string m_FirmwareRevision;
    std::string m_VendorTag;  ///< Intel alone
    std::string m_DeviceName; ///< path of the disk without its backslashes
    std::int32_t m_Segment = 0;
    std::int32_t m_Bus = 0;
    std::int32_t m_Device = 0;
    std::int32_t m_Function = 0;
    std::uint32_t m_WarningFlags =
        0; ///< critical-warning bits, plus the temperature bits 0x20, 0x40, 0x80, 0x200
    std::uint32_t m_EANormalized = 100; ///< Intel attribute 0xEA
    std::uint32_t m_ADNormalized = 0;   ///< Intel attribute 0xAD, the wear indicator
    std::uint64_t m_UnsafeShutdowns = 0;
    std::uint64_t m_CorrectableErrors = 0;     ///< never filled
    float m_Temperature = UNKNOWN_TEMPERATURE; ///< degrees Celsius
    std::uint32_t m_HealthStatus = PI::HEALTH_HEALTHY;
    std::vector<std::uint32_t> m_HealthReasons;
    std::uint64_t m_UncorrectableErrors = 0; ///< never filled
    std::uint32_t m_SpareStatus = PI::WEAR_OK;
    std::uint64_t m_DataUnitsRead = UNKNOWN_COUNTER;    ///< units of 512,000 bytes
    std::uint64_t m_DataUnitsWritten = UNKNOWN_COUNTER; ///< units of 512,000 bytes
    std::uint64_t m_PowerOnHours = UNKNOWN_COUNTER;     ///< the health log's counter at byte 128
    std::uint32_t m_ReserveSpace = 100;                 ///< available spare, percent
    std::uint64_t m_LifetimeRating = UNKNOWN_COUNTER;   ///< TiB that may be written; 1 for an unrated model
    std::uint32_t m_SpareState = PI::SPARE_SUFFICIENT;
    std::uint32_t m_WarningThreshold = 10; ///< available spare threshold, percent
    std::string m_ModelName;
    std::string m_EndOfLifeDate; ///< "%4d-%02d-%02d"

    friend bool operator==(const CNVMeAdapterData&, const CNVMeAdapterData&) = default;
};

/** One NVMe controller in the topology. */
class CNVMeAdapter : public PI::CObject, public CNVMeAdapterData
{
public:
    /** Appends an event to `events` for each warning that `fresh` has and this record lacks. */
    void Update(const CNVMeAdapter& fresh, std::vector<PI::CEvent>& events) const;

    /** Whether both have the same data, whatever their places in the topology. */
    friend bool operator==(const CNVMeAdapter& left, const CNVMeAdapter& right)
    {
        return static_cast<const CNVMeAdapterData&>(left) == static_cast<const CNVMeAdapterData&>(right);
    }
};

} // namespace NAMESPACE_Ostrel
