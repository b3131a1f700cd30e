#pragma once

#include <ntddk.h>

// The storage driver's contract for requests that carry NVMe pages. The toolchain declares it for programs
// only (winioctl.h), and a driver cannot include that header.

#define IOCTL_GET_DEVICE_NUMBER 0x002D1080
#define IOCTL_QUERY_PROPERTY 0x002D1400
#define IOCTL_GET_ADDRESS 0x00041018

enum
{
    ADAPTER_PROTOCOL_PROPERTY = 49,
    DEVICE_PROTOCOL_PROPERTY = 50,
    STANDARD_QUERY = 0,
    PROTOCOL_NVME = 3,
    DATA_IDENTIFY = 1,
    DATA_LOG_PAGE = 2,
    IDENTIFY_NAMESPACE = 0,
    IDENTIFY_CONTROLLER = 1
};

typedef struct DeviceNumber
{
    ULONG deviceType;
    ULONG deviceNumber;
    ULONG partitionNumber;
} DeviceNumber;
C_ASSERT(sizeof(DeviceNumber) == 12);

typedef struct UnitAddress
{
    ULONG length;
    UCHAR port;
    UCHAR path;
    UCHAR target;
    UCHAR unit;
} UnitAddress;
C_ASSERT(sizeof(UnitAddress) == 8);

typedef struct ProtocolData
{
    ULONG protocolType;
    ULONG dataType;
    ULONG requestValue;
    ULONG requestSubValue;
    ULONG dataOffset; ///< from the start of this structure
    ULONG dataLength;
    ULONG fixedReturnData;
    ULONG requestSubValues[3];
} ProtocolData;
C_ASSERT(sizeof(ProtocolData) == 40);

typedef struct PropertyQuery
{
    ULONG propertyId;
    ULONG queryType;
    ProtocolData protocol;
} PropertyQuery;
C_ASSERT(sizeof(PropertyQuery) == 48);

typedef struct PropertyAnswer
{
    ULONG version;
    ULONG size;
    ProtocolData protocol;
    UCHAR data[];
} PropertyAnswer;
C_ASSERT(FIELD_OFFSET(PropertyAnswer, data) == 48);
