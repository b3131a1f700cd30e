#pragma once

/** What the allocation that is counted down to throws. */
enum class Failure
{
    OutOfMemory,
    SomethingElse,
};

/** Lets `count` allocations of this process succeed and the next one fail, while it lives. */
class CAllocationFailure
{
public:
    explicit CAllocationFailure(long count, Failure failure = Failure::OutOfMemory);
    ~CAllocationFailure();
    CAllocationFailure(const CAllocationFailure&) = delete;
    CAllocationFailure& operator=(const CAllocationFailure&) = delete;

    /** Whether the failing allocation has not come yet. */
    static bool Pending();
};
