#include "suite/counters/count_event.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "suite/counters/counters_contract.h"

namespace orvo::counters {

void count_event(TextView name, TextView kind) noexcept {
    try {
        const auto counters = Ref<Counters>::from(create_object(counters_progid));
        call<&Counters::Count>(counters, Text(name), Text(kind));
    } catch (const std::exception&) {
        // What is counted has happened all the same.
    }
}

}  // namespace orvo::counters
