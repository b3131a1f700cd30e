#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace TestSupport {

/**
 * SQLite's file system with faults that a test plans. While it lives it is the default, so every file that
 * SQLite opens goes through it. Only one may exist, and one thread at a time may use it. No connection may be
 * open when it is destroyed.
 */
class CFaultyVfs
{
public:
    enum class Operation
    {
        Open,
        Write,
        Truncate,
        Sync,
        Delete,
        Lock,
    };
    static constexpr std::size_t OPERATIONS = 6;

    enum class Failure
    {
        Device, ///< the system reports an input or output error
        Full,   ///< the disk is full; for a lock, it is taken
    };

    /** What a kill leaves of writes. */
    enum class Kill
    {
        Process,     ///< all that was written before
        ProcessTorn, ///< the same, and the first half of the write in flight
        Machine,     ///< what was synchronised before
        MachineTorn, ///< the same, and what was written after that, but only in every second block
    };

    CFaultyVfs();
    ~CFaultyVfs();
    CFaultyVfs(const CFaultyVfs&) = delete;
    CFaultyVfs& operator=(const CFaultyVfs&) = delete;

    /** All operations since the beginning. Reading is none. */
    std::uint64_t Count() const;
    std::uint64_t Count(Operation operation) const;

    /** The operation after `others` others of its kind fails, and so do all later ones of this kind. */
    void FailFrom(Operation operation, std::uint64_t others, Failure failure);
    /** Only the operation after `others` others of its kind fails. */
    void FailOnce(Operation operation, std::uint64_t others, Failure failure);
    /** No planned fault is left. */
    void Heal();

    /**
     * The process "dies" at the operation that comes after `others` others of any kind: from there on nothing
     * changes any file, and every operation fails.
     */
    void KillAfter(std::uint64_t others, Kill kill);
    bool Killed() const;
    /** A new process may begin. Call it after every connection is closed. */
    void Revive();

    struct CState;

private:
    std::unique_ptr<CState> m_State;
};

} // namespace TestSupport
