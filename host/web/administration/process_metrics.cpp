#include "host/web/administration/process_metrics.h"

#include <sys/resource.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "host/engine/heap_counts.h"

namespace orvo::web {
namespace {

double seconds_of_processor() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

struct Memory {
    std::uint64_t all = 0;
    std::uint64_t resident = 0;
};

std::optional<Memory> memory() {
    std::ifstream file("/proc/self/statm");
    Memory memory;
    if (!(file >> memory.all >> memory.resident)) return std::nullopt;
    const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    return Memory{memory.all * page, memory.resident * page};
}

std::optional<std::uint64_t> open_files() {
    std::error_code error;
    std::uint64_t count = 0;
    std::filesystem::directory_iterator file("/proc/self/fd", error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) ++count;
    if (error) return std::nullopt;
    return count - 1;  // the folder itself
}

// Seconds since the system's start, of the process's: the 22nd word, counted behind its name, in
// which there may be anything.
std::optional<double> start_since_boot() {
    std::ifstream file("/proc/self/stat");
    std::string line, word;
    std::getline(file, line);
    const auto name_end = line.rfind(')');
    if (name_end == std::string::npos) return std::nullopt;
    std::istringstream words(line.substr(name_end + 1));
    constexpr int start = 20;
    for (int i = 0; i < start; ++i)
        if (!(words >> word)) return std::nullopt;
    return std::stod(word) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

std::optional<double> start_time() {
    std::ifstream file("/proc/stat");
    std::string word;
    while (file >> word && word != "btime") {
    }
    double boot = 0;
    const auto since_boot = start_since_boot();
    if (!since_boot || !(file >> boot)) return std::nullopt;
    return boot + *since_boot;
}

}  // namespace

void write_process_metrics(Exposition& out) {
    out.family("process_cpu_seconds_total", MetricType::counter,
               "Time that processors have worked for the process.");
    out.sample(seconds_of_processor());
    if (const auto used = memory()) {
        out.family("process_virtual_memory_bytes", MetricType::gauge, "Address space in use.");
        out.sample(used->all);
        out.family("process_resident_memory_bytes", MetricType::gauge, "Memory in use.");
        out.sample(used->resident);
    }
    if (const auto count = open_files()) {
        out.family("process_open_fds", MetricType::gauge, "Open file descriptors.");
        out.sample(*count);
    }
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        out.family("process_max_fds", MetricType::gauge, "Most file descriptors that may be open.");
        out.sample(static_cast<std::uint64_t>(limit.rlim_cur));
    }
    if (const auto start = start_time()) {
        out.family("process_start_time_seconds", MetricType::gauge,
                   "When the process began, in seconds since 1970.");
        out.sample(*start);
    }
    const script::HeapCounts heaps = script::heap_counts();
    out.family("orvo_script_heaps", MetricType::gauge,
               "Heaps of the script engine, by whether a script uses them.");
    out.sample(static_cast<std::uint64_t>(heaps.heaps - heaps.idle), {{"state", "busy"}});
    out.sample(static_cast<std::uint64_t>(heaps.idle), {{"state", "idle"}});
    out.family("orvo_script_memory_bytes", MetricType::summary,
               "Memory that scripts held when they held most, of all that have ended.");
    out.sample(heaps.scripts, static_cast<double>(heaps.bytes));
}

}  // namespace orvo::web
