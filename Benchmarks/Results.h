#pragma once

#include <chrono>

namespace Benchmarks {

/** How long `work` takes. */
template<typename Work>
double secondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/** Runs the registered benchmarks. Standard output has their results alone, for the plug-in prints there,
 * too. */
int run(int argc, char** argv);

} // namespace Benchmarks
