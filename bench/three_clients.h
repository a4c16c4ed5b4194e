#pragma once

// The same job by the raw client, by Python and by the component.

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

#include "bench/counted_work.h"
#include "bench/crew.h"
#include "bench/python_client.h"

namespace orvo {

// Lets the three work in turn, so many rounds each, and counts: "raw_ms" and "python_ms" (or "_us":
// `unit`) are their times for one job, "rate_to_raw" and "rate_to_python" how many jobs the
// component does in the time of one of theirs; "raw_cpu" and "own_cpu" this process's processor
// time for one job, "raw_operations" and "own_operations" how many operations of the server one
// takes. `raw` and `own` work on one thread, whose Worker says in `is_wrong` whether anything went
// wrong; that, like a failure of Python, is the error of the benchmark.
template <class Worker>
void take_turns(benchmark::State& state, benchmark::TimeUnit unit, int rounds,
                const PrivateSlapd& shop, PythonClient& python,
                const std::function<void(Worker&)>& raw, const std::function<void(Worker&)>& own) {
    Crew<Worker> crew(1);
    // What each loads and opens at first is no part of the job.
    crew.run(1, raw);
    python.run(1);
    crew.run(1, own);
    if (!python.error().empty()) return state.SkipWithError(python.error().c_str());
    ServerOperations operations(shop);
    crew.run(rounds, raw);
    const auto raw_operations = static_cast<double>(operations.since());
    crew.run(rounds, own);
    const auto own_operations = static_cast<double>(operations.since());

    double raw_time = 0, python_time = 0, own_time = 0, raw_processor = 0, own_processor = 0;
    for (auto _ : state) {
        const double before_raw = processor_time();
        raw_time += crew.run(rounds, raw);
        raw_processor += processor_time() - before_raw;
        python_time += python.run(rounds);
        if (!python.error().empty()) {
            state.SkipWithError(python.error().c_str());
            break;
        }
        const double before_own = processor_time();
        const double time = crew.run(rounds, own);
        own_processor += processor_time() - before_own;
        own_time += time;
        state.SetIterationTime(time / rounds);
    }
    bool is_wrong = false;
    crew.run(1, [&](Worker& worker) { is_wrong = worker.is_wrong; });
    if (is_wrong) state.SkipWithError("a client failed, or its rows are not those expected");
    if (state.error_occurred()) return;
    const double done = static_cast<double>(state.iterations()) * rounds;
    const double units = benchmark::GetTimeUnitMultiplier(unit) / done;
    const std::string suffix = std::string("_") + benchmark::GetTimeUnitString(unit);
    state.counters["raw" + suffix] = raw_time * units;
    state.counters["python" + suffix] = python_time * units;
    state.counters["raw_cpu" + suffix] = raw_processor * units;
    state.counters["own_cpu" + suffix] = own_processor * units;
    state.counters["raw_operations"] = raw_operations / rounds;
    state.counters["own_operations"] = own_operations / rounds;
    state.counters["rate_to_raw"] = raw_time / own_time;
    state.counters["rate_to_python"] = python_time / own_time;
}

}  // namespace orvo
