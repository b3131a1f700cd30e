#include "AllocationFailure.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace {

// Constant-initialised, because allocations happen before any constructor of this program runs.
constinit long g_AllocationsLeft = -1; // negative: nothing is counted
constinit Failure g_Failure = Failure::OutOfMemory;

} // namespace

CAllocationFailure::CAllocationFailure(long count, Failure failure)
{
    g_Failure = failure;
    g_AllocationsLeft = count;
}

CAllocationFailure::~CAllocationFailure()
{
    g_AllocationsLeft = -1;
}

bool CAllocationFailure::Pending()
{
    return g_AllocationsLeft >= 0;
}

// Replaces the standard library's functions for every library of the process.
void* operator new(std::size_t size)
{
    if (g_AllocationsLeft >= 0 && g_AllocationsLeft-- == 0) {
        if (g_Failure == Failure::SomethingElse)
            throw std::runtime_error("not an allocation failure");
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

// Calls of a sanitizer's own functions would not reach these.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (...) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
