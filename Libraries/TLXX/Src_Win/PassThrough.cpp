#include "DeviceInstance.h"
#include "Disk.h"
#include "NvmeStatus.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <type_traits>

#include <windows.h>
#include <ntddscsi.h>
#include <winioctl.h>

namespace TLXX {
namespace {

static_assert(IOCTL_STORAGE_QUERY_PROPERTY == 0x2D1400);
static_assert(StorageAdapterProtocolSpecificProperty == 49);
static_assert(StorageDeviceProtocolSpecificProperty == 50);
static_assert(PropertyStandardQuery == 0);
static_assert(ProtocolTypeNvme == 3);
static_assert(NVMeDataTypeIdentify == 1);
static_assert(NVMeDataTypeLogPage == 2);
static_assert(offsetof(STORAGE_PROPERTY_QUERY, QueryType) == 4);
static_assert(offsetof(STORAGE_PROPERTY_QUERY, AdditionalParameters) == 8);
static_assert(sizeof(STORAGE_PROTOCOL_SPECIFIC_DATA) == 40);
static_assert(offsetof(STORAGE_PROTOCOL_SPECIFIC_DATA, DataType) == 4);
static_assert(offsetof(STORAGE_PROTOCOL_SPECIFIC_DATA, ProtocolDataRequestValue) == 8);
static_assert(offsetof(STORAGE_PROTOCOL_SPECIFIC_DATA, ProtocolDataOffset) == 16);
static_assert(offsetof(STORAGE_PROTOCOL_SPECIFIC_DATA, ProtocolDataLength) == 20);
static_assert(sizeof(STORAGE_PROTOCOL_DATA_DESCRIPTOR) == 48);
static_assert(offsetof(STORAGE_PROTOCOL_DATA_DESCRIPTOR, ProtocolSpecificData) == 8);

static_assert(IOCTL_SCSI_GET_ADDRESS == 0x41018);
static_assert(sizeof(SCSI_ADDRESS) == 8);
static_assert(offsetof(SCSI_ADDRESS, Lun) == 7);

constexpr std::uint32_t CNS_NAMESPACE = 0x00;
constexpr std::uint32_t CNS_CONTROLLER = 0x01;
constexpr std::uint32_t LOG_HEALTH = 0x02;

/** The question to the system, followed by the room for its answer. */
template<typename Block>
struct CQuestion
{
    STORAGE_PROPERTY_ID m_Property;
    STORAGE_QUERY_TYPE m_Type;
    STORAGE_PROTOCOL_SPECIFIC_DATA m_Protocol;
    Block m_Block;
};

/** The answer is in the same memory; a descriptor replaces the question. */
template<typename Block>
union CExchange {
    CQuestion<Block> m_Question;
    STORAGE_PROTOCOL_DATA_DESCRIPTOR m_Answer;
    std::uint8_t m_Bytes[sizeof(CQuestion<Block>)];
};

/** The start of the answer's data, if all `size` bytes are within the `returned` ones. */
std::uint32_t locate(const STORAGE_PROTOCOL_DATA_DESCRIPTOR& answer, std::uint32_t returned,
                     std::uint32_t size, std::uint32_t& offset)
{
    constexpr std::uint32_t base = offsetof(STORAGE_PROTOCOL_DATA_DESCRIPTOR, ProtocolSpecificData);
    if (returned < sizeof answer || answer.Size < sizeof answer)
        return STATUS_SHORT_TRANSFER;
    const STORAGE_PROTOCOL_SPECIFIC_DATA& data = answer.ProtocolSpecificData;
    const std::uint32_t room = returned - base;
    if (data.ProtocolDataOffset < sizeof data || data.ProtocolDataOffset > room)
        return STATUS_BAD_ANSWER;
    if (data.ProtocolDataLength < size || room - data.ProtocolDataOffset < size)
        return STATUS_SHORT_TRANSFER;
    offset = base + data.ProtocolDataOffset;
    return STATUS_SUCCESS;
}

template<typename Block>
std::uint32_t read(const Win::CDeviceFile& device, STORAGE_PROPERTY_ID property, std::uint32_t dataType,
                   std::uint32_t request, std::uint32_t subValue, Block& target)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    static_assert(offsetof(CQuestion<Block>, m_Protocol) ==
                  offsetof(STORAGE_PROPERTY_QUERY, AdditionalParameters));
    static_assert(offsetof(CQuestion<Block>, m_Block) == sizeof(STORAGE_PROTOCOL_DATA_DESCRIPTOR));
    static_assert(sizeof(CQuestion<Block>) == sizeof(STORAGE_PROTOCOL_DATA_DESCRIPTOR) + sizeof(Block));

    if (device.Status() != STATUS_SUCCESS)
        return device.Status();

    CExchange<Block> exchange{};
    exchange.m_Question.m_Property = property;
    exchange.m_Question.m_Type = PropertyStandardQuery;
    STORAGE_PROTOCOL_SPECIFIC_DATA& protocol = exchange.m_Question.m_Protocol;
    protocol.ProtocolType = ProtocolTypeNvme;
    protocol.DataType = dataType;
    protocol.ProtocolDataRequestValue = request;
    protocol.ProtocolDataRequestSubValue = subValue;
    protocol.ProtocolDataOffset = sizeof protocol;
    protocol.ProtocolDataLength = sizeof(Block);

    DWORD returned = 0;
    const std::uint32_t error =
        device.Control(IOCTL_STORAGE_QUERY_PROPERTY, exchange.m_Bytes, exchange.m_Bytes, returned);
    if (error != STATUS_SUCCESS)
        return error;
    std::uint32_t offset = 0;
    const std::uint32_t status =
        locate(exchange.m_Answer, std::min<std::uint32_t>(returned, sizeof exchange), sizeof(Block), offset);
    if (status == STATUS_SUCCESS)
        std::memcpy(&target, exchange.m_Bytes + offset, sizeof(Block));
    return status;
}

constexpr std::uint32_t NO_SUB_VALUE = 0;

/** The identifier of the disk's namespace. The system numbers logical units like namespaces, but from 0. */
std::optional<std::uint32_t> namespaceIdentifier(const Win::CDeviceFile& device)
{
    if (device.Status() != STATUS_SUCCESS)
        return std::nullopt;
    SCSI_ADDRESS address{};
    DWORD returned = 0;
    const std::span room(reinterpret_cast<std::uint8_t*>(&address), sizeof address);
    if (device.Control(IOCTL_SCSI_GET_ADDRESS, {}, room, returned) != ERROR_SUCCESS ||
        returned < sizeof address)
        return std::nullopt;
    return address.Lun + 1U;
}

} // namespace

Platform::CDisk::CDisk(const std::string& path)
    : m_Instance(Win::deviceInstance(path)), m_Device(path, GENERIC_READ)
{}

std::uint32_t Platform::CDisk::IdentifyController(NVME_IDENTIFY_CONTROLLER& controller)
{
    return read(m_Device, StorageAdapterProtocolSpecificProperty, NVMeDataTypeIdentify, CNS_CONTROLLER,
                NO_SUB_VALUE, controller);
}

std::uint32_t Platform::CDisk::IdentifyNamespace(NVME_IDENTIFY_NAMESPACE& name_space)
{
    const auto ask = [&](std::uint32_t subValue) {
        return read(m_Device, StorageDeviceProtocolSpecificProperty, NVMeDataTypeIdentify, CNS_NAMESPACE,
                    subValue, name_space);
    };
    // Some drivers need the namespace; others refuse any, because the disk implies it.
    if (const auto identifier = namespaceIdentifier(m_Device)) {
        if (ask(*identifier) == STATUS_SUCCESS)
            return STATUS_SUCCESS;
    }
    return ask(NO_SUB_VALUE);
}

std::uint32_t Platform::CDisk::SmartHealthLog(NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return read(m_Device, StorageAdapterProtocolSpecificProperty, NVMeDataTypeLogPage, LOG_HEALTH,
                NO_SUB_VALUE, log);
}

std::uint32_t Platform::CDisk::VendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page)
{
    return read(m_Device, StorageAdapterProtocolSpecificProperty, NVMeDataTypeLogPage, logIdentifier,
                NO_SUB_VALUE, page);
}

} // namespace TLXX
