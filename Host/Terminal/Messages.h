#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

namespace Host::Cli {

/**
 * What the program says besides its results, on standard error. On a terminal a passing line may stand below,
 * here or among the results: a message takes its place, whatever the length of either. For any thread.
 */
class Messages
{
public:
    using Write = std::function<void(const std::string&)>;

    /** `write` prints to standard error, from any thread; `terminal`: to one, which shows passing lines. */
    Messages(bool terminal, Write write) : m_Terminal(terminal), m_Write(std::move(write)) {}
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    /** Says a sentence or more to the administrator. */
    void tell(const std::string& message);

    bool onTerminal() const { return m_Terminal; }

    /** Shows `line` (printable) in the place of the former one; an empty one takes that away. */
    void pass(const std::string& line);

    /** Somebody else shows a passing line of `width` columns, the cursor at its beginning. */
    void passesElsewhere(std::size_t width);

private:
    /** What wipes the passing line out, on any terminal. */
    std::string wipe();

    const bool m_Terminal;
    const Write m_Write;
    std::mutex m_Lock;
    std::size_t m_Width = 0; ///< of the passing line; under m_Lock
};

} // namespace Host::Cli
