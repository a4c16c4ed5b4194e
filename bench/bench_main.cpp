// The frame of every benchmark: says what is measured where, and the peak memory at the end.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    const char* commit = std::getenv("ORVO_COMMIT");
    benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
    benchmark::AddCustomContext("flags", ORVO_FLAGS);
    benchmark::AddCustomContext("commit", commit != nullptr ? commit : "unknown");
#ifndef NDEBUG
    std::cerr << "Assertions are on: these figures say nothing.\n";
#endif
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << "Peak memory: " << usage.ru_maxrss / 1024.0 << " MiB\n";
}
