#include "suite/throttle/gate.h"

#include <algorithm>
#include <thread>

namespace orvo::throttle {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds first_delay{250};
// For what is under way: between two questions, and together.
constexpr milliseconds short_pause{10}, longest_patience{10'000};

}  // namespace

Limits limits_of(const Settings& settings) {
    return {limit_of(settings.attempts, settings.window),
            limit_of(settings.attempts_of_address, settings.window), settings.known_for};
}

milliseconds delay_after(int wrong, const Settings& settings) {
    if (wrong < settings.undelayed) return milliseconds(0);
    constexpr int most_doublings = 16;
    const int doublings = std::min(wrong - settings.undelayed, most_doublings);
    return std::min(first_delay * (1 << doublings), settings.longest_delay);
}

Gate::Gate(Counters& counters, Pause pause) : counters_(counters), pause_(std::move(pause)) {}

void Gate::sleep(milliseconds time) { std::this_thread::sleep_for(time); }

std::optional<Gate::Ticket> Gate::admit(const Attempt& attempt, const Settings& settings) {
    const std::optional<Place> place = place_for(attempt, settings);
    if (!place) {
        ++refused_;
        return std::nullopt;
    }
    const milliseconds delay = delay_after(place->wrong, settings);
    if (delay > milliseconds(0)) {
        if (!wait(delay, settings.most_waiting)) {
            counters_.settle(attempt, *place, Outcome::none, limits_of(settings));
            ++refused_;
            return std::nullopt;
        }
        ++delayed_;
    }
    ++admitted_;
    return Ticket{{attempt, *place}};
}

bool Gate::admit_found(Ticket& ticket, const std::string& user, const Settings& settings) {
    const Attempt& given = ticket.given.attempt;
    if (user == given.user) return true;
    const Attempt attempt{user, given.address, true};
    const std::optional<Place> place = place_for(attempt, settings);
    if (!place) {
        ++refused_;
        return false;
    }
    ticket.found = {attempt, *place};
    return true;
}

std::optional<Place> Gate::place_for(const Attempt& attempt, const Settings& settings) {
    for (milliseconds waited{0};; waited += short_pause) {
        const Place place = counters_.reserve(attempt, limits_of(settings));
        if (place.room == Room::free) return place;
        // What waits for attempts that wait themselves would keep too many threads.
        const bool is_soon = delay_after(place.wrong, settings) == milliseconds(0);
        if (place.room == Room::none || !is_soon || waited >= longest_patience) return std::nullopt;
        pause_(short_pause);
    }
}

bool Gate::wait(milliseconds delay, int most_waiting) {
    const bool has_place = ++waiting_ <= most_waiting;
    if (has_place) pause_(delay);
    --waiting_;
    return has_place;
}

void Gate::settle(const Ticket& ticket, Outcome outcome, const Settings& settings) {
    if (outcome == Outcome::wrong) ++wrong_;
    const Limits limits = limits_of(settings);
    counters_.settle(ticket.given.attempt, ticket.given.place, outcome, limits);
    if (ticket.found) counters_.settle(ticket.found->attempt, ticket.found->place, outcome, limits);
}

Gate::Figures Gate::figures() const { return {admitted_, delayed_, refused_, wrong_, waiting_}; }

}  // namespace orvo::throttle
