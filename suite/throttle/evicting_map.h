#pragma once

#include <array>
#include <cstddef>
#include <list>
#include <map>
#include <string>
#include <utility>

namespace orvo::throttle {

// A map that never has more than so many entries (4 at least): beyond that the one goes that is
// worth least, of several the one that was changed longest ago. The entries of one worth are left
// alone while they are no more than a quarter, so that there is always room for new ones. Ordered,
// because the keys are others' choice: no choice makes it slow. Used by one thread at a time.
template <class Value>
class EvictingMap {
public:
    static constexpr std::size_t worths = 3;  // 0 is evicted first
    static constexpr std::size_t worths_share = 4;

    Value* find(const std::string& key) {
        const auto found = entries_.find(key);
        return found == entries_.end() ? nullptr : &found->second.value;
    }
    // The value, made where there is none: `keep` is to follow.
    Value& find_or_make(const std::string& key) { return entry(key)->second.value; }

    // After each change of a value. `is_idle` tells of which values nothing is lost when they go:
    // some of the oldest ones do.
    template <class IsIdle>
    void keep(const std::string& key, std::size_t worth, std::size_t most, IsIdle is_idle) {
        const auto changed = entry(key);
        Order& order = orders_[worth];
        order.splice(order.end(), orders_[changed->second.worth], changed->second.place);
        changed->second.worth = worth;
        for (Order& oldest : orders_)
            for (int i = 0; i < 2 && !oldest.empty() && is_idle(oldest.front()->second.value); ++i)
                remove_first(oldest);
        for (Order& least : orders_)
            while (entries_.size() > most && worths_share * least.size() > most)
                remove_first(least);
    }

    std::size_t size() const { return entries_.size(); }

private:
    struct Entry;
    using Entries = std::map<std::string, Entry>;
    using Order =
        std::list<typename Entries::iterator>;  // the one that was changed last comes last
    struct Entry {
        Value value = {};
        std::size_t worth = 0;
        typename Order::iterator place = {};
    };

    typename Entries::iterator entry(const std::string& key) {
        const auto [found, is_new] = entries_.try_emplace(key);
        if (is_new) found->second.place = orders_[0].insert(orders_[0].end(), found);
        return found;
    }
    void remove_first(Order& order) {
        entries_.erase(order.front());
        order.pop_front();
    }

    Entries entries_;
    std::array<Order, worths> orders_;
};

}  // namespace orvo::throttle
