#pragma once

#include <random>
#include <string>
#include <vector>

#include "bench/failover/ledger.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo::failover {

struct KnownUser {
    std::string name;
    std::string last_name;
    std::string profile;
    std::string phone;
};

// What a thread works with; nobody else uses these users.
struct Plan {
    std::string site_ini;
    std::vector<KnownUser> visitors;  // log in with the right password, and are not written to
    std::vector<KnownUser> mistaken;  // only ever come with wrong passwords
    std::vector<KnownUser> changing;  // are written to
};

// One thread's work: what a web site does, call by call, as any program would do it. A failed call
// ends what belongs together and is written down. Belongs to the thread that makes it.
class Worker {
public:
    // Loads the settings and does everything once.
    Worker(const Plan& plan, unsigned seed);
    // Something at random.
    void work();
    Ledger ledger() && { return std::move(ledger_); }

private:
    void log_in();
    void mistype();
    void change();
    void create();
    void remove(Creation& creation);

    bool bind(const Object& user, const std::string& name, const Text& account,
              const Text& password);
    bool read_own(const Object& user, const std::string& name);
    void expect(bool is_right, const std::string& what);

    // Whether the call succeeded.
    template <class Body>
    bool timed(Kind kind, Body body);
    const KnownUser& any(const std::vector<KnownUser>& users);

    const Plan& plan_;
    std::mt19937 random_;
    Object validator_, members_;
    std::int32_t failed_with_ = 0;  // of the last call that failed
    Ledger ledger_;
};

}  // namespace orvo::failover
