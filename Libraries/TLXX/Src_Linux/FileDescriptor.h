#pragma once

#include <TLX/Linux/Descriptor.h>

#include <cerrno>
#include <cstdint>

#include <fcntl.h>

namespace TLXX::Linux {

/** An open file or device node, closed on destruction. Opened for reading only. */
class CFileDescriptor
{
public:
    explicit CFileDescriptor(const char* path) : CFileDescriptor(::open(path, O_RDONLY | O_CLOEXEC)) {}
    /** `path` is relative to the open folder `above`; `flags` are additional ones. */
    CFileDescriptor(const char* path, int above, int flags)
        : CFileDescriptor(::openat(above, path, O_RDONLY | O_CLOEXEC | flags))
    {}
    /** An object for a file that could not be opened. */
    static CFileDescriptor Failed(int error) { return {-1, error}; }

    /** 0, or the reason why it could not be opened. */
    std::uint32_t Status() const { return m_Status; }
    int Get() const { return m_Descriptor.Get(); }

private:
    explicit CFileDescriptor(int descriptor) : CFileDescriptor(descriptor, descriptor < 0 ? errno : 0) {}
    CFileDescriptor(int descriptor, int error)
        : m_Descriptor(descriptor), m_Status(static_cast<std::uint32_t>(error))
    {}

    TLX::Linux::CDescriptor m_Descriptor;
    std::uint32_t m_Status;
};

} // namespace TLXX::Linux
