#pragma once

// Tests that run once for every kind of directory, each in a thread of its own.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/recording/fresh_thread.h"
#include "tests/support/test_directory.h"

namespace orvo {

// That of the test which is being made.
inline const DirectoryKind*& directory_kind() {
    static const DirectoryKind* kind = nullptr;
    return kind;
}

template <class Fixture>
bool register_for_each_directory(const char* fixture, const std::string& name, const char* file,
                                 int line, Fixture* (*make)()) {
    for (const DirectoryKind& kind : every_directory())
        testing::RegisterTest(fixture, (name + "/" + kind.name).c_str(), nullptr, nullptr, file,
                              line, [&kind, make]() -> Fixture* {
                                  directory_kind() = &kind;
                                  return make();
                              });
    return true;
}

}  // namespace orvo

// As TEST_FRESH. The fixture finds its kind of directory in directory_kind().
#define TEST_FRESH_FOR_EACH(fixture, name)                                                \
    class fixture##_##name##_Fresh : public orvo::InFreshThread<fixture> {                \
        void body() override;                                                             \
        static const bool registered_;                                                    \
    };                                                                                    \
    const bool fixture##_##name##_Fresh::registered_ = orvo::register_for_each_directory( \
        #fixture, #name, __FILE__, __LINE__,                                              \
        +[]() -> fixture* { return new fixture##_##name##_Fresh; });                      \
    void fixture##_##name##_Fresh::body()
