#pragma once

// The one way in which failures are reported: logged through the suite's log component and raised
// again, with a description that tells number, method and cause.

#include <functional>
#include <type_traits>

#include "platform/automation/failure.h"
#include "platform/automation/variant.h"

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
// The logged message holds the block twice, one inside the other, because the pending description
// is replaced before the entry is formatted. That is deliberate.
//
// info: a line of information; left out, the block has no such line, while an empty text gives one.
void HandleError(const Text& method, const Variant& info = Variant::missing());

// Writes a log entry and returns: the pending error's (level 0) or, where none is pending, one that
// says "Not an actual error" (level 1, the method as its source). A log component that is missing
// or fails raises only while an error is pending.
void LogError(const Text& method, const Variant& info = Variant::missing());

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

// Makes the exception being handled the pending error and hands it to HandleError.
[[noreturn]] void handle_current_exception(const Text& method, const Variant& info);
// The same, after `rephrase` had the chance to tell it in other words. Only those are logged here:
// the cause is told by whoever raised it, as the directory provider does.
[[noreturn]] void handle_rephrased(const Text& method,
                                   const std::function<void(Failure&)>& rephrase);

}  // namespace detail

// The name of a method, put together only when it is needed: "OrvoMembership.User." and "Fax".
struct MethodName {
    const char16_t* prefix;
    const char* name = "";
    Text text() const { return Text(prefix) + from_utf8(name); }
    constexpr MethodName(const char16_t* whole) : prefix(whole) {}
    constexpr MethodName(const char16_t* prefix, const char* name) : prefix(prefix), name(name) {}
};

// The frame of a public method: runs `body` and hands whatever it raises to HandleError under the
// method's name. `info` is the line of information: a text, or a function that makes it and is
// called only after a failure.
template <class Body>
auto trapped(MethodName method, Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        detail::handle_current_exception(method.text(), Variant::missing());
    }
}
template <class Info, class Body>
requires(!std::is_invocable_v<Info, Failure&>) auto trapped(MethodName method, Info&& info,
                                                            Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        if constexpr (std::is_invocable_v<Info>)
            detail::handle_current_exception(method.text(), info());
        else
            detail::handle_current_exception(method.text(), info);
    }
}

// The frame of a method that tells some of its failures in its own words: `rephrase` may change the
// failure that is pending, before HandleError gets it.
template <class Rephrase, class Body>
requires std::is_invocable_v<Rephrase, Failure&>
auto trapped(MethodName method, Rephrase&& rephrase, Body&& body) {
    const detail::BodyScope scope;
    try {
        return body();
    } catch (...) {
        detail::handle_rephrased(method.text(), rephrase);
    }
}

}  // namespace orvo
