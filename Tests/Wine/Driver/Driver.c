// A kernel driver for tests: disks that answer requests for NVMe pages with what the test has put in files.
//
// It reads its disks when it starts, from lines of `disks.txt`: each has a number and the name of an
// interface. The files of a disk are in the folder named after its number. The driver reads them at each
// request, so the test can change them. `PAGE.bin` holds a page. `PAGE.how` may change how it is answered
// (see Disk.c). Every request becomes a line of `requests.log`: the disk, the page and the status.

#include "Disk.h"
#include "Files.h"
#include "ProtocolData.h"

#include <stdio.h>

static NTSTATUS finish(IRP* request, NTSTATUS status, ULONG_PTR returned)
{
    request->IoStatus.Status = status;
    request->IoStatus.Information = returned;
    IoCompleteRequest(request, IO_NO_INCREMENT);
    return status;
}

static NTSTATUS NTAPI openOrClose(DEVICE_OBJECT* device, IRP* request)
{
    UNREFERENCED_PARAMETER(device);
    return finish(request, STATUS_SUCCESS, 0);
}

static NTSTATUS NTAPI control(DEVICE_OBJECT* device, IRP* request)
{
    const IO_STACK_LOCATION* location = IoGetCurrentIrpStackLocation(request);
    const ULONG inputSize = location->Parameters.DeviceIoControl.InputBufferLength;
    const ULONG outputSize = location->Parameters.DeviceIoControl.OutputBufferLength;
    void* buffer = request->AssociatedIrp.SystemBuffer;
    Disk* disk = device->DeviceExtension;
    ULONG_PTR returned = 0;
    NTSTATUS status = STATUS_INVALID_DEVICE_REQUEST;
    switch (location->Parameters.DeviceIoControl.IoControlCode) {
    case IOCTL_GET_DEVICE_NUMBER:
        status = tellNumber(disk, buffer, outputSize, &returned);
        break;
    case IOCTL_GET_ADDRESS:
        status = tellAddress(disk, buffer, outputSize, &returned);
        break;
    case IOCTL_QUERY_PROPERTY:
        status = tellPage(disk, buffer, inputSize, outputSize, &returned);
        break;
    }
    return finish(request, status, returned);
}

static void NTAPI unload(DRIVER_OBJECT* driver)
{
    while (driver->DeviceObject) {
        DEVICE_OBJECT* device = driver->DeviceObject;
        Disk* disk = device->DeviceExtension;
        for (unsigned i = 0; i < ARRAYSIZE(disk->links); ++i)
            IoDeleteSymbolicLink(&disk->links[i]);
        IoDeleteDevice(device);
    }
}

static NTSTATUS addDisk(DRIVER_OBJECT* driver, ULONG number, const char* interfaceName)
{
    WCHAR deviceText[64];
    UNICODE_STRING deviceName;
    DEVICE_OBJECT* device;
    _snwprintf(deviceText, ARRAYSIZE(deviceText), L"\\Device\\StorageTest%lu", number);
    RtlInitUnicodeString(&deviceName, deviceText);
    NTSTATUS status = IoCreateDevice(driver, sizeof(Disk), &deviceName, FILE_DEVICE_DISK, 0, FALSE, &device);
    if (!NT_SUCCESS(status))
        return status;
    Disk* disk = device->DeviceExtension;
    memset(disk, 0, sizeof(*disk));
    disk->number = number;
    _snwprintf(disk->linkTexts[0], ARRAYSIZE(disk->linkTexts[0]), L"\\??\\PhysicalDrive%lu", number);
    _snwprintf(disk->linkTexts[1], ARRAYSIZE(disk->linkTexts[1]), L"\\??\\%hs", interfaceName);
    for (unsigned i = 0; i < ARRAYSIZE(disk->links) && NT_SUCCESS(status); ++i) {
        RtlInitUnicodeString(&disk->links[i], disk->linkTexts[i]);
        status = IoCreateSymbolicLink(&disk->links[i], &deviceName);
    }
    device->Flags &= ~DO_DEVICE_INITIALIZING;
    return status;
}

static NTSTATUS addDisks(DRIVER_OBJECT* driver)
{
    const DataPath path = commonFile("disks.txt");
    NTSTATUS status = STATUS_SUCCESS;
    ULONG size;
    char* text = readFile(&path, &size);
    if (!text)
        return STATUS_NO_SUCH_FILE;
    char* line = text;
    while (*line && NT_SUCCESS(status)) {
        char* end = strchr(line, '\n');
        char* blank = strchr(line, ' ');
        ULONG number;
        if (!end || !blank || blank > end) {
            status = STATUS_INVALID_PARAMETER;
            break;
        }
        *end = '\0';
        status = RtlCharToInteger(line, 10, &number);
        if (NT_SUCCESS(status))
            status = addDisk(driver, number, blank + 1);
        line = end + 1;
    }
    ExFreePool(text);
    return status;
}

NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING* registryPath)
{
    UNREFERENCED_PARAMETER(registryPath);
    driver->MajorFunction[IRP_MJ_CREATE] = openOrClose;
    driver->MajorFunction[IRP_MJ_CLOSE] = openOrClose;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = control;
    driver->DriverUnload = unload;
    const NTSTATUS status = addDisks(driver);
    if (!NT_SUCCESS(status))
        unload(driver);
    return status;
}
