#pragma once

#include <ntddk.h>

enum
{
    IDENTIFY_PAGES = 2,
    LOG_PAGES = 256
};

/** One disk of the test. */
typedef struct Disk
{
    ULONG number;
    UNICODE_STRING links[2]; ///< its names for programs: by number and by interface
    WCHAR linkTexts[2][256];
    ULONG failures[IDENTIFY_PAGES +
                   LOG_PAGES]; ///< how often each page was refused since the last device number
} Disk;

/** Returns the disk's number. Every enumeration asks for it first. */
NTSTATUS tellNumber(Disk* disk, void* buffer, ULONG outputSize, ULONG_PTR* returned);

/** Tells where the disk is on its bus; its logical unit is 0 unless the `.how` file has another one. */
NTSTATUS tellAddress(Disk* disk, void* buffer, ULONG outputSize, ULONG_PTR* returned);

/**
 * Answers a request for a page with the content of the page's file. Its `.how` file may change the answer.
 */
NTSTATUS tellPage(Disk* disk, void* buffer, ULONG inputSize, ULONG outputSize, ULONG_PTR* returned);
