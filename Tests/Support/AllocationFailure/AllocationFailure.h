#pragma once

/** The exception of the allocation that fails. */
enum class Failure
{
    OutOfMemory,
    SomethingElse,
};

/** While it lives, lets `count` allocations of this process succeed and the next one fail. */
class CAllocationFailure
{
public:
    explicit CAllocationFailure(long count, Failure failure = Failure::OutOfMemory);
    ~CAllocationFailure();
    CAllocationFailure(const CAllocationFailure&) = delete;
    CAllocationFailure& operator=(const CAllocationFailure&) = delete;

    /** Whether the failing allocation is still to come. */
    static bool Pending();
};
