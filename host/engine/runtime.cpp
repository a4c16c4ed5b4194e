#include "host/engine/runtime.h"

#include <cstring>
#include <new>

#include "host/engine/engine_text.h"
#include "host/engine/passage.h"
#include "host/engine/program.h"

namespace orvo::script {
namespace {

using std::chrono::steady_clock;

// Between two ticks of a loop: cheap rounds cost little more than without ticks, and slow ones are
// seen before they add up to a second.
constexpr int rounds_of_a_tick = 31;
constexpr std::chrono::milliseconds slow_rounds{1};
constexpr std::int32_t no_number = 0;

duk_ret_t set_up(duk_context* context, void* code) {
    add_members(context);
    add_library(context, *static_cast<const std::string*>(code));
    return 0;
}

duk_ret_t remove_creation(duk_context* context, void*) {
    duk_push_global_object(context);
    for (const char* name : creation_names) duk_del_prop_string(context, -1, name);
    return 0;
}

struct Global : Passage {
    Global(const std::string& name, const Variant& value) : name(name), value(value) {}
    const std::string& name;
    const Variant& value;

    static duk_ret_t put(duk_context* context, void* data) {
        auto& self = *static_cast<Global*>(data);
        self.push(context, self.value);
        if (Handle* handle = handle_of(context, -1)) handle->is_lasting = true;
        define_global(context, self.name.c_str());
        return 0;
    }
};

struct GlobalFunction {
    const std::string& name;
    std::size_t index;

    static duk_ret_t put(duk_context* context, void* data) {
        auto& self = *static_cast<GlobalFunction*>(data);
        push_host_function(context, self.index);
        define_global(context, self.name.c_str());
        return 0;
    }
};

duk_ret_t execute(duk_context* context, void* data) {
    const auto& program = *static_cast<const Program::Content*>(data);
    void* code = duk_push_fixed_buffer(context, program.code.size());
    std::memcpy(code, program.code.data(), program.code.size());
    duk_load_function(context);
    duk_push_global_object(context);
    duk_call_method(context, 0);
    return 0;
}

// From the value thrown, on top of the stack, to what describes it: line, file, name, message,
// number, description, source.
constexpr duk_idx_t description_parts = 7;
duk_ret_t describe(duk_context* context, void*) {
    const duk_idx_t thrown = duk_get_top_index(context);
    if (!duk_is_error(context, thrown)) {
        duk_safe_to_string(context, thrown);
        for (int i = 0; i < 3; ++i) duk_push_undefined(context);
        duk_dup(context, thrown);
        for (int i = 0; i < 3; ++i) duk_push_undefined(context);
        return description_parts;
    }
    for (const char* name : {"lineNumber", "fileName", "name", "message"})
        duk_get_prop_string(context, thrown, name);
    // Only a number of its own: the language's errors inherit theirs.
    duk_push_literal(context, "number");
    duk_get_prop_desc(context, thrown, 0);
    if (duk_is_object(context, -1)) {
        duk_get_prop_literal(context, -1, "value");
        duk_remove(context, -2);
    }
    for (const char* name : {"description", "source"}) duk_get_prop_string(context, thrown, name);
    return description_parts;
}

Text text_at(duk_context* context, duk_idx_t index) {
    duk_size_t size = 0;
    const char* bytes = duk_get_lstring(context, index, &size);
    return bytes != nullptr ? from_engine({bytes, size}) : Text();
}

// The library's own words for a value of the wrong type end with where it stood among arguments:
// "object required, found 1 (stack index -1)".
void leave_out_stack_index(Text& message) {
    constexpr TextView begin = u" (stack index ";
    const std::size_t at = message.rfind(begin);
    if (at != Text::npos && message.ends_with(u')') &&
        message.find(u" required, found ") != Text::npos)
        message.resize(at);
}

std::string shown_megabytes(std::size_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

}  // namespace

Runtime::Runtime(EngineOptions options)
    : options_(std::move(options)), heap_(ScriptHeap::acquire(*this)), context_(heap_->context()) {
    if (!heap_->is_kept()) {
        std::string code = library_code();
        if (duk_safe_call(context_, set_up, &code, 0, 1) != DUK_EXEC_SUCCESS)
            throw std::bad_alloc();  // nothing else can be amiss with the same globals every time
        duk_pop(context_);
        heap_->keep();
    }
    if (!options_.memory) options_.memory = std::make_shared<MemoryBudget>(options_.memory_limit);
    memory().set_budget(options_.memory.get());
    if (!options_.create_object) {
        int nothing = 0;
        protect(remove_creation, nothing);
    }
    memory().set_time(&time_);
}

Runtime::~Runtime() {
    handles_.clear();
    ScriptHeap::release(std::move(heap_));
}

Handle* Runtime::add(Handle handle) {
    Handle& added = handles_.emplace_back(std::move(handle));
    added.self = std::prev(handles_.end());
    return &added;
}

void Runtime::remove(Handle* handle) noexcept { handles_.erase(handle->self); }

void Runtime::set_time_limit(std::chrono::milliseconds limit) {
    time_.set(limit);
    is_end_noted_ = false;
}

void Runtime::clear_time_limit() { time_.clear(); }

void Runtime::check(duk_context* context) {
    if (is_stopped_) raise_error(context, stash::error, "The script was stopped");
    if (!time_.is_over()) return;
    memory().end_refusal();
    raise_error(context, stash::error, "The script ran longer than it may");
}

int Runtime::tick(duk_context* context) {
    const auto before = time_.last_look();
    check(context);
    return time_.last_look() - before > slow_rounds ? 0 : rounds_of_a_tick;
}

double Runtime::random_number() {
    if (!numbers_) numbers_.emplace(std::random_device{}());
    constexpr double of_53_bits = 1.0 / (std::uint64_t{1} << 53);
    return static_cast<double>((*numbers_)() >> 11) * of_53_bits;
}

void Runtime::note_thrown(duk_context* context, bool knows_place) {
    const bool is_end = time_.was_over();
    if (is_end ? is_end_noted_ : knows_place) return;
    note_place(context);
    is_end_noted_ = is_end;
}

void Runtime::note_place(duk_context* context) {
    noted_ = {};
    for (duk_int_t level = -1;; --level) {
        duk_inspect_callstack_entry(context, level);
        if (duk_is_undefined(context, -1)) return duk_pop(context);
        duk_get_prop_literal(context, -1, "function");
        duk_get_prop_literal(context, -1, "fileName");
        const auto program = programs_.find(std::string_view(duk_safe_to_string(context, -1)));
        // Functions of the engine's own are of no program.
        if (duk_is_ecmascript_function(context, -2) && program != programs_.end()) {
            duk_get_prop_literal(context, -3, "lineNumber");
            noted_ = {program->second, duk_get_int_default(context, -1, 0)};
            return duk_pop_n(context, 4);
        }
        duk_pop_3(context);
    }
}

Place Runtime::noted_place() const {
    return noted_.program == nullptr ? Place{} : noted_.program->place_of(noted_.line);
}

template <class Work>
void Runtime::protect(duk_ret_t (*step)(duk_context*, void*), Work& work) {
    memory().take_refusal();
    if (duk_safe_call(context_, step, &work, 0, 1) != DUK_EXEC_SUCCESS) raise_uncaught();
    duk_pop(context_);
}

void Runtime::set_global(const std::string& name, const Variant& value) {
    Global work(name, value);
    protect(&Global::put, work);
}

void Runtime::set_function(const std::string& name, HostFunction function) {
    functions_.push_back(std::move(function));
    GlobalFunction work{name, functions_.size() - 1};
    protect(&GlobalFunction::put, work);
}

Ending Runtime::run(const std::shared_ptr<const Program::Content>& program) {
    if (is_stopped_) return Ending::stopped;
    programs_[program->file] = program;
    noted_ = {};
    memory().take_refusal();
    const bool raised =
        duk_safe_call(context_, execute, const_cast<Program::Content*>(program.get()), 0, 1) !=
        DUK_EXEC_SUCCESS;
    if (raised && !is_stopped_) raise_uncaught();
    duk_pop(context_);
    if (is_stopped_) return Ending::stopped;
    if (time_.was_over()) raise_late(noted_place());
    return Ending::finished;
}

void Runtime::raise_late(Place place) {
    throw ScriptError(
        Trouble::time_limit, std::move(place),
        "The script ran longer than it may (" + std::to_string(time_.limit().count()) + " ms)");
}

void Runtime::raise_uncaught() {
    memory().end_refusal();
    const bool described =
        duk_safe_call(context_, describe, nullptr, 1, description_parts) == DUK_EXEC_SUCCESS;
    const bool refused = memory().take_refusal();
    const duk_idx_t first = duk_get_top(context_) - description_parts;
    const int line = duk_get_int_default(context_, first, 0);
    const Text file = text_at(context_, first + 1);
    const Text name = text_at(context_, first + 2);
    Text message = text_at(context_, first + 3);
    const std::int32_t number =
        duk_is_number(context_, first + 4) ? duk_to_int32(context_, first + 4) : no_number;
    const Text description = text_at(context_, first + 5);
    const Text source = text_at(context_, first + 6);
    const bool knows_place = !file.empty();
    duk_pop_n(context_, description_parts);

    const bool lacks_memory =
        refused && (!described || name == u"DoubleError" || message == u"alloc failed");
    Place place = noted_place();
    if (knows_place && !is_end_noted_) {
        const auto program = programs_.find(to_utf8(file));
        place = program == programs_.end() ? Place{to_utf8(file), line}
                                           : program->second->place_of(line);
    }
    if (time_.was_over()) raise_late(std::move(place));
    if (lacks_memory)
        throw ScriptError(Trouble::memory_limit, place,
                          "The script needed more memory than it may (" +
                              shown_megabytes(options_.memory->limit()) + ")");
    if (!described) message = u"a failure that cannot be described";
    if (name == u"TypeError") leave_out_stack_index(message);
    if (number != no_number && !description.empty())
        message = description;
    else if (!name.empty())
        message = message.empty() ? name : name + u": " + message;
    ScriptError error(Trouble::uncaught, place, to_utf8(message));
    error.number = number;
    error.description = description;
    error.source = source;
    throw error;
}

}  // namespace orvo::script
