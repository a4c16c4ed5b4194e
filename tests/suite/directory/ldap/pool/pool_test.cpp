#include "tests/suite/directory/ldap/pool/pool_test.h"

#include <chrono>
#include <thread>

namespace orvo::directory::ldap {

bool PoolTest::comes_to(long connections) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (open_connections() != connections) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace orvo::directory::ldap
