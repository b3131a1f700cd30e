#pragma once

#include <TLXX/DriveSource.h>
#include <TLXX/NvmeStructures.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace Host {

/** How long one drive may take for all its commands of one round, in milliseconds. */
inline constexpr std::uint64_t ROUND_DEADLINE = 5000;

/** How often a drive that has never answered is tried at first, and the pause in between in milliseconds. */
inline constexpr unsigned NEWCOMER_TRIES = 6;
inline constexpr std::uint64_t NEWCOMER_PAUSE = 500;

/** What is known of a drive's answers. Times are in UTC milliseconds. */
struct DriveRecord
{
    /** Its last Identify Controller; none: it has never answered. */
    std::optional<TLXX::NVME_IDENTIFY_CONTROLLER> m_Identify;
    bool m_Answering = false;
    std::optional<std::uint64_t> m_LastAnswer;
    std::optional<std::uint64_t> m_SilentSince;
    std::uint32_t m_SilentRounds = 0;
    std::uint32_t m_Status = 0; ///< of the last round
};

/**
 * Reads drives in rounds, all of them side by side. The logic of `ParallelDrives`, which has the rules. For
 * one thread, except for `stopWaiting`. Reads time from `TLX::Misc` alone.
 */
class DriveRounds
{
public:
    explicit DriveRounds(std::unique_ptr<TLXX::IDriveSource> source);

    /** Asks these drives for what was asked of them since the last round. Forgets all others. */
    void read(const std::vector<TLXX::CDriveAddress>& drives);

    /**
     * The answer of the last round. What the round did not ask for is asked now, of all drives of the same
     * maker. Copies the whole block when it returns 0.
     */
    std::uint32_t query(const TLXX::CDriveAddress& drive, const TLXX::CDriveCommand& command,
                        std::span<std::uint8_t> block);

    /** Null for a drive that the last round did not have. */
    const DriveRecord* record(const std::string& instance) const;

    /** How many commands failed or got no answer in time so far. */
    std::uint64_t failures() const { return m_Failures; }

    /** From now on nothing here waits. Safe from any thread. */
    void stopWaiting();
    bool stopped() const { return m_Stopped; }

private:
    struct Reply
    {
        std::uint32_t m_Status = 0;
        std::vector<std::uint8_t> m_Block;
    };

    enum class State : std::uint8_t
    {
        Idle,
        Asked,   ///< and expected to answer until `m_Due`
        Pausing, ///< before the next try, at `m_NextTry`
    };

    struct Drive
    {
        TLXX::CDriveAddress m_Address;
        DriveRecord m_Record;
        std::map<TLXX::CDriveCommand, Reply> m_Replies;           ///< of this round
        std::set<TLXX::CDriveCommand> m_Wanted;                   ///< since the last round
        std::map<std::uint8_t, std::vector<std::uint8_t>> m_Logs; ///< the last good vendor logs
        State m_State = State::Idle;
        bool m_Read = false;         ///< a round has asked it
        bool m_Present = true;       ///< in the last round, or asked since then
        std::size_t m_Owed = 0;      ///< commands that have not come back
        unsigned m_Tries = 0;        ///< of rounds, so far
        std::uint64_t m_AskedAt = 0; ///< UTC milliseconds
        std::uint64_t m_Due = 0;
        std::uint64_t m_NextTry = 0;
        std::uint64_t m_Left = ROUND_DEADLINE; ///< of its deadline in this round
    };

    static bool mayAnswer(const Drive& drive);
    Drive& known(const TLXX::CDriveAddress& address);
    void forgetAbsent();
    void send(Drive& drive, const std::vector<TLXX::CDriveCommand>& commands);
    void tryAgain(Drive& drive);
    void take(TLXX::CDriveAnswer answer);
    void takeIdentify(Drive& drive, const Reply& reply);
    void finish(Drive& drive);
    void rest(Drive& drive);
    void conclude(Drive& drive);
    void fallSilent(Drive& drive, std::uint32_t status);
    void awaitAll();
    void await(const Drive& drive);
    void awaitOne();
    void lookAtTheClock();
    void askNow(Drive& drive, const TLXX::CDriveCommand& command);

    static constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

    const std::unique_ptr<TLXX::IDriveSource> m_Source;
    std::atomic<bool> m_Stopped = false;
    std::unordered_map<std::string, Drive> m_Drives; ///< by instance
    std::size_t m_Busy = 0;                          ///< drives that are not idle
    std::uint64_t m_Failures = 0;
    std::uint64_t m_NextLook = 0; ///< nothing is due before, in milliseconds of `TLX::Misc::monotonic`
};

} // namespace Host
