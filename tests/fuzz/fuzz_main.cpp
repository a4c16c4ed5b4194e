// What libFuzzer calls. A property that does not hold ends the program as an exception that nobody
// catches; libFuzzer keeps the input then.

#include <cstddef>
#include <cstdint>

#include "tests/fuzz/properties.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* octets, std::size_t size) {
    orvo::fuzz::ORVO_FUZZ_PROPERTIES({reinterpret_cast<const char*>(octets), size});
    return 0;
}
