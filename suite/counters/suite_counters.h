#pragma once

// The suite's counters component.

#include "platform/interfaces/hosted.h"
#include "suite/counters/counters_contract.h"

namespace orvo {
namespace counters {

class SuiteCounters final : public Counters {
public:
    void Count(const Text& name, const Text& kind) override;
    Object Rows() override;
    // Raises what is wrong with the store's settings.
    Object Store() override;
};

}  // namespace counters

template <>
inline constexpr auto class_of<counters::SuiteCounters> =
    describe_class<Counters>("OrvoSuite.Counters", "541ba06b-9aa9-45fa-8333-8463d6c28345");

}  // namespace orvo
