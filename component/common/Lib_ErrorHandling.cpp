#include "component/common/Lib_ErrorHandling.h"

#include "component/common/Lib_General.h"
#include "component/common/log_contract.h"
#include "platform/interfaces/border.h"
#include "platform/interfaces/call.h"

namespace orvo {
namespace {

constexpr const char16_t* log_progid = u"Quendra.Log";

// Which of the log's two operations writes an entry: false, the first one, is set before each. A
// site whose log needs the other one would set it here.
thread_local bool UseAlternateLog = false;

thread_local Failure* pending = nullptr;

// An entry is being written. What fails in the writing is not logged in turn, because that would
// need the very log that fails.
thread_local bool is_logging = false;

class LoggingScope {
public:
    LoggingScope() { is_logging = true; }
    ~LoggingScope() { is_logging = false; }
};

class PendingScope {
public:
    explicit PendingScope(Failure& failure) : before_(std::exchange(pending, &failure)) {}
    ~PendingScope() { pending = before_; }

private:
    Failure* before_;
};

ErrorRecord CaptureError(const Text& method, const Variant& info) {
    if (pending == nullptr) return {};
    return {pending->number, pending->source,
            FormatErrorText(pending->description, pending->number, method, info),
            pending->help_file, pending->help_context};
}

void write(const Ref<Log>& log, Text source, Text message, std::int32_t level) {
    if (UseAlternateLog)
        call<&Log::LogMessageAlternate>(log, source, message, level);
    else
        call<&Log::LogMessage>(log, source, message, level);
}

void WriteErrorLog(std::int32_t level, const Text& method, const Variant& info) {
    if (pending != nullptr) {
        const Text message = FormatErrorText(pending->description, pending->number, method, info);
        write(Gen_GetComponent<Log>(log_progid), pending->source, message, level);
        return;
    }
    const Text message = FormatErrorText(u"Not an actual error", 0, method, info);
    try {
        write(Gen_GetComponent<Log>(log_progid), method, message, 1);
    } catch (...) {
        // A note is not worth a failure: where it cannot be written it is dropped.
    }
}

}  // namespace

Text FormatErrorText(const Text& description, std::int32_t number, const Text& method,
                     const Variant& info) {
    Text text = u"\r\nERROR 0x" + hexadecimal(number) + u"\r\n METHOD: " + method + u"\r\n DESC: " +
                description + u".\r\n";
    if (!info.is_missing()) text += u" INFO: " + info.to<Text>() + u".\r\n";
    return text;
}

void HandleError(const Text& method, const Variant& info) {
    UseAlternateLog = false;
    ErrorRecord rec = CaptureError(method, info);
    if (rec.Number == 0) return;
    Failure formatted(rec.Number, std::move(rec.Source), std::move(rec.Description),
                      std::move(rec.HelpFile), rec.HelpContext);
    formatted.keeps_empty_source = true;
    try {
        const PendingScope scope(formatted);
        LogError(method, info);
    } catch (...) {
        // Logging never replaces the failure that is being reported.
    }
    throw formatted;
}

void LogError(const Text& method, const Variant& info) {
    UseAlternateLog = false;
    if (is_logging) return;
    const LoggingScope scope;
    WriteErrorLog(0, method, info);
}

void log_current_exception(const Text& method, const Variant& info) {
    Failure failure = detail::caught();
    const PendingScope scope(failure);
    try {
        LogError(method, info);
    } catch (...) {
        // Nobody waits for the entry.
    }
}

namespace detail {

BodyScope::BodyScope() : callers_(std::exchange(pending, nullptr)) {}
BodyScope::~BodyScope() { pending = callers_; }

Failure caught() { return current_failure(component_name); }

void handle(const Text& method, Failure failure, const Variant& info) {
    const PendingScope scope(failure);
    HandleError(method, info);
    throw failure;  // a number of 0 is nothing to HandleError, and still a failure
}

}  // namespace detail
}  // namespace orvo
