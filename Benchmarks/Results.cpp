#include "Results.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

namespace Benchmarks {

int run(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    std::ofstream results("/dev/fd/" + std::to_string(dup(STDOUT_FILENO)));
    if (!results || std::freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_Tabular);
    reporter.SetOutputStream(&results);
    reporter.SetErrorStream(&results);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

} // namespace Benchmarks
