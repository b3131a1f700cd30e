#pragma once

#include <cstdint>

namespace TestSupport {

/** A pipe to which nothing else writes. A thread that reads from it waits as if a drive did not answer. */
class CSilentPipe
{
public:
    CSilentPipe();
    ~CSilentPipe();
    CSilentPipe(const CSilentPipe&) = delete;
    CSilentPipe& operator=(const CSilentPipe&) = delete;

    /** Waits for a byte; returns whether one came. */
    bool ReadByte() const;
    /** The same as a call that can be cancelled. */
    bool ReadInterruptibly() const;
    void WriteByte() const;

private:
    std::intptr_t m_Reader;
    std::intptr_t m_Writer;
};

} // namespace TestSupport
