#pragma once

#include "Workers.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace Reader {

/** A controller: its number, and that of its node in sysfs. */
using Controller = std::pair<std::uint32_t, std::uint64_t>;

/** One command to one controller. Two that are equal get the same answer. */
struct Command
{
    Controller m_Controller;
    std::uint32_t m_Kind = 0; ///< one bit of `CReaderRequest::m_Commands`
    std::uint32_t m_NamespaceId = 0;
    std::uint32_t m_Offset = 0;
    std::uint32_t m_Length = 0;

    friend auto operator<=>(const Command&, const Command&) = default;
};

/** What became of a command. */
struct Answer
{
    std::uint32_t m_Status = 0; ///< as the queries of `NvmeQuery.h` return it
    /** Null unless the status is 0. Without the zeros at its end. */
    std::shared_ptr<const std::vector<std::uint8_t>> m_Block;
};

/** An open controller. For use by one thread. */
class IDrive
{
public:
    IDrive() = default;
    virtual ~IDrive() = default;
    IDrive(const IDrive&) = delete;
    IDrive& operator=(const IDrive&) = delete;

    /** Blocks until the drive has answered. Fills the block, or returns why not. */
    virtual std::uint32_t ask(const Command& command, std::span<std::uint8_t> block) = 0;
};

/** Opens a controller. Called on any thread. */
using OpenDrive = std::function<std::unique_ptr<IDrive>(const Controller&)>;

/** Who asked for a command. */
struct Asker
{
    std::uint64_t m_Client = 0;
    std::uint64_t m_Sequence = 0;

    friend auto operator<=>(const Asker&, const Asker&) = default;
};

/** The answer for one asker. */
struct Delivery
{
    Asker m_Asker;
    std::uint32_t m_Kind = 0;
    Answer m_Answer;
};

/** How long an answer serves others who ask the same, in milliseconds. */
inline constexpr std::uint64_t ANSWER_AGE = 1000;

/**
 * Sends commands to controllers, at most one at a time to each, so that a silent one delays only its own.
 * A client that asks what is being asked already gets the same answer. So does a client that asks within a
 * second of an answer. For use by one thread.
 */
class Drives
{
public:
    /**
     * `ready` is called on any thread when `take` has something new, but not for each answer: see
     * `mayHaveMore`. It must not throw.
     */
    Drives(OpenDrive open, std::function<void()> ready);
    /** Waits for no drive. */
    ~Drives();
    Drives(const Drives&) = delete;
    Drives& operator=(const Drives&) = delete;

    /**
     * Sends those of `commands`, all for one controller, whose answers are not known. `take` brings the
     * answers. Commands that are asked for together are sent on one opening of the controller.
     */
    void ask(const std::vector<Command>& commands, const Asker& asker);

    /** The answers that have come, in their order. */
    std::vector<Delivery> take();

    /** Whether `take` may get something new without a call of `ready`. Then it is called again after some
     * milliseconds. */
    bool mayHaveMore() const;

    /** Called when nothing has happened for these milliseconds. The next answer is announced at once, unless
     * there is one already. */
    void hurry();

    /** Nothing more is delivered to this client. What only it asked for is not sent any more. */
    void forget(std::uint64_t client);

    /** From now on no answer is used that was asked for before: drives may have come, gone or warned. */
    void doubt();

    /** Whether commands wait for a thread; see `Workers`. */
    bool waiting() const { return m_Workers.waiting(); }
    void grow() { m_Workers.grow(); }

private:
    struct Flight;
    struct Results;
    struct Queue
    {
        std::deque<std::shared_ptr<Flight>> m_Waiting;
        std::vector<std::shared_ptr<Flight>> m_Sent; ///< with a thread, in this order
    };
    struct Remembered
    {
        std::uint64_t m_Instant = 0;
        Answer m_Answer;
    };

    void queue(const Command& command, const Asker& asker);
    const Answer* recall(const Command& command);
    void remember(const Command& command, const Answer& answer);
    static std::shared_ptr<Flight> find(Queue& queue, const Command& command, std::uint64_t doubts);
    void send(const Controller& controller, Queue& queue);
    void deliver(const std::shared_ptr<Flight>& flight, const Answer& answer);

    const OpenDrive m_Open;
    const std::shared_ptr<Results> m_Results; ///< shared with the jobs
    std::map<Controller, Queue> m_Queues;     ///< of controllers that owe an answer
    std::map<Command, Remembered> m_Memory;
    std::deque<std::pair<std::uint64_t, Command>> m_Ages; ///< what is in the memory, the oldest first
    std::uint64_t m_Doubts = 0;
    std::vector<Delivery> m_Ready;
    Workers m_Workers;
};

} // namespace Reader
