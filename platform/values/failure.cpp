#include "platform/values/failure.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvo {
namespace {

// A run-time error: its number, its text, and the result codes that mean the same.
struct Row {
    std::int32_t number;
    TextView text;
    std::uint32_t results[4] = {};
};

constexpr Row rows[] = {
    {5, u"Invalid procedure call or argument", {0x80070057}},
    {6, u"Overflow", {0x8002000A}},
    {7, u"Out of memory", {0x8007000E}},
    {9, u"Subscript out of range", {0x8002000B, 0x80028CA1}},
    {10, u"This array is fixed or temporarily locked", {0x8002000D}},
    {11, u"Division by zero", {0x80020012}},
    {13, u"Type mismatch", {0x80020005, 0x80028CA0}},
    {52, u"Bad file name or number"},
    {53, u"File not found"},
    {54, u"Bad file mode"},
    {57, u"Device I/O error"},
    {58, u"File already exists", {0x80030050}},
    {61, u"Disk full"},
    {62, u"Input past end of file"},
    {67, u"Too many files"},
    {68, u"Device unavailable"},
    {70, u"Permission denied", {0x80070005, 0x80030005}},
    {76, u"Path not found", {0x80030003}},
    {91, u"Object variable or With block variable not set"},
    {94, u"Invalid use of Null"},
    {424, u"Object required"},
    {429,
     u"ActiveX component can't create object",
     {0x80040154, 0x800401F3, 0x800401E3, 0x80080005}},
    {430,
     u"Class does not support Automation or does not support expected interface",
     {0x80004002}},
    {432,
     u"File name or class name not found during Automation operation",
     {0x800401E6, 0x800401EA, 0x80030002}},
    {438, u"Object doesn't support this property or method", {0x80020003, 0x80020006, 0x80020001}},
    {445, u"Object doesn't support this action", {0x80004001}},
    {446, u"Object doesn't support named arguments", {0x80020007}},
    {447, u"Object doesn't support current locale setting", {0x8002000C}},
    {448, u"Named argument not found", {0x80020004}},
    {449, u"Argument not optional", {0x8002000F}},
    {450, u"Wrong number of arguments or invalid property assignment", {0x8002000E}},
    {451, u"Object not a collection", {0x80020011}},
    {457, u"This key is already associated with an element of this collection"},
    {458, u"Variable uses an Automation type not supported in Visual Basic", {0x80020008}},
    {462, u"The remote server machine does not exist or is unavailable", {0x800706BA}},
    {500, u"Variable is undefined"},
    {501, u"Illegal assignment"},
    {3001,
     u"Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
     u"another."},
    {3002, u"File could not be opened."},
    {3003, u"File could not be read."},
    {3004, u"Write to file failed."},
    {3021,
     u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
     u"requires a current record."},
    {3219, u"Operation is not allowed in this context."},
    {3251, u"Object or provider is not capable of performing requested operation."},
    {3265,
     u"Item cannot be found in the collection corresponding to the requested name or ordinal."},
    {3367, u"Object is already in collection. Cannot append."},
    {3421, u"Application uses a value of the wrong type for the current operation."},
    {3704, u"Operation is not allowed when the object is closed."},
    {3705, u"Operation is not allowed when the object is open."},
    {3709,
     u"The connection cannot be used to perform this operation. It is either closed or invalid in "
     u"this context."},
    {32811, u"Element not found"},
    {error_number(0x80040E21),
     u"Multiple-step operation generated errors. Check each status value."},
};

constexpr std::uint32_t runtime_results = 0x800A0000;
constexpr std::int32_t unspecified = error_number(0x80004005);

std::string shown(std::int32_t number, TextView description) {
    const Text digits =
        number >= 0 && number <= 0xFFFF ? decimal(number) : u"0x" + hexadecimal(number);
    return to_utf8(digits + u": ").append(to_utf8(description));
}

}  // namespace

Failure::Failure(std::int32_t number, Text source, Text description, Text help_file,
                 std::int32_t help_context)
    : number(number),
      source(std::move(source)),
      description(std::move(description)),
      help_file(std::move(help_file)),
      help_context(help_context),
      what_(shown(number, this->description)) {}

TextView runtime_error_text(std::int32_t number) {
    const auto row = std::ranges::find(rows, number, &Row::number);
    return row == std::end(rows) ? TextView() : row->text;
}

void raise_runtime_error(std::int32_t number) {
    throw Failure(number, {}, Text(runtime_error_text(number)));
}

std::int32_t number_of_result(std::int32_t result) {
    const auto code = static_cast<std::uint32_t>(result);
    if (result >= 0) return result;
    if ((code & 0xFFFF0000) == runtime_results && code != runtime_results) {
        return static_cast<std::int32_t>(code & 0xFFFF);
    }
    const auto row = std::ranges::find_if(rows, [code](const Row& candidate) {
        return std::ranges::find(candidate.results, code) != std::end(candidate.results);
    });
    return row == std::end(rows) ? result : row->number;
}

std::int32_t result_of_number(std::int32_t number) {
    if (number < 0) return number;
    if (number == 0 || number > 0xFFFF) return unspecified;
    return error_number(runtime_results | static_cast<std::uint32_t>(number));
}

}  // namespace orvo
