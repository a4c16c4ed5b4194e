#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

struct Row {
    int code;
    std::uint32_t number;
    TextView sentence;
};

// Numbers are the platform's own for directory errors; only "already exists" has one of the
// component's.
constexpr Row rows[] = {
    {1, 0x80072020, u"The server met an error in the order of operations."},
    {2, 0x80072021, u"The server did not understand the request."},
    {3, 0x80072022, u"The time limit of the server was exceeded."},
    {4, 0x80072023, u"The size limit was exceeded."},
    {5, 0x80072025, u"The compared values differ."},
    {6, 0x80072026, u"The compared values are equal."},
    {7, 0x80072027, u"The server does not support this kind of authentication."},
    {8, 0x80072028, u"The server requires a stronger authentication."},
    {10, 0x8007202B, u"The server refers to another server."},
    {11, 0x80072024, u"An administrative limit of the server was exceeded."},
    {12, 0x8007202C, u"The server does not support a critical extension."},
    {13, 0x8007202D, u"The server requires an encrypted connection."},
    {14, 0x80072034, u"The authentication is not complete."},
    {16, 0x8007200A, u"The entry has no such attribute or value."},
    {17, 0x8007200C, u"The attribute type is not defined."},
    {18, 0x8007202E, u"The attribute cannot be matched in this way."},
    {19, 0x8007202F, u"The value violates a constraint."},
    {20, 0x8007200D, u"The attribute or value already exists."},
    {21, 0x8007200B, u"The value does not have the attribute's syntax."},
    {32, 0x80072030, u"There is no such entry."},
    {33, 0x80072031, u"The alias leads to no entry."},
    {34, 0x80072032, u"The distinguished name is not valid."},
    {36, 0x80072034, u"The alias cannot be followed."},
    {48, 0x80072029, u"This kind of authentication is not possible with the entry."},
    {49, 0x8007052E, u"The user name or the password is wrong."},
    {50, 0x80072098, u"The rights are not sufficient."},
    {51, 0x8007200E, u"The server is busy."},
    {52, 0x8007200F, u"The server is not available."},
    {53, 0x80072035, u"The server is unwilling to perform the request."},
    {54, 0x80072036, u"The server detected a loop."},
    {64, 0x80072037, u"The name is not allowed for such an entry."},
    {65, 0x80072014, u"The entry does not agree with its object class."},
    {66, 0x80072015, u"The operation is not allowed on an entry that has others below it."},
    {67, 0x80072016, u"The operation is not allowed on the entry's own name."},
    {68, 0x8004044F, u"The specified entry already exists."},
    {69, 0x80072017, u"The object class cannot be changed."},
    {71, 0x80072039, u"The operation concerns more than one server."},
    {80, 0x80072095, u"The server met an error of another kind."},
    {81, 0x8007203A, u"The server cannot be reached."},
    {82, 0x8007203B, u"The directory client met an error."},
    {83, 0x8007203C, u"The request cannot be encoded."},
    {84, 0x8007203A, u"The server's answer cannot be read."},
    {85, 0x8007203A, u"The server did not answer in time."},
    {86, 0x8007202A, u"This kind of authentication is not known."},
    {87, 0x8007203E, u"The search filter is not valid."},
    {88, 0x8007203B, u"The operation was cancelled."},
    {89, 0x8007203F, u"A setting or argument is not valid."},
    {90, 0x8007000E, u"There is not enough memory."},
    {91, 0x8007203A, u"The connection to the server cannot be established."},
    {92, 0x80072040, u"The directory client does not support this."},
    {93, 0x80072042, u"The server's answer lacks a control."},
    {94, 0x80072041, u"The server returned no results."},
    {96, 0x80072043, u"The directory client detected a loop."},
    {97, 0x80072044, u"Too many servers referred to others."},
};

const Row* find(int code) {
    for (const Row& row : rows)
        if (row.code == code) return &row;
    return nullptr;
}

}  // namespace

std::int32_t number_of_code(int code) {
    const Row* row = find(code);
    return error_number(row ? row->number : find(result_code::other)->number);
}

Failure directory_failure(int code, TextView source, std::string_view message,
                          std::string_view nearest_entry) {
    const Row* row = find(code);
    Text description = u"(" + decimal(code) + u") ";
    description += row ? row->sentence : TextView(u"The server met an unknown error.");
    if (!message.empty()) description += u" " + from_utf8(message);
    if (!nearest_entry.empty())
        description += u" The nearest entry is '" + from_utf8(nearest_entry) + u"'.";
    return Failure(number_of_code(code), Text(source), description);
}

}  // namespace orvo::directory
