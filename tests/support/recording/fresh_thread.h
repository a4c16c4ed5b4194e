#pragma once

// Module state lives as long as its thread, so a test that begins without any runs in a thread of
// its own.

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <thread>

namespace orvo {

// Runs `body` in a thread of its own, to its end; what it raises is raised here.
inline void in_fresh_thread(const std::function<void()>& body) {
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

// A test of a fixture, with its body in a thread of its own.
template <class Fixture>
class InFreshThread : public Fixture {
    void TestBody() final {
        in_fresh_thread([this] { body(); });
    }
    virtual void body() = 0;
};

}  // namespace orvo

// As TEST_F, with the body in a thread of its own. The fixture itself is made and destroyed in the
// thread of the program: objects of the component are made in the body.
#define TEST_FRESH(fixture, name)                                                                 \
    class fixture##_##name##_Fresh : public orvo::InFreshThread<fixture> {                        \
        void body() override;                                                                     \
        static const testing::TestInfo* const registered_;                                        \
    };                                                                                            \
    const testing::TestInfo* const fixture##_##name##_Fresh::registered_ = testing::RegisterTest( \
        #fixture, #name, nullptr, nullptr, __FILE__, __LINE__,                                    \
        +[]() -> fixture* { return new fixture##_##name##_Fresh; });                              \
    void fixture##_##name##_Fresh::body()
