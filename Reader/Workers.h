#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace Reader {

/**
 * Threads for jobs that block, as many as there are slow jobs: one thread does them all while jobs are quick.
 * For use by one thread. A job that never ends keeps its thread; neither anything here nor the destructor
 * waits for it.
 */
class Workers
{
public:
    /** There are never more than `most` threads. */
    explicit Workers(std::size_t most);
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /** Runs `job` as soon as a thread is free. It must not throw. */
    void add(std::function<void()> job);

    /** Whether jobs wait for a thread. Then `grow` is called again after some milliseconds. */
    bool waiting() const;

    /** Doubles the number of threads when jobs wait and none has begun since the last call. */
    void grow();

    /** How many threads there are. */
    std::size_t threads() const;

private:
    struct State;
    static void run(const std::shared_ptr<State>& state);
    void start(std::size_t count);

    const std::size_t m_Most;
    const std::shared_ptr<State> m_State; ///< shared with each thread
    std::size_t m_Begun = 0;              ///< at the last call of `grow`
};

} // namespace Reader
