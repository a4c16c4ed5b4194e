#pragma once

// The one way in which failures are reported: logged through the suite's log component and raised
// again, with a description that tells number, method and cause.
//
// The pending error is the thread's own: it exists while one of the frames below handles what its
// body raised. A log object is made for each entry and released after it.

#include <utility>

#include "platform/values/failure.h"
#include "platform/values/variant.h"

namespace orvo {

// The pending error as it is raised again.
struct ErrorRecord {
    std::int32_t Number;
    Text Source;
    Text Description;  // the formatted block
    Text HelpFile;
    std::int32_t HelpContext;
};

// Logs the thread's pending error and raises it again with its description formatted; number,
// source and help stay. Where no error is pending nothing is logged and nothing is raised: a method
// that hands over a message without a pending error returns quietly, which several rely on.
//
// The logged message holds the block twice, one inside the other: the pending description is
// replaced before the entry is formatted, so that the entry shows what the caller is told.
//
// info: a line of information; left out, the block has no such line, while an empty text gives one.
void HandleError(const Text& method, const Variant& info = Variant::missing());

// Writes a log entry and returns: the pending error's (level 0) or, where none is pending, one that
// says "Not an actual error" (level 1, the method as its source). A log component that is missing
// or fails raises only while an error is pending.
void LogError(const Text& method, const Variant& info = Variant::missing());

// Writes the entry of the exception being handled, for who goes on without what failed: it is the
// pending error while the entry is written. A log that is missing or fails is passed over.
void log_current_exception(const Text& method, const Variant& info);

// The block: an empty line, "ERROR 0x" and the number, " METHOD: ", " DESC: " and, where info was
// given, " INFO: "; every line ended by CR LF.
Text FormatErrorText(const Text& description, std::int32_t number, const Text& method,
                     const Variant& info);

// What the component's failures name as their source where they have none of their own.
inline constexpr const char* component_name = "OrvoMembership";

namespace detail {

// No error is pending while a method's body runs, whatever its caller is handling.
class BodyScope {
public:
    BodyScope();
    ~BodyScope();
    BodyScope(const BodyScope&) = delete;
    BodyScope& operator=(const BodyScope&) = delete;

private:
    Failure* callers_;
};

// The exception being handled, as a failure; one without a source is the component's.
Failure caught();
// Makes the failure the pending error, hands it to HandleError, and raises it in any case.
[[noreturn]] void handle(const Text& method, Failure failure,
                         const Variant& info = Variant::missing());

}  // namespace detail

// The name of a method, put together only when it is needed: "OrvoMembership.User." and "Fax".
struct MethodName {
    const char16_t* prefix;
    const char* name = "";
    Text text() const { return Text(prefix) + from_utf8(name); }
    constexpr MethodName(const char16_t* whole) : prefix(whole) {}
    constexpr MethodName(const char16_t* prefix, const char* name) : prefix(prefix), name(name) {}
};

// The frame of a public method: answers what `body` answers, and hands whatever it raises to
// HandleError under the method's name.
template <class Body>
auto trapped(MethodName method, Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        detail::handle(method.text(), detail::caught());
    }
}

// The same with a line of information, which `info` makes. It is called only after a failure.
template <class Info, class Body>
auto trapped_with_info(MethodName method, Info&& info, Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        Failure failure = detail::caught();
        detail::handle(method.text(), std::move(failure), info());
    }
}

// The same for a method that tells some of its failures in its own words: `reword` gets what the
// body raised and may change it before it is handled. The former words are not logged here; who
// raised the failure tells its cause, as the directory provider does.
template <class Reword, class Body>
auto trapped_rewording(MethodName method, Reword&& reword, Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        Failure failure = detail::caught();
        reword(failure);
        detail::handle(method.text(), std::move(failure));
    }
}

}  // namespace orvo
