#pragma once

#include <ntddk.h>

/** A path below the folder of the test's data, which the driver and the test both know. */
typedef struct DataPath
{
    WCHAR text[128];
} DataPath;

/** The path of a file of one disk, such as `7\identify-controller.bin`. */
DataPath diskFile(ULONG disk, const char* name, const char* suffix);

/** The path of a file of all disks. */
DataPath commonFile(const char* name);

/**
 * The whole file with a zero after it, in memory for `ExFreePool`; null when it cannot be read. `size` does
 * not count the zero.
 */
char* readFile(const DataPath* path, ULONG* size);

/** Adds a text at the end of a file. */
void appendToFile(const DataPath* path, const char* text);
