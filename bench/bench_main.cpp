// The frame of every benchmark: says what is measured where, and the peak memory at the end. Ends
// with 1 where a row has an error instead of figures.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

namespace {

// Reports as the options say, and counts the rows with an error.
class CountsErrors : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override {
        usual_->SetOutputStream(&GetOutputStream());
        usual_->SetErrorStream(&GetErrorStream());
        return usual_->ReportContext(context);
    }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) errors_ += run.error_occurred;
        usual_->ReportRuns(runs);
    }
    void Finalize() override { usual_->Finalize(); }
    int errors() const { return errors_; }

private:
    std::unique_ptr<BenchmarkReporter> usual_{benchmark::CreateDefaultDisplayReporter()};
    int errors_ = 0;
};

}  // namespace

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
    CountsErrors reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << "Peak memory: " << usage.ru_maxrss / 1024.0 << " MiB\n";
    return reporter.errors() == 0 ? 0 : 1;
}
