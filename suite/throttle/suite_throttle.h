#pragma once

// The suite's throttle component.

#include <memory>
#include <optional>

#include "platform/interfaces/hosted.h"
#include "suite/throttle/process_throttle.h"
#include "suite/throttle/throttle_contract.h"

namespace orvo {
namespace throttle {

// One attempt, by the settings of the site as they are when the object is first asked anything
// (throttle_settings.h). All objects of a process count together; one object belongs to one thread.
class SuiteThrottle final : public Throttle {
public:
    explicit SuiteThrottle(ProcessThrottle& process = ProcessThrottle::of_process())
        : process_(process) {}
    ~SuiteThrottle();

    // Raise configuration_error's numbers for settings that are wrong: nobody logs in while nobody
    // knows whether that is to be counted.
    Boolean IsOn() override;
    Boolean Admit(const Text& user) override;
    // False without an admission.
    Boolean AdmitFound(const Text& user) override;
    // Nothing happens without an admission, or the second time.
    void Settle(std::int32_t result) override;
    Boolean Clear(const Text& user) override;
    Object State(const Text& user, const Text& address) override;
    Object Figures() override;
    Boolean ClearAddress(const Text& address) override;

private:
    const Settings& settings();
    void settle(Outcome outcome);

    ProcessThrottle& process_;
    std::shared_ptr<const Settings> settings_;
    std::optional<Gate::Ticket> ticket_;
};

}  // namespace throttle

template <>
inline constexpr auto class_of<throttle::SuiteThrottle> =
    describe_class<Throttle>("OrvoSuite.Throttle", "a2cc86e6-1ea4-442d-a947-39306219142e");

}  // namespace orvo
