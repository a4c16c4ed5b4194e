#pragma once

// Module state lives as long as its thread, so a test that begins without any runs in a thread of
// its own.

#include <gtest/gtest.h>

#include <exception>
#include <thread>

namespace orvo {

// Runs `body` in a thread of its own, to its end; what it raises is raised here.
template <class Body>
void in_fresh_thread(Body&& body) {
    std::exception_ptr raised;
    std::thread thread([&] {
        try {
            body();
        } catch (...) {
            raised = std::current_exception();
        }
    });
    thread.join();
    if (raised) std::rethrow_exception(raised);
}

}  // namespace orvo

// As TEST_F, with the body in a thread of its own. The fixture itself is made and destroyed in the
// thread of the program: objects of the component are made in the body.
#define TEST_FRESH(fixture, name)                                                         \
    class fixture##_##name##_Fresh : public fixture {                                     \
        void TestBody() override {                                                        \
            orvo::in_fresh_thread([this] { body(); });                                    \
        }                                                                                 \
        void body();                                                                      \
        static const testing::TestInfo* const registered_;                                \
    };                                                                                    \
    const testing::TestInfo* const fixture##_##name##_Fresh::registered_ =                \
        testing::RegisterTest(#fixture, #name, nullptr, nullptr, __FILE__, __LINE__,      \
                              []() -> fixture* { return new fixture##_##name##_Fresh; }); \
    void fixture##_##name##_Fresh::body()
