// Browsers that log in, look at pages of their own, log out and see that they are out, each on a
// thread of its own, against a server that bench/web/logins has started. Prints one line:
// requests per second, and for logins and for all requests the mean and the 99th percentile in
// milliseconds. Ends with 1 where an answer is not what it should be.
//
//   login_load PORT BROWSERS SECONDS

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "tests/host/web/browser.h"

namespace {

using orvo::HttpResult;
using orvo::web::Browser;
using Clock = std::chrono::steady_clock;
using Times = std::vector<double>;  // milliseconds

constexpr std::array<const char*, 6> users{"jsmith", "glee", "admin", "local", "guest", "zeros"};

struct Seen {
    Times logins;
    Times others;
    int wrong = 0;
    std::string first_wrong;
};

// Takes the time of one request, and looks at its answer.
template <class Ask>
void measure(Times& times, Seen& seen, int status, const std::string& body, Ask ask) {
    const auto begin = Clock::now();
    const HttpResult result = ask();
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
    if (result && result->status == status && (body.empty() || result->body == body)) return;
    if (seen.wrong++ == 0)
        seen.first_wrong =
            result ? std::to_string(result->status) + ' ' + result->body : result.error();
}

void browse(int port, const std::string& user, Clock::time_point end, Seen& seen) {
    Browser browser(port);
    do {
        measure(seen.logins, seen, 303, "", [&] {
            return browser.post("/login.asp", {{"user", user}, {"password", "shop-sample"}});
        });
        for (int page = 0; page < 2; ++page)
            measure(seen.others, seen, 200, user + "|" + user,
                    [&] { return browser.get("/account/"); });
        measure(seen.others, seen, 200, "bye", [&] { return browser.get("/logout.asp"); });
        measure(seen.others, seen, 302, "", [&] { return browser.get("/account/"); });
    } while (Clock::now() < end);
}

double mean(const Times& times) {
    return std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
}

double percentile99(Times& times) {
    const auto place = times.begin() + static_cast<std::ptrdiff_t>(times.size() * 99 / 100);
    std::nth_element(times.begin(), place, times.end());
    return *place;
}

void append(Times& all, const Times& more) { all.insert(all.end(), more.begin(), more.end()); }

}  // namespace

int main(int count, char** words) {
    if (count != 4) {
        std::fprintf(stderr, "usage: login_load PORT BROWSERS SECONDS\n");
        return 2;
    }
    const int port = std::stoi(words[1]);
    const auto begin = Clock::now();
    const auto end = begin + std::chrono::seconds(std::stoi(words[3]));
    std::vector<Seen> seen(static_cast<std::size_t>(std::stoi(words[2])));
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] { browse(port, users[i % users.size()], end, seen[i]); });
    for (std::thread& thread : threads) thread.join();
    const std::chrono::duration<double> took = Clock::now() - begin;

    Times logins, all;
    int wrong = 0;
    for (const Seen& one : seen) {
        append(logins, one.logins);
        append(all, one.others);
        wrong += one.wrong;
        if (one.wrong > 0) std::fprintf(stderr, "wrong: %s\n", one.first_wrong.c_str());
    }
    append(all, logins);
    std::printf("%.0f %.1f %.1f %.1f %.1f\n", static_cast<double>(all.size()) / took.count(),
                mean(logins), percentile99(logins), mean(all), percentile99(all));
    return wrong == 0 ? 0 : 1;
}
