#include "bench/fleet/loaded_fleet.h"

#include <atomic>
#include <mutex>
#include <random>
#include <stdexcept>
#include <thread>

#include "bench/fleet/consumption.h"
#include "bench/fleet/crowd.h"
#include "bench/fleet/shop_page.h"

namespace orvo::fleet {
namespace {

// Raises what an answer is instead of the one that was expected.
void expect(bool is_right, const std::string& what, const ShopPage& answer) {
    if (!is_right)
        throw std::runtime_error(what + " is answered " + std::to_string(answer.status()) + ' ' +
                                 answer.problem());
}

constexpr auto glance = std::chrono::milliseconds(5);

}  // namespace

void log_in(web::Browser& browser, const std::string& user) {
    const ShopPage form(browser.get("/login.asp"));
    const ShopPage answer(browser.post(
        "/login.asp", {{"user", user}, {"password", "shop-sample"}, {"token", form.token()}}));
    expect(answer.status() == 303 && !answer.leads_to_login(), "a login", answer);
}

std::string open_page(web::Browser& browser, const std::string& path) {
    const ShopPage answer(browser.get(path));
    expect(answer.status() == 200 && !answer.user().empty(), path, answer);
    return answer.token();
}

void log_out(web::Browser& browser, const std::string& token) {
    const ShopPage answer(browser.post("/logout.asp", {{"token", token}}));
    expect(answer.status() == 303, "a logout", answer);
}

LoadedFleet::LoadedFleet(const FleetOptions& options)
    : fleet_(options), users_(*fleet_.directory().look_into(0)) {}

LoadedFleet::Measured LoadedFleet::measure(std::size_t browsers, Seconds length, Browsers kind,
                                           const Work& work) {
    Measured measured;
    std::mutex mutex;
    std::atomic<std::size_t> arrived = 0;
    std::atomic<bool> is_begun = false;
    Crowd crowd(browsers, [&](std::size_t i, const std::atomic<bool>& is_over) {
        std::minstd_rand random(static_cast<unsigned>(i) + 1);
        ShopUser& user = users_.take(random);
        web::Browser browser(fleet_.port());
        std::vector<double> times;
        double count = 0;
        bool has_arrived = false;
        try {
            if (kind == Browsers::logged_in) log_in(browser, user.name());
            ++arrived;
            has_arrived = true;
            while (!is_begun && !is_over) std::this_thread::sleep_for(glance);
            while (!is_over) {
                const auto begin = Clock::now();
                count += work(browser, user.name());
                times.push_back(Seconds(Clock::now() - begin).count() * 1000);
            }
        } catch (...) {
            if (!has_arrived) ++arrived;
            throw;
        }
        users_.give_back(user);
        const std::lock_guard lock(mutex);
        measured.count += count;
        measured.times.insert(measured.times.end(), times.begin(), times.end());
    });
    while (arrived < browsers) wait_until(Clock::now() + glance);
    const Consumed before = consumed();
    const auto begin = Clock::now();
    is_begun = true;
    wait_until(begin + std::chrono::duration_cast<Clock::duration>(length));
    crowd.end();
    measured.seconds = Seconds(Clock::now() - begin).count();
    const Consumed after = consumed();
    measured.processor = {after.nodes - before.nodes, after.directory - before.directory,
                          after.store - before.store, after.balancer - before.balancer};
    return measured;
}

void LoadedFleet::log_in_many(std::size_t logins) {
    std::minstd_rand random(1);
    for (std::size_t i = 0; i < logins; ++i) {
        wait_until(Clock::now());
        ShopUser& user = users_.take(random);
        web::Browser browser(fleet_.port());
        log_in(browser, user.name());
        users_.give_back(user);
    }
}

Consumed LoadedFleet::consumed() {
    return {
        processor_seconds(fleet_.node_processes()), processor_seconds(fleet_.directory_processes()),
        processor_seconds(fleet_.store_processes()), processor_seconds({fleet_.balancer().pid()})};
}

}  // namespace orvo::fleet
