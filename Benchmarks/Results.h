#pragma once

#include <chrono>

namespace Benchmarks {

/** Measures how long `work` takes. */
template<typename Work>
double secondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/**
 * Runs the registered benchmarks. Their results go to the process's real standard output. What the plug-in
 * prints goes elsewhere.
 */
int run(int argc, char** argv);

} // namespace Benchmarks
