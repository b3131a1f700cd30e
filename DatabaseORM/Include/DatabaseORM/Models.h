#pragma once

#include <cstdint>
#include <string>

/**
 * One row of each table, as plain values. The code that fills a text must double its single quotes
 * (`escapeQuotes`), because the statement builder writes texts unchanged. `ValueText.h` has the values that
 * mean SQL's NULL.
 */
namespace RaidDataModels {

/** The host of every row: this machine. */
inline constexpr char LOCAL_HOST[] = "localhost";

/** The plug-in itself. */
struct Plugin
{
    std::int32_t m_ID = 0; ///< the row's key; the insert assigns it
    std::string m_Description;
    std::int64_t m_ObjectID = 0; ///< the plug-in's own object in the topology
    std::string m_Name;          ///< by which the row is found
    std::int32_t m_PollInterval = 0;
    std::string m_SettableProperties;
    std::int32_t m_Reserved1 = 0;
    std::int32_t m_Reserved2 = 0;
    std::string m_Identity;
    std::string m_Vendor;
    std::string m_Version;
};

/** One NVMe controller. The row is found by host name and adapter number. */
struct Adapter
{
    std::int32_t m_ID = 0; ///< the row's key; the insert assigns it
    std::string m_HostName;
    std::int32_t m_AdapterNumber = 0;
    std::int32_t m_Present = 0;
    std::int32_t m_Segment = 0;
    std::int32_t m_WarningFlags = 0;
    std::int32_t m_ReserveSpace = 0;     ///< percent
    std::int32_t m_WarningThreshold = 0; ///< percent

    // One text for each property, named by the property's number.
    std::string m_Vendor;        ///< 30003
    std::string m_Name;          ///< 30007
    std::string m_HealthStatus;  ///< 30017
    std::string m_DriverVersion; ///< 30018
    std::string m_Firmware;      ///< 30020
    std::string m_SerialNumber;  ///< 30022
    std::string m_PciBus;        ///< 30037
    std::string m_PciDevice;     ///< 30038
    std::string m_PciFunction;   ///< 30039
    std::string m_Model;         ///< 30063
    std::string m_Location;      ///< 30137
    std::string m_ModelFamily;   ///< 30158
    std::string m_StatusReasons; ///< 30165, a JSON array of texts
    std::string m_MediaErrors;   ///< 30189
};

/** One physical drive. The row is found by host name and drive key. */
struct PD
{
    std::int32_t m_ID = 0; ///< the row's key; the insert assigns it
    std::string m_HostName;
    std::string m_DriveKey; ///< the serial number

    // One text for each property, named by the property's number.
    std::string m_Vendor;         ///< 30003
    std::string m_Name;           ///< 30007
    std::string m_Status;         ///< 30017
    std::string m_SerialNumber;   ///< 30022
    std::string m_DriveType;      ///< 30056
    std::string m_Capacity;       ///< 30059
    std::string m_UsableCapacity; ///< 30060
    std::string m_Model;          ///< 30063
    std::string m_Temperature;    ///< 30069; "NULL" while it is not known
    std::string m_Channel;        ///< 30122
    std::string m_DriveNumber;    ///< 30125
    std::string m_Location;       ///< 30137
};

} // namespace RaidDataModels
