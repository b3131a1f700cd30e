#include "Files.h"

#include <stdio.h>

#define FOLDER L"\\??\\C:\\StorageTest\\"

enum
{
    LARGEST_FILE = 1 << 16
};

DataPath diskFile(ULONG disk, const char* name, const char* suffix)
{
    DataPath path;
    _snwprintf(path.text, ARRAYSIZE(path.text), FOLDER L"%lu\\%hs%hs", disk, name, suffix);
    return path;
}

DataPath commonFile(const char* name)
{
    DataPath path;
    _snwprintf(path.text, ARRAYSIZE(path.text), FOLDER L"%hs", name);
    return path;
}

static NTSTATUS open(const DataPath* path, ACCESS_MASK access, ULONG disposition, HANDLE* file)
{
    UNICODE_STRING name;
    OBJECT_ATTRIBUTES attributes;
    IO_STATUS_BLOCK status;
    RtlInitUnicodeString(&name, path->text);
    InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, NULL, NULL);
    return ZwCreateFile(file, access | SYNCHRONIZE, &attributes, &status, NULL, FILE_ATTRIBUTE_NORMAL,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, disposition,
                        FILE_SYNCHRONOUS_IO_NONALERT | FILE_NON_DIRECTORY_FILE, NULL, 0);
}

char* readFile(const DataPath* path, ULONG* size)
{
    HANDLE file;
    if (!NT_SUCCESS(open(path, GENERIC_READ, FILE_OPEN, &file)))
        return NULL;
    char* data = ExAllocatePool(NonPagedPool, LARGEST_FILE + 1);
    IO_STATUS_BLOCK status = {.Information = 0};
    NTSTATUS result = STATUS_NO_MEMORY;
    if (data)
        result = ZwReadFile(file, NULL, NULL, NULL, &status, data, LARGEST_FILE, NULL, NULL);
    ZwClose(file);
    if (data && !NT_SUCCESS(result) && result != STATUS_END_OF_FILE) {
        ExFreePool(data);
        return NULL;
    }
    if (data) {
        *size = (ULONG)status.Information;
        data[*size] = '\0';
    }
    return data;
}

void appendToFile(const DataPath* path, const char* text)
{
    HANDLE file;
    IO_STATUS_BLOCK status;
    if (!NT_SUCCESS(open(path, FILE_APPEND_DATA, FILE_OPEN_IF, &file)))
        return;
    ZwWriteFile(file, NULL, NULL, NULL, &status, (void*)text, (ULONG)strlen(text), NULL, NULL);
    ZwClose(file);
}
