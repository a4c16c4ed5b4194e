#include "platform/network/resolver.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace orvo {
namespace {

using std::chrono::milliseconds;

addrinfo hints_with(int flags) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV | flags;
    return hints;
}

// A look-up and the texts that it reads.
struct Lookup {
    Lookup(const std::string& host, int port_number)
        : name(host), port(std::to_string(port_number)), hints(hints_with(0)) {
        request.ar_name = name.c_str();
        request.ar_service = port.c_str();
        request.ar_request = &hints;
    }
    Lookup(const Lookup&) = delete;
    ~Lookup() { take(); }
    FoundAddresses take() {
        FoundAddresses found;
        found.list.reset(std::exchange(request.ar_result, nullptr));
        return found;
    }

    std::string name;
    std::string port;
    addrinfo hints;
    gaicb request{};
};

// Look-ups that took too long and cannot be cancelled. The C library writes into them when it is
// done, perhaps after the end of this module: the list itself is never freed.
class Abandoned {
public:
    void add(std::unique_ptr<Lookup> lookup) {
        const std::lock_guard lock(mutex_);
        lookups_.push_back(std::move(lookup));
    }
    void free_those_done() {
        const std::lock_guard lock(mutex_);
        std::erase_if(lookups_, [](const std::unique_ptr<Lookup>& lookup) {
            return gai_error(&lookup->request) != EAI_INPROGRESS;
        });
    }

private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<Lookup>> lookups_;
};

Abandoned& abandoned() {
    static auto* const list = new Abandoned;
    return *list;
}

int start(gaicb* lookup) {
    gaicb* list[] = {lookup};
    return getaddrinfo_a(GAI_NOWAIT, list, 1, nullptr);
}

int state(gaicb* lookup) { return gai_error(lookup); }

// 0, or an EAI_ number: EAI_INPROGRESS after the deadline. It looks again and again: gai_suspend()
// with a limit leaves a pointer to its stack behind where a look-up ends just as the limit does.
int run(Lookup& lookup, const Deadline& deadline, const Resolver& resolver) {
    constexpr milliseconds longest_pause{16};
    if (const int error = resolver.start(&lookup.request); error != 0) return error;
    for (milliseconds pause{1};; pause = std::min(2 * pause, longest_pause)) {
        const int error = resolver.state(&lookup.request);
        if (error != EAI_INPROGRESS || deadline.has_passed()) return error;
        std::this_thread::sleep_for(std::min(pause, deadline.left()));
    }
}

}  // namespace

const Resolver system_resolver = {start, state};

FoundAddresses find_addresses(const std::string& host, int port, const Deadline& deadline,
                              const Resolver& resolver) {
    const addrinfo numeric = hints_with(AI_NUMERICHOST);
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &numeric, &found) == 0) {
        FoundAddresses addresses;
        addresses.list.reset(found);
        return addresses;
    }

    abandoned().free_those_done();
    auto lookup = std::make_unique<Lookup>(host, port);
    const int error = run(*lookup, deadline, resolver);
    if (error == 0) return lookup->take();
    if (error == EAI_INPROGRESS && gai_cancel(&lookup->request) == EAI_NOTCANCELED)
        abandoned().add(std::move(lookup));
    return {nullptr, error};
}

}  // namespace orvo
