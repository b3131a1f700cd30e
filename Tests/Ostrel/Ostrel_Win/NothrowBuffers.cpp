#include "NothrowBuffers.h"

#include "Support_Win/ScriptedDevices.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace {

// Fixed size, because the counter of allocations must not allocate.
constinit std::array<void*, 16> g_Buffers{};

} // namespace

std::size_t openBuffers()
{
    return static_cast<std::size_t>(
        std::count_if(g_Buffers.begin(), g_Buffers.end(), [](const void* each) { return each != nullptr; }));
}

// Replaces the standard library's functions, for this program only.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    TestSupport::CScriptedDevices* const devices = TestSupport::scriptedDevices();
    if (devices != nullptr && devices->Fails("Allocate"))
        return nullptr;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (devices != nullptr)
        *std::find(g_Buffers.begin(), g_Buffers.end(), nullptr) = memory;
    return memory;
}

void operator delete[](void* memory) noexcept
{
    if (memory != nullptr)
        std::replace(g_Buffers.begin(), g_Buffers.end(), memory, static_cast<void*>(nullptr));
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    operator delete[](memory);
}

void* operator new[](std::size_t size)
{
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}
