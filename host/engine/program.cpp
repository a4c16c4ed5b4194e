#include "host/engine/program.h"

#include <duktape.h>

#include <optional>

#include "host/engine/memory.h"
#include "host/engine/rewrite.h"

namespace orvo::script {
namespace {

// Reading a script takes at most this much, however the script runs later.
constexpr std::size_t compiler_memory = std::size_t{256} << 20;

// What goes into and comes out of the compiler; Duktape leaves its functions by jumps, so nothing
// in them may need to be destroyed.
struct Compilation {
    const std::string& source;
    const std::string& file;
    unsigned flags;
    const char* bytes = nullptr;
    std::size_t count = 0;
    int line = 0;
};

duk_ret_t compile_source(duk_context* context, void* data) {
    auto& work = *static_cast<Compilation*>(data);
    duk_push_lstring(context, work.file.data(), work.file.size());
    duk_compile_lstring_filename(context, work.flags, work.source.data(), work.source.size());
    duk_dump_function(context);
    duk_size_t size = 0;
    work.bytes = static_cast<const char*>(duk_get_buffer_data(context, -1, &size));
    work.count = size;
    return 1;
}

duk_ret_t read_problem(duk_context* context, void* data) {
    auto& work = *static_cast<Compilation*>(data);
    duk_get_prop_literal(context, 0, "lineNumber");
    work.line = duk_get_int_default(context, -1, 0);
    duk_get_prop_literal(context, 0, "message");
    duk_safe_to_string(context, -1);
    return 1;
}

// The compiler's message without the line that it ends with.
std::string without_line(std::string message) {
    const std::size_t at = message.rfind(" (line ");
    const bool at_end = message.find(", end of input)", at) != std::string::npos;
    if (at != std::string::npos) message.erase(at);
    return at_end ? message + " at the end" : message;
}

}  // namespace

Place Program::Content::place_of(int line) const {
    if (line >= 1 && static_cast<std::size_t>(line) <= lines.size()) {
        const Place& written = lines[static_cast<std::size_t>(line) - 1];
        if (!written.file.empty()) return written;
    }
    return {file, line};
}

std::string compiled(const std::string& source, const std::string& file, unsigned flags) {
    MemoryBudget budget(compiler_memory);
    Memory memory;
    memory.set_budget(&budget);
    duk_context* context =
        duk_create_heap(Memory::allocate, Memory::reallocate, Memory::release, &memory, nullptr);
    if (context == nullptr) throw std::bad_alloc();
    Compilation work{source, file, flags};
    if (duk_safe_call(context, compile_source, &work, 0, 1) == DUK_EXEC_SUCCESS)
        return {work.bytes, work.count};
    const bool readable = duk_safe_call(context, read_problem, &work, 1, 1) == DUK_EXEC_SUCCESS;
    const char* message = readable ? duk_get_string(context, -1) : nullptr;
    throw SyntaxProblem(work.line,
                        without_line(message != nullptr ? message : "the script cannot be read"));
}

Program Program::compile(std::string_view source, std::string file, LineMap lines) {
    auto content = std::make_shared<Content>();
    content->file = std::move(file);
    content->lines = std::move(lines);
    try {
        content->code = compiled(rewritten(source), content->file, 0);
    } catch (const SyntaxProblem& problem) {
        throw ScriptError(Trouble::syntax, content->place_of(problem.line), problem.what());
    }
    return Program(std::move(content));
}

const std::string& Program::file() const { return content_->file; }

}  // namespace orvo::script
