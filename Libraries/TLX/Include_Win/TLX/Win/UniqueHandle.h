#pragma once

#include <utility>

#include <windows.h>

namespace TLX::Win {

/**
 * Owns one system handle and closes it on destruction. `Policy` says which values are valid handles of its
 * kind and how they are closed; no other code closes handles.
 */
template<typename Policy>
class CUniqueHandle
{
public:
    using Handle = typename Policy::Handle;

    CUniqueHandle() noexcept : m_Handle(Policy::none()) {}
    explicit CUniqueHandle(Handle handle) noexcept : m_Handle(handle) {}
    ~CUniqueHandle()
    {
        if (Valid())
            Policy::close(m_Handle);
    }
    CUniqueHandle(CUniqueHandle&& other) noexcept : m_Handle(std::exchange(other.m_Handle, Policy::none())) {}
    CUniqueHandle& operator=(CUniqueHandle&& other) noexcept
    {
        std::swap(m_Handle, other.m_Handle);
        return *this;
    }

    /** Whether it owns a handle. */
    bool Valid() const { return m_Handle != Policy::none(); }
    /** The handle; the object keeps it. */
    Handle Get() const { return m_Handle; }

private:
    Handle m_Handle;
};

/** Mutexes, events, threads and other objects whose creation returns null on failure. */
struct KernelObjectPolicy
{
    using Handle = HANDLE;
    static Handle none() { return nullptr; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using CKernelObject = CUniqueHandle<KernelObjectPolicy>;

/** Files and devices. */
struct FilePolicy
{
    using Handle = HANDLE;
    static Handle none() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using CFileHandle = CUniqueHandle<FilePolicy>;

} // namespace TLX::Win
