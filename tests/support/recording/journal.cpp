#include "tests/support/recording/journal.h"

#include <utility>

#include "platform/values/values.h"

namespace orvo {
namespace {

template <class Range>
std::string joined(const Range& values) {
    std::string text;
    const char* separator = "";
    for (const Variant& value : values) text += std::exchange(separator, ", ") + shown(value);
    return text;
}

}  // namespace

std::string shown(const Variant& value) {
    if (value.is_empty()) return "Empty";
    if (value.is_null()) return "Null";
    if (value.is_missing()) return "Missing";
    if (value.is_object()) return value.to<Object>() ? "Object" : "Nothing";
    if (value.is_array()) return "[" + joined(value.to<Values>()) + "]";
    return to_utf8(value.to<Text>());
}

void Journal::call(const std::string& operation, std::initializer_list<Variant> arguments) {
    calls_.push_back(operation + "(" + joined(arguments) + ")");
    act(operation);
    const auto refusal = refusals_.find(operation);
    if (refusal == refusals_.end()) return;
    auto& [failure, left] = refusal->second;
    if (left > 1) {
        --left;
        return;
    }
    const Failure raised = failure;
    if (left == 1) refusals_.erase(refusal);
    throw raised;
}

void Journal::act(const std::string& operation) {
    const auto planned = actions_.find(operation);
    if (planned == actions_.end() || --planned->second.left > 0) return;
    const auto run = std::move(planned->second.run);
    actions_.erase(planned);
    run();
}

std::vector<std::string> Journal::take() { return std::exchange(calls_, {}); }

void Journal::refuse(const std::string& operation, Failure failure) {
    refusals_.insert_or_assign(operation, Refusal{std::move(failure), 0});
}

void Journal::refuse_nth(const std::string& operation, int nth, Failure failure) {
    refusals_.insert_or_assign(operation, Refusal{std::move(failure), nth});
}

void Journal::during_nth(const std::string& operation, int nth, std::function<void()> action) {
    actions_.insert_or_assign(operation, Action{std::move(action), nth});
}

}  // namespace orvo
