#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>

#include <Reader/Drives.h>

namespace ReaderTest {

/**
 * Controllers of a test. Each answers with a block that tells the command and how many commands it got
 * before, so that a repeated answer can be told from a new one. Safe from any thread.
 */
class FakeControllers : public std::enable_shared_from_this<FakeControllers>
{
public:
    /** Their opening. The fake lives until the last drive is closed. */
    Reader::OpenDrive opening()
    {
        return [self = shared_from_this()](const Reader::Controller& controller) {
            const std::scoped_lock guard(self->m_Lock);
            ++self->m_Openings;
            return std::make_unique<Drive>(self, controller);
        };
    }

    /** From now on commands to this controller do not return. */
    void hang(std::uint32_t controller)
    {
        const std::scoped_lock guard(m_Lock);
        m_Hanging.insert(controller);
    }

    /** Lets one command to this controller return. The next one hangs again. */
    void answerOnce(std::uint32_t controller)
    {
        {
            const std::scoped_lock guard(m_Lock);
            ++m_Released[controller];
        }
        m_Change.notify_all();
    }

    void answerAgain()
    {
        {
            const std::scoped_lock guard(m_Lock);
            m_Hanging.clear();
        }
        m_Change.notify_all();
    }

    /** Commands to this controller fail with this status; 0: no more. */
    void fail(std::uint32_t controller, std::uint32_t status)
    {
        const std::scoped_lock guard(m_Lock);
        m_Failing[controller] = status;
    }

    /** Blocks until this controller has got so many commands. */
    void await(std::uint32_t controller, std::size_t commands)
    {
        std::unique_lock lock(m_Lock);
        m_Change.wait(lock, [&] { return m_Commands[controller] >= commands; });
    }

    std::size_t commands(std::uint32_t controller)
    {
        const std::scoped_lock guard(m_Lock);
        return m_Commands[controller];
    }

    /** How often controllers were opened. */
    std::size_t openings()
    {
        const std::scoped_lock guard(m_Lock);
        return m_Openings;
    }

    /** The most commands that one controller had at a time. */
    std::size_t together()
    {
        const std::scoped_lock guard(m_Lock);
        return m_Most;
    }

private:
    class Drive : public Reader::IDrive
    {
    public:
        Drive(std::shared_ptr<FakeControllers> all, const Reader::Controller& controller)
            : m_All(std::move(all)), m_Controller(controller)
        {}

        std::uint32_t ask(const Reader::Command& command, std::span<std::uint8_t> block) override
        {
            return m_All->answer(command, block);
        }

    private:
        const std::shared_ptr<FakeControllers> m_All;
        const Reader::Controller m_Controller;
    };

    std::uint32_t answer(const Reader::Command& command, std::span<std::uint8_t> block)
    {
        const std::uint32_t number = command.m_Controller.first;
        std::unique_lock lock(m_Lock);
        const std::size_t count = ++m_Commands[number];
        m_Most = std::max(m_Most, ++m_Now[number]);
        m_Change.notify_all();
        m_Change.wait(lock, [&] { return !m_Hanging.contains(number) || m_Released[number] >= count; });
        --m_Now[number];
        if (m_Failing[number] != 0)
            return m_Failing[number];
        std::fill(block.begin(), block.end(), static_cast<std::uint8_t>(number));
        block[0] = static_cast<std::uint8_t>(command.m_Kind);
        block[1] = static_cast<std::uint8_t>(count);
        block[2] = static_cast<std::uint8_t>(command.m_Offset);
        return 0;
    }

    std::mutex m_Lock;
    std::condition_variable m_Change;
    std::set<std::uint32_t> m_Hanging;
    std::map<std::uint32_t, std::size_t> m_Released; ///< commands that return although their controller hangs
    std::map<std::uint32_t, std::uint32_t> m_Failing;
    std::map<std::uint32_t, std::size_t> m_Commands;
    std::map<std::uint32_t, std::size_t> m_Now;
    std::size_t m_Most = 0;
    std::size_t m_Openings = 0;
};

} // namespace ReaderTest
