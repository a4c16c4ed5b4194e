#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "platform/values/failure.h"
#include "platform/values/variant.h"

namespace orvo {

// A value as journals show it: texts and numbers as they are, "[a, b]" for an array, and "Empty",
// "Null", "Missing", "Object", "Nothing".
std::string shown(const Variant& value);

// What recording objects were called with, in the order of the calls, which of their calls are to
// fail, and what is to happen in the middle of one. Several of them may share one journal, so that
// the order among them shows. It outlives the objects that write to it and is used by one thread at
// a time.
class Journal {
public:
    // Notes `operation(argument, …)`, does what was planned for this call and then raises what the
    // operation was told to fail with.
    void call(const std::string& operation, std::initializer_list<Variant> arguments = {});

    // The calls since the last take or clear: `Open(dir01, ou=Users)`.
    std::vector<std::string> take();
    void clear() { calls_.clear(); }

    // Lets every call of an operation fail, until it is allowed again.
    void refuse(const std::string& operation, Failure failure);
    // Lets one call of an operation fail: the nth from now, counted from 1.
    void refuse_nth(const std::string& operation, int nth, Failure failure);
    void allow(const std::string& operation) { refusals_.erase(operation); }

    // Does something in the middle of one call of an operation: the nth from now, counted from 1.
    // It may itself call what is recorded.
    void during_nth(const std::string& operation, int nth, std::function<void()> action);
    void during(const std::string& operation, std::function<void()> action) {
        during_nth(operation, 1, std::move(action));
    }

private:
    struct Refusal {
        Failure failure;
        int left;  // calls to go until it fails; 0: every call fails
    };

    struct Action {
        std::function<void()> run;
        int left;  // calls to go until it is done
    };

    void act(const std::string& operation);

    std::vector<std::string> calls_;
    std::map<std::string, Refusal> refusals_;
    std::map<std::string, Action> actions_;
};

}  // namespace orvo
