#include "Disk.h"

#include "Files.h"
#include "ProtocolData.h"

#include <stdio.h>

/** Where the driver finds an answer. */
typedef struct Page
{
    ULONG index; ///< into the disk's counts of failures
    char name[32];
} Page;

/** How a request is answered: the numbers of the `.how` file. A number that is missing is all ones. */
typedef struct Manner
{
    BOOLEAN wait;   ///< `wait`: no answer before the file says something else
    ULONG failures; ///< `failures=`: how many requests fail after each enumeration; without it, all do
    ULONG status;   ///< `status=`: what they fail with
    ULONG offset;   ///< `offset=`: where the answer says that the page begins
    ULONG length;   ///< `length=`: what the answer says of the page's length
    ULONG unit;     ///< `unit=`: the logical unit at which the disk says it is
    ULONG subValue; ///< `subvalue=`: the only one with which the page is given; without it, any
    ULONG returned; ///< `returned=`: how many bytes of the answer are transferred
} Manner;

static const ULONG UNSET = 0xFFFFFFFF;

static ULONG numberBehind(const char* text, const char* key)
{
    const char* found = strstr(text, key);
    ULONG number = UNSET;
    if (found)
        RtlCharToInteger(found + strlen(key), 0, &number);
    return number;
}

static Manner readManner(const Disk* disk, const char* name)
{
    Manner manner = {FALSE, UNSET, UNSET, UNSET, UNSET, UNSET, UNSET, UNSET};
    const DataPath path = diskFile(disk->number, name, ".how");
    ULONG size;
    char* text = readFile(&path, &size);
    if (!text)
        return manner;
    manner.wait = strstr(text, "wait") != NULL;
    manner.failures = numberBehind(text, "failures=");
    manner.status = numberBehind(text, "status=");
    manner.offset = numberBehind(text, "offset=");
    manner.length = numberBehind(text, "length=");
    manner.unit = numberBehind(text, "unit=");
    manner.subValue = numberBehind(text, "subvalue=");
    manner.returned = numberBehind(text, "returned=");
    ExFreePool(text);
    return manner;
}

static void record(const Disk* disk, const char* what, NTSTATUS status)
{
    const DataPath path = commonFile("requests.log");
    char line[80];
    _snprintf(line, sizeof(line), "%lu %s %08lx\n", disk->number, what, (ULONG)status);
    appendToFile(&path, line);
}

static Manner awaitManner(const Disk* disk, const char* name)
{
    LARGE_INTEGER tenMilliseconds = {.QuadPart = -100000};
    Manner manner = readManner(disk, name);
    if (manner.wait)
        record(disk, name, STATUS_PENDING);
    while (manner.wait) {
        KeDelayExecutionThread(KernelMode, FALSE, &tenMilliseconds);
        manner = readManner(disk, name);
    }
    return manner;
}

static BOOLEAN refuses(const Manner* manner, ULONG* failures)
{
    if (manner->status == UNSET || *failures >= manner->failures)
        return FALSE;
    ++*failures;
    return TRUE;
}

NTSTATUS tellNumber(Disk* disk, void* buffer, ULONG outputSize, ULONG_PTR* returned)
{
    static const char name[] = "device-number";
    const Manner manner = awaitManner(disk, name);
    DeviceNumber* answer = buffer;
    NTSTATUS status = STATUS_SUCCESS;
    memset(disk->failures, 0, sizeof(disk->failures));
    if (outputSize < sizeof(*answer)) {
        status = STATUS_BUFFER_TOO_SMALL;
    } else if (manner.status != UNSET) {
        status = (NTSTATUS)manner.status;
    } else {
        answer->deviceType = FILE_DEVICE_DISK;
        answer->deviceNumber = disk->number;
        answer->partitionNumber = 0;
        *returned = sizeof(*answer);
    }
    record(disk, name, status);
    return status;
}

NTSTATUS tellAddress(Disk* disk, void* buffer, ULONG outputSize, ULONG_PTR* returned)
{
    static const char name[] = "scsi-address";
    const Manner manner = awaitManner(disk, name);
    UnitAddress* answer = buffer;
    NTSTATUS status = STATUS_SUCCESS;
    if (outputSize < sizeof(*answer)) {
        status = STATUS_BUFFER_TOO_SMALL;
    } else if (manner.status != UNSET) {
        status = (NTSTATUS)manner.status;
    } else {
        *answer =
            (UnitAddress){.length = sizeof(*answer), .unit = manner.unit == UNSET ? 0 : (UCHAR)manner.unit};
        *returned = sizeof(*answer);
    }
    record(disk, name, status);
    return status;
}

/** Whether a storage driver understands the request, and which page it asks for. */
static BOOLEAN pageOf(const PropertyQuery* query, ULONG inputSize, ULONG outputSize, Page* page)
{
    const ProtocolData* protocol = &query->protocol;
    if (inputSize < sizeof(*query) || query->queryType != STANDARD_QUERY ||
        (query->propertyId != ADAPTER_PROTOCOL_PROPERTY && query->propertyId != DEVICE_PROTOCOL_PROPERTY) ||
        protocol->protocolType != PROTOCOL_NVME || protocol->dataOffset != sizeof(*protocol) ||
        outputSize < sizeof(PropertyAnswer) || protocol->dataLength > outputSize - sizeof(PropertyAnswer))
        return FALSE;
    if (protocol->dataType == DATA_IDENTIFY && protocol->requestValue == IDENTIFY_CONTROLLER) {
        *page = (Page){0, "identify-controller"};
        return TRUE;
    }
    if (protocol->dataType == DATA_IDENTIFY && protocol->requestValue == IDENTIFY_NAMESPACE) {
        *page = (Page){1, "identify-namespace"};
        return TRUE;
    }
    if (protocol->dataType == DATA_LOG_PAGE && protocol->requestValue < LOG_PAGES) {
        page->index = IDENTIFY_PAGES + protocol->requestValue;
        _snprintf(page->name, sizeof(page->name), "log-%02lx", protocol->requestValue);
        return TRUE;
    }
    return FALSE;
}

static NTSTATUS copyPage(const Disk* disk, const Page* page, const Manner* manner, PropertyAnswer* answer,
                         ULONG_PTR* returned)
{
    const DataPath path = diskFile(disk->number, page->name, ".bin");
    ULONG size;
    char* data = readFile(&path, &size);
    if (!data)
        return STATUS_INVALID_DEVICE_REQUEST;
    ProtocolData* protocol = &answer->protocol;
    if (size < protocol->dataLength)
        protocol->dataLength = size;
    memcpy(answer->data, data, protocol->dataLength);
    ExFreePool(data);

    *returned = sizeof(*answer) + protocol->dataLength;
    if (manner->returned < *returned)
        *returned = manner->returned;
    if (manner->offset != UNSET)
        protocol->dataOffset = manner->offset;
    if (manner->length != UNSET)
        protocol->dataLength = manner->length;
    return STATUS_SUCCESS;
}

NTSTATUS tellPage(Disk* disk, void* buffer, ULONG inputSize, ULONG outputSize, ULONG_PTR* returned)
{
    Page page;
    if (!pageOf(buffer, inputSize, outputSize, &page)) {
        record(disk, "not-understood", STATUS_INVALID_PARAMETER);
        return STATUS_INVALID_PARAMETER;
    }
    const Manner manner = awaitManner(disk, page.name);
    // One buffer holds the request and then the answer, and both keep the protocol's data at the same place.
    PropertyAnswer* answer = buffer;
    NTSTATUS status = (NTSTATUS)manner.status;
    if (manner.subValue != UNSET && answer->protocol.requestSubValue != manner.subValue) {
        status = STATUS_INVALID_PARAMETER;
    } else if (!refuses(&manner, &disk->failures[page.index])) {
        answer->version = answer->size = sizeof(*answer);
        status = copyPage(disk, &page, &manner, answer, returned);
    }
    record(disk, page.name, status);
    return status;
}
