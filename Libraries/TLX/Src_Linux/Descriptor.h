#pragma once

#include <unistd.h>

namespace TLX::Threading {

/** Owns a file descriptor. */
class CDescriptor
{
public:
    explicit CDescriptor(int descriptor) noexcept : m_Descriptor(descriptor) {}
    ~CDescriptor()
    {
        if (Valid())
            close(m_Descriptor);
    }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    bool Valid() const { return m_Descriptor >= 0; }
    int Get() const { return m_Descriptor; }

private:
    int m_Descriptor;
};

} // namespace TLX::Threading
