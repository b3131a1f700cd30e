#pragma once

#include "Disk.h"

#include <TLXX/NvmeQuery.h>

#include <optional>
#include <string>

namespace TLXX {

struct CQuerySession::Native
{
    explicit Native(std::string path);

    /** The disk. Opens it if necessary. */
    Platform::CDisk& Disk();

    const std::string m_Path;
    std::optional<Platform::CDisk> m_Disk;
    Native* const m_Outer;
};

/** The innermost session of this thread, if it is for `path`; otherwise null. */
CQuerySession::Native* sessionOf(const std::string& path);

/** Calls `ask` with the disk at `path`, which is that of the session if there is one. */
template<typename Ask>
auto withDisk(const std::string& path, Ask ask)
{
    if (CQuerySession::Native* const session = sessionOf(path))
        return ask(session->Disk());
    Platform::CDisk disk(path);
    return ask(disk);
}

} // namespace TLXX
