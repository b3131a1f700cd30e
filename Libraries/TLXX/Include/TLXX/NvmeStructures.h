#pragma once

#include <TLXX/Export.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

// Byte-exact overlays of the data structures of the NVM Express base specification. Multi-byte fields are
// little-endian on the wire, and so are the machines that this runs on.
namespace TLXX {

static_assert(std::endian::native == std::endian::little);

struct NVME_IDENTIFY_NAMESPACE;

/** Identify Controller data structure (CNS 01h). */
struct TLXX_EXPORT NVME_IDENTIFY_CONTROLLER
{
    std::uint16_t VID;
    std::uint16_t SSVID;
    std::array<std::uint8_t, 20> SN;
    std::array<std::uint8_t, 40> MN;
    std::array<std::uint8_t, 8> FR;
    std::array<std::uint8_t, 8> Reserved72;
    std::uint32_t VER; ///< version: major in the upper half, then minor and tertiary in a byte each
    std::array<std::uint8_t, 182> Reserved84;
    std::uint16_t WCTEMP; ///< kelvin; the drive warns at this composite temperature; 0: not reported
    std::uint16_t CCTEMP; ///< kelvin; the drive may be damaged at this one; 0: not reported
    std::array<std::uint8_t, 10> Reserved270;
    std::array<std::uint64_t, 2> TNVMCAP; ///< bytes 280 to 295, low half first: total capacity in bytes
    std::array<std::uint64_t, 2> UNVMCAP; ///< bytes 296 to 311: unallocated capacity in bytes
    std::array<std::uint8_t, 204> Reserved312;
    std::uint32_t NN; ///< the highest identifier that a namespace may have
    std::array<std::uint8_t, 2552> Reserved520;
    std::array<std::uint8_t, 1024> VS; ///< vendor-specific area, bytes 3072 to 4095

    /** The model number as safe text. */
    std::string sModelNumber() const;
    /** The serial number as safe text. */
    std::string sSerialNumber() const;
    /** The firmware revision as safe text. */
    std::string sFirmwareRevision() const;
    /** The 8 bytes from 3100 as safe text. */
    std::string sVendorTag() const;

    /**
     * The size of `name_space` in bytes: its blocks times its block size; all ones when that exceeds 64 bits.
     */
    std::uint64_t Capacity(const NVME_IDENTIFY_NAMESPACE& name_space) const;
};
static_assert(sizeof(NVME_IDENTIFY_CONTROLLER) == 4096);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, SN) == 4);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, MN) == 24);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, FR) == 64);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, VER) == 80);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, WCTEMP) == 266);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, CCTEMP) == 268);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, TNVMCAP) == 280);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, UNVMCAP) == 296);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, NN) == 516);
static_assert(offsetof(NVME_IDENTIFY_CONTROLLER, VS) == 3072);

/** One LBA format of a namespace. */
struct NVME_LBA_FORMAT
{
    std::uint16_t MS;   ///< metadata bytes of each block
    std::uint8_t LBADS; ///< block size as a power of two
    std::uint8_t RP;
};
static_assert(sizeof(NVME_LBA_FORMAT) == 4);

/** Identify Namespace data structure (CNS 00h). */
struct TLXX_EXPORT NVME_IDENTIFY_NAMESPACE
{
    std::uint64_t NSZE;
    std::uint64_t NCAP;
    std::uint64_t NUSE;
    std::uint8_t NSFEAT;
    std::uint8_t NLBAF; ///< number of formats, counted from 0
    std::uint8_t FLBAS; ///< bits 0 to 3 and 5 to 6: the index of the format in use
    std::array<std::uint8_t, 101> Reserved27;
    std::array<NVME_LBA_FORMAT, 64> LBAF;
    std::array<std::uint8_t, 3712> Reserved384;

    /** Bytes of a logical block; 0 when the format in use is unset, out of range or implausible. */
    std::uint64_t LBASize() const;
};
static_assert(sizeof(NVME_IDENTIFY_NAMESPACE) == 4096);
static_assert(offsetof(NVME_IDENTIFY_NAMESPACE, NLBAF) == 25);
static_assert(offsetof(NVME_IDENTIFY_NAMESPACE, FLBAS) == 26);
static_assert(offsetof(NVME_IDENTIFY_NAMESPACE, LBAF) == 128);

/** SMART / Health Information log page (log identifier 02h). The offsets are the contract, not the names. */
struct TLXX_EXPORT NVME_SMART_HEALTH_INFORMATION_LOG
{
    std::uint8_t Warning;
    std::array<std::uint8_t, 2> Temperature; ///< kelvin
    std::uint8_t AvailableSpare;             ///< percent
    std::uint8_t AvailableSpareThreshold;    ///< percent
    std::uint8_t PercentageUsed;             ///< the part of its life that the drive itself counts as used;
                                             ///< may exceed 100
    std::array<std::uint8_t, 26> Reserved6;
    std::array<std::uint64_t, 2> DataUnitsRead;    ///< bytes 32 to 47, low half first; units of 512,000 bytes
    std::array<std::uint64_t, 2> DataUnitsWritten; ///< bytes 48 to 63
    std::array<std::uint64_t, 2> HostReadCommands; ///< bytes 64 to 79
    std::array<std::uint64_t, 2> HostWriteCommands;
    std::array<std::uint64_t, 2> ControllerBusyTime; ///< minutes
    std::array<std::uint64_t, 2> PowerCycles;
    std::array<std::uint64_t, 2> Counter128; ///< the counter that the plug-in keeps as its power-on hours
    std::array<std::uint64_t, 2> UnsafeShutdowns;
    std::array<std::uint64_t, 2> Counter160; ///< the counter that the plug-in keeps as its unsafe shutdowns
    std::array<std::uint64_t, 2> ErrorLogEntries;
    std::uint32_t WarningTemperatureTime;            ///< minutes above WCTEMP of Identify Controller
    std::uint32_t CriticalTemperatureTime;           ///< minutes above CCTEMP
    std::array<std::uint16_t, 8> TemperatureSensor;  ///< kelvin; 0: there is no such sensor
    std::array<std::uint32_t, 2> ThermalTransitions; ///< how often each kind of thermal management began
    std::array<std::uint32_t, 2> ThermalTime;        ///< seconds under each kind of thermal management
    std::array<std::uint8_t, 280> Reserved232;

    /** Whether any byte is set. A page of zeros only was never filled by the drive. */
    bool Filled() const;

    /** The critical-warning bit field. */
    std::uint8_t CriticalWarning() const { return Warning; }

    /** Composite temperature in kelvin. 0 means unknown, because no drive is at absolute zero. */
    std::uint16_t CompositeTemperature() const
    {
        return static_cast<std::uint16_t>(Temperature[0] | (Temperature[1] << 8U));
    }
};
static_assert(sizeof(NVME_SMART_HEALTH_INFORMATION_LOG) == 512);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, AvailableSpare) == 3);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, AvailableSpareThreshold) == 4);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, PercentageUsed) == 5);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, DataUnitsRead) == 32);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, DataUnitsWritten) == 48);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, HostReadCommands) == 64);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, HostWriteCommands) == 80);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, ControllerBusyTime) == 96);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, PowerCycles) == 112);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, Counter128) == 128);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, UnsafeShutdowns) == 144);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, Counter160) == 160);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, ErrorLogEntries) == 176);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, WarningTemperatureTime) == 192);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, CriticalTemperatureTime) == 196);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, TemperatureSensor) == 200);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, ThermalTransitions) == 216);
static_assert(offsetof(NVME_SMART_HEALTH_INFORMATION_LOG, ThermalTime) == 224);

/** A vendor-specific log page as the plug-in reads it. */
using VendorLogPage = std::array<std::uint8_t, 512>;

} // namespace TLXX
