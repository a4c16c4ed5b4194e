#pragma once

// What one thread has done and seen. It writes down what happened; what that means is decided when
// everything is over (verdict.h).

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "bench/failover/sightings.h"

namespace orvo::failover {

enum class Kind { check, read, write };  // read: a bind, or reading what it brought
inline constexpr Kind kinds[] = {Kind::check, Kind::read, Kind::write};

// One call of the component.
struct Call {
    Kind kind;
    Clock::time_point begin;
    double seconds;
    std::string failure;  // number and cause; empty where it succeeded
};

// An attempt to give an entry of the thread's own a new value. The first of an entry stands for
// what it had before.
struct Attempt {
    std::string value;
    bool is_acknowledged;
    Clock::time_point begin;
    Clock::time_point end;
};

// A reading of such a value.
struct Reading {
    std::string entry;
    std::string value;
    Clock::time_point begin;
    Clock::time_point end;
};

// A user who was created, and perhaps deleted again.
struct Creation {
    std::uint64_t mark;
    Clock::time_point begin;
    bool is_acknowledged;
    enum class Deletion { none, acknowledged, failed } deletion = Deletion::none;
    // The deletion said that there is no such user.
    bool was_missed = false;
    Clock::time_point deletion_end = {};
};

struct Ledger {
    std::vector<Call> calls;
    std::vector<std::string> wrong_answers;
    std::map<std::string, std::vector<Attempt>> attempts;  // by the entry's name
    std::vector<Reading> readings;
    std::vector<Creation> creations;
    std::map<std::string, int> wrong_passwords;  // how many were tried, by user
};

}  // namespace orvo::failover
