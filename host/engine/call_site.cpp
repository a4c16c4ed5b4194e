// The language reads a member before it calls it, and a trap is told of the reading alone. Which of
// the two it is stands in the instruction that reads. Duktape shows its instructions in one way
// only: in the text that duk_dump_function makes of a function.

#include "host/engine/call_site.h"

#include <cstring>

namespace orvo::script {
namespace {

// The text and the numbers of instructions belong to a version.
static_assert(DUK_VERSION / 100 == 207, "see whether the text of functions is still this one");

// A function's text begins with a mark, the counts of its instructions, constants and inner
// functions (four bytes each), its registers and parameters (two bytes each), its lines and flags
// (four bytes each); its instructions follow, four bytes each. The first byte is the highest.
constexpr std::size_t bytes_of_header = 1 + 3 * 4 + 2 * 2 + 3 * 4;
constexpr std::size_t place_of_count = 1;
constexpr std::size_t bytes_of_instruction = 4;

// An instruction's lowest byte is its operation; its two lowest bits tell where the operands are.
constexpr unsigned operand_bits = 3;
constexpr unsigned read_to_call = 0xD0;  // of a property: o.f(…), o[k](…)
constexpr unsigned variable_to_call =
    0xAC;  // of a variable, which may be a property: with (o) f(…)

constexpr const char* instructions_key = DUK_HIDDEN_SYMBOL("instructions");

std::size_t number_at(const unsigned char* bytes) {
    std::size_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8 | bytes[i];
    return number;
}

// Pushes the instructions of the function on top of the stack. They are kept at the function.
void push_instructions(duk_context* context) {
    if (duk_get_prop_string(context, -1, instructions_key)) return;
    duk_pop(context);
    duk_dup_top(context);
    duk_dump_function(context);
    duk_size_t size = 0;
    const auto* text = static_cast<const unsigned char*>(duk_get_buffer_data(context, -1, &size));
    if (size < bytes_of_header) {
        duk_push_fixed_buffer(context, 0);
    } else {
        const std::size_t room = (size - bytes_of_header) / bytes_of_instruction;
        const std::size_t told = number_at(text + place_of_count);
        const std::size_t count = told < room ? told : room;
        std::memcpy(duk_push_fixed_buffer(context, count * bytes_of_instruction),
                    text + bytes_of_header, count * bytes_of_instruction);
    }
    duk_remove(context, -2);
    duk_push_string(context, instructions_key);
    duk_dup(context, -2);
    duk_def_prop(context, -4, DUK_DEFPROP_HAVE_VALUE | DUK_DEFPROP_FORCE);
}

}  // namespace

bool is_called_at_once(duk_context* context) {
    constexpr duk_int_t caller_of_the_trap = -2;
    const duk_idx_t top = duk_get_top(context);
    duk_require_stack(context, 16);
    duk_inspect_callstack_entry(context, caller_of_the_trap);
    bool is_called = false;
    if (duk_is_object(context, -1)) {
        duk_get_prop_literal(context, -1, "pc");
        const duk_int_t at = duk_get_int(context, -1);
        duk_get_prop_literal(context, -2, "function");
        if (at >= 0 && duk_is_ecmascript_function(context, -1)) {
            push_instructions(context);
            duk_size_t size = 0;
            const auto* all =
                static_cast<const unsigned char*>(duk_get_buffer_data(context, -1, &size));
            const std::size_t end = (static_cast<std::size_t>(at) + 1) * bytes_of_instruction;
            if (end <= size) {
                const unsigned operation = all[end - 1] & ~operand_bits;
                is_called = operation == read_to_call || operation == variable_to_call;
            }
        }
    }
    duk_set_top(context, top);
    return is_called;
}

}  // namespace orvo::script
