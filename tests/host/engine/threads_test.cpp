#include <atomic>
#include <thread>
#include <vector>

#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

TEST(SharedPrograms, RunInManyThreadsAtOnce) {
    const Program program = Program::compile(
        "var n = 0;\nfor (var i = 0; i < 200; ++i) { n += shelf.Add(i, 1); shelf('k' + i) = n; "
        "try { nosuch; } catch (e) {} }\ngive(n, shelf.Count);",
        "shared.js", {{"shared.page", 1}, {"shared.page", 2}});
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                Engine engine;
                engine.set_time_limit(std::chrono::seconds(60));
                engine.set_global("shelf", make<Shelf>().object());
                engine.set_function("give", [&](std::span<const Variant> values) {
                    if (values[0] == Variant(20100) && values[1] == Variant(200)) ++right;
                    return Variant();
                });
                engine.run(program);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 20);
}

TEST(Programs, AreReadInManyThreadsAtOnce) {
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int round = 0; round < 10; ++round) {
                Program::compile("var a = 1;", "a.js");
                try {
                    Program::compile("var = 1;", "b.js");
                } catch (const ScriptError&) {
                    ++right;
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 40);
}

}  // namespace
}  // namespace orvo::script
