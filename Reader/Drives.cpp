#include "Drives.h"

#include <TLX/Clock.h>
#include <TLXX/Linux/ReaderProtocol.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <mutex>
#include <new>

namespace Reader {
namespace {

/** More drives than this cannot be stuck at a time without delaying others. */
constexpr std::size_t MOST_THREADS = 1024;
/** Commands that are handed to a thread together. */
constexpr std::size_t MOST_TOGETHER = 16;
/** Answers that are remembered. Each has at most 4 KiB. */
constexpr std::size_t MOST_REMEMBERED = 1024;
/** Different commands that wait for one controller. Further ones fail. */
constexpr std::size_t MOST_WAITING = 1024;
/** In a status that the drive itself gave. Others are errors of the system, which may be over soon. */
constexpr std::uint32_t STATUS_FROM_DRIVE = 0x10000;

} // namespace

/** A command and those who wait for its answer. */
struct Drives::Flight
{
    const Command m_Command;
    const std::uint64_t m_Doubts; ///< of `Drives` when it was asked for
    std::vector<Asker> m_Askers;
};

/** What jobs bring back. */
struct Drives::Results
{
    explicit Results(std::function<void()> ready) : m_Announce(std::move(ready)) {}

    void wait()
    {
        const std::scoped_lock guard(m_Lock);
        ++m_Waiting;
    }

    void begin()
    {
        const std::scoped_lock guard(m_Lock);
        --m_Waiting;
    }

    /** `isLast`: the job brings nothing more. */
    void add(const std::shared_ptr<Flight>& flight, Answer answer, bool isLast)
    {
        const std::scoped_lock guard(m_Lock);
        if (m_Ended)
            return;
        m_Answers.emplace_back(flight, std::move(answer));
        // To wake a thread for each answer would cost more than the answer does.
        const bool isDue = m_Hurried || (isLast && m_Waiting == 0);
        if (isDue && !std::exchange(m_Announced, true))
            m_Announce(); // with the lock, so that it is not called after the end
    }

    std::vector<std::pair<std::shared_ptr<Flight>, Answer>> take()
    {
        const std::scoped_lock guard(m_Lock);
        m_Hurried = m_Hurried && m_Answers.empty();
        m_Announced = false;
        return std::exchange(m_Answers, {});
    }

    std::mutex m_Lock;
    std::vector<std::pair<std::shared_ptr<Flight>, Answer>> m_Answers;
    std::size_t m_Waiting = 0; ///< jobs that no thread has begun
    bool m_Announced = false;  ///< since answers were last taken
    bool m_Hurried = false;    ///< the next answer is announced at once
    bool m_Ended = false;
    const std::function<void()> m_Announce;
};

namespace {

Answer answerOf(IDrive* drive, const Command& command)
{
    if (drive == nullptr)
        return {TLXX::STATUS_NO_RESOURCES, nullptr};
    try {
        auto block = std::make_shared<std::vector<std::uint8_t>>(command.m_Length);
        const std::uint32_t status = drive->ask(command, *block);
        if (status != 0)
            return {status, nullptr};
        block->resize(TLXX::Linux::readerDataLength(*block));
        return {status, std::move(block)};
    } catch (const std::bad_alloc&) {
        return {TLXX::STATUS_NO_RESOURCES, nullptr};
    }
}

std::unique_ptr<IDrive> tryToOpen(const OpenDrive& open, const Controller& controller)
{
    try {
        return open(controller);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace

Drives::Drives(OpenDrive open, std::function<void()> ready)
    : m_Open(std::move(open)), m_Results(std::make_shared<Results>(std::move(ready))), m_Workers(MOST_THREADS)
{}

Drives::~Drives()
{
    const std::scoped_lock guard(m_Results->m_Lock);
    m_Results->m_Ended = true;
}

const Answer* Drives::recall(const Command& command)
{
    const std::uint64_t now = TLX::Misc::monotonic();
    while (!m_Ages.empty() && m_Ages.front().first + ANSWER_AGE <= now) {
        const auto& [instant, aged] = m_Ages.front();
        if (const auto found = m_Memory.find(aged);
            found != m_Memory.end() && found->second.m_Instant == instant)
            m_Memory.erase(found);
        m_Ages.pop_front();
    }
    const auto found = m_Memory.find(command);
    return found == m_Memory.end() ? nullptr : &found->second.m_Answer;
}

void Drives::remember(const Command& command, const Answer& answer)
{
    if (m_Ages.size() >= MOST_REMEMBERED) {
        m_Memory.erase(m_Ages.front().second);
        m_Ages.pop_front();
    }
    const std::uint64_t now = TLX::Misc::monotonic();
    m_Memory[command] = {now, answer};
    m_Ages.emplace_back(now, command);
}

std::shared_ptr<Drives::Flight> Drives::find(Queue& queue, const Command& command, std::uint64_t doubts)
{
    const auto isSame = [&](const std::shared_ptr<Flight>& flight) {
        return flight->m_Doubts == doubts && flight->m_Command == command;
    };
    if (const auto sent = std::find_if(queue.m_Sent.begin(), queue.m_Sent.end(), isSame);
        sent != queue.m_Sent.end())
        return *sent;
    const auto waiting = std::find_if(queue.m_Waiting.begin(), queue.m_Waiting.end(), isSame);
    return waiting == queue.m_Waiting.end() ? nullptr : *waiting;
}

void Drives::ask(const std::vector<Command>& commands, const Asker& asker)
{
    for (const Command& command : commands)
        queue(command, asker);
    if (commands.empty())
        return;
    const Controller& controller = commands.front().m_Controller;
    const auto found = m_Queues.find(controller);
    if (found != m_Queues.end() && found->second.m_Sent.empty())
        send(controller, found->second);
}

void Drives::queue(const Command& command, const Asker& asker)
{
    if (const Answer* const known = recall(command)) {
        m_Ready.push_back({asker, command.m_Kind, *known});
        return;
    }
    Queue& waiting = m_Queues[command.m_Controller];
    if (const std::shared_ptr<Flight> flight = find(waiting, command, m_Doubts)) {
        flight->m_Askers.push_back(asker);
        return;
    }
    if (waiting.m_Waiting.size() >= MOST_WAITING) {
        m_Ready.push_back({asker, command.m_Kind, {TLXX::STATUS_NO_RESOURCES, nullptr}});
        return;
    }
    waiting.m_Waiting.push_back(std::make_shared<Flight>(Flight{command, m_Doubts, {asker}}));
}

void Drives::send(const Controller& controller, Queue& queue)
{
    const auto count = static_cast<std::ptrdiff_t>(std::min(queue.m_Waiting.size(), MOST_TOGETHER));
    queue.m_Sent.assign(queue.m_Waiting.begin(), queue.m_Waiting.begin() + count);
    queue.m_Waiting.erase(queue.m_Waiting.begin(), queue.m_Waiting.begin() + count);
    m_Results->wait();
    m_Workers.add([open = m_Open, results = m_Results, controller, flights = queue.m_Sent] {
        results->begin();
        const std::unique_ptr<IDrive> drive = tryToOpen(open, controller);
        for (const std::shared_ptr<Flight>& flight : flights)
            results->add(flight, answerOf(drive.get(), flight->m_Command), flight == flights.back());
    });
}

void Drives::deliver(const std::shared_ptr<Flight>& flight, const Answer& answer)
{
    for (const Asker& asker : flight->m_Askers)
        m_Ready.push_back({asker, flight->m_Command.m_Kind, answer});
    const bool isOfDrive = answer.m_Status == 0 || (answer.m_Status & STATUS_FROM_DRIVE) != 0;
    if (flight->m_Doubts == m_Doubts && isOfDrive)
        remember(flight->m_Command, answer);
    const Controller controller = flight->m_Command.m_Controller;
    Queue& queue = m_Queues.at(controller);
    std::erase(queue.m_Sent, flight);
    if (!queue.m_Sent.empty())
        return;
    if (queue.m_Waiting.empty())
        m_Queues.erase(controller);
    else
        send(controller, queue);
}

std::vector<Delivery> Drives::take()
{
    for (const auto& [flight, answer] : m_Results->take())
        deliver(flight, answer);
    return std::exchange(m_Ready, {});
}

bool Drives::mayHaveMore() const
{
    const std::scoped_lock guard(m_Results->m_Lock);
    return !m_Queues.empty() && !m_Results->m_Hurried;
}

void Drives::hurry()
{
    const std::scoped_lock guard(m_Results->m_Lock);
    m_Results->m_Hurried = m_Results->m_Answers.empty();
}

void Drives::forget(std::uint64_t client)
{
    const auto isTheirs = [client](const Asker& asker) { return asker.m_Client == client; };
    std::erase_if(m_Ready, [&](const Delivery& delivery) { return isTheirs(delivery.m_Asker); });
    for (auto& [controller, queue] : m_Queues) {
        for (const std::shared_ptr<Flight>& flight : queue.m_Sent)
            std::erase_if(flight->m_Askers, isTheirs);
        std::erase_if(queue.m_Waiting, [&](const std::shared_ptr<Flight>& flight) {
            std::erase_if(flight->m_Askers, isTheirs);
            return flight->m_Askers.empty();
        });
    }
}

void Drives::doubt()
{
    ++m_Doubts;
    m_Memory.clear();
    m_Ages.clear();
}

} // namespace Reader
