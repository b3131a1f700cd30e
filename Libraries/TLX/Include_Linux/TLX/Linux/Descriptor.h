#pragma once

#include <utility>

#include <unistd.h>

namespace TLX::Linux {

/** Owns a file descriptor and closes it on destruction. */
class CDescriptor
{
public:
    /** Owns none. */
    CDescriptor() noexcept = default;
    /** A negative value means that it owns none. */
    explicit CDescriptor(int descriptor) noexcept : m_Descriptor(descriptor) {}
    ~CDescriptor()
    {
        if (Valid())
            close(m_Descriptor);
    }
    CDescriptor(CDescriptor&& other) noexcept : m_Descriptor(std::exchange(other.m_Descriptor, -1)) {}
    CDescriptor& operator=(CDescriptor&& other) noexcept
    {
        std::swap(m_Descriptor, other.m_Descriptor);
        return *this;
    }

    bool Valid() const { return m_Descriptor >= 0; }
    int Get() const { return m_Descriptor; }
    /** Owns none any more; the caller closes it. */
    [[nodiscard]] int Release() noexcept { return std::exchange(m_Descriptor, -1); }

private:
    int m_Descriptor = -1;
};

} // namespace TLX::Linux
