#pragma once

#include <cerrno>
#include <cstdint>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace TLXX::Linux {

/** An open device node, closed when it goes. Opened for reading only. */
class CFileDescriptor
{
public:
    explicit CFileDescriptor(const std::string& path)
        : m_Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
          m_Status(m_Descriptor < 0 ? static_cast<std::uint32_t>(errno) : 0)
    {}
    ~CFileDescriptor()
    {
        if (m_Descriptor >= 0)
            ::close(m_Descriptor);
    }
    CFileDescriptor(const CFileDescriptor&) = delete;
    CFileDescriptor& operator=(const CFileDescriptor&) = delete;

    /** 0, or why it could not be opened. */
    std::uint32_t Status() const { return m_Status; }
    int Get() const { return m_Descriptor; }

private:
    int m_Descriptor;
    std::uint32_t m_Status;
};

} // namespace TLXX::Linux
