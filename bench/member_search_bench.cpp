// A list of 1,000 users through the container, who are all there are, beside the raw client and
// beside python-ldap, both on kept connections and decoding the same five attributes into texts.
// Rounds alternate; "rate_to_raw" and "rate_to_python" are how many lists are read in the time of
// one of the others'. Python runs in a process of its own that measures itself, without its start.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

#include "bench/big_shop.h"
#include "bench/crew.h"
#include "bench/raw_search.h"

namespace orvo {
namespace {

constexpr std::size_t rows_wanted = 1000;
// Three users of the shop have no type and are in no list.
constexpr std::int64_t users = rows_wanted + 3;
constexpr const char* filter = "(&(objectClass=orvoPerson)(OrvoUserType=*))";

// The searches of bench/member_search.py. Python is the system's: its package is python3-ldap.
class PythonSearch {
public:
    explicit PythonSearch(const PrivateSlapd& shop) : shop_(shop) {
        int to_child[2], from_child[2];
        if (pipe2(to_child, O_CLOEXEC) != 0 || pipe2(from_child, O_CLOEXEC) != 0)
            throw std::system_error(errno, std::generic_category(), "pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, to_child[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, from_child[1], STDOUT_FILENO);
        std::string python = "/usr/bin/python3", script = ORVO_SOURCE_DIR "/bench/member_search.py";
        char* arguments[] = {python.data(), script.data(), nullptr};
        const int error =
            posix_spawn(&child_, python.c_str(), &actions, nullptr, arguments, environ);
        posix_spawn_file_actions_destroy(&actions);
        close(to_child[0]);
        close(from_child[1]);
        if (error != 0) throw std::system_error(error, std::generic_category(), python);
        requests_ = fdopen(to_child[1], "w");
        answers_ = fdopen(from_child[0], "r");
    }
    ~PythonSearch() {
        fclose(requests_);
        fclose(answers_);
        waitpid(child_, nullptr, 0);
    }
    PythonSearch(const PythonSearch&) = delete;

    // The seconds of one search, of so many; 0 where it failed or rows are missing.
    double run(int rounds) {
        std::fprintf(requests_,
                     "{\"url\": \"%s\", \"user\": \"%s\", \"password\": \"%s\", "
                     "\"filter\": \"%s\", \"rounds\": %d}\n",
                     shop_.url().c_str(), shop_.service_dn().c_str(),
                     shop_.service_password().c_str(), filter, rounds);
        std::fflush(requests_);
        double seconds = 0;
        unsigned long rows = 0;
        if (std::fscanf(answers_, "%lf %lu", &seconds, &rows) != 2) return 0;
        return rows == rows_wanted ? seconds : 0;
    }

private:
    const PrivateSlapd& shop_;
    pid_t child_ = -1;
    FILE* requests_;
    FILE* answers_;
};

struct Searcher {
    PrivateSlapd& shop = shop_of(users);
    RawConnection raw = raw_connection(shop.url());
    Object members = bound_members(shop);
    bool is_wrong = !raw_bind(raw, shop.service_dn(), shop.service_password());

    void search_raw() {
        const auto rows =
            raw_search(raw, filter, {"CN", "BusinessPartnerID", "mail", "givenName", "sn"});
        is_wrong |= !rows || rows->size() != rows_wanted;
    }
    void search() {
        const Object rows = late::call(members, u"GetOrvoUsers", {Object()}).to<Object>();
        is_wrong |= late::get(rows, u"RecordCount").to<std::int32_t>() != rows_wanted;
    }
};

void member_search(benchmark::State& state) {
    constexpr int rounds = 5;
    PythonSearch python(shop_of(users));
    Crew<Searcher> crew(1);
    bool is_wrong = python.run(1) == 0;
    double raw_time = 0, own_time = 0, python_time = 0;
    for (auto _ : state) {
        raw_time += crew.run(rounds, [](Searcher& searcher) { searcher.search_raw(); });
        python_time += python.run(rounds) * rounds;
        const double own = crew.run(rounds, [&](Searcher& searcher) {
            searcher.search();
            is_wrong |= searcher.is_wrong;
        });
        own_time += own;
        state.SetIterationTime(own / rounds);
    }
    if (is_wrong) state.SkipWithError("rows are missing");
    const double done = static_cast<double>(state.iterations()) * rounds;
    state.counters["raw_ms"] = raw_time / done * 1000;
    state.counters["python_ms"] = python_time / done * 1000;
    state.counters["rate_to_raw"] = raw_time / own_time;
    state.counters["rate_to_python"] = python_time / own_time;
}
BENCHMARK(member_search)
    ->Name("GetOrvoUsers, 1,000 rows; raw and python-ldap: kept connections")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
}  // namespace orvo
