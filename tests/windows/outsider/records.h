#pragma once

// A record set of somebody else's, as late-bound callers meet it: three rows, of which one is the
// current one.

#include "object.h"

// How an object tells methods from properties.
enum class Manner {
    strict,    // by the flags of each call
    typed,     // the same, and by type information
    careless,  // not at all: whatever it is called with, a member is carried out
};

IUnknown* new_records(Manner manner);

// How a member may be called, and with how many arguments (without the new value of a property).
struct RecordsMember {
    const OLECHAR* name;
    DISPID id;
    WORD invocations;
    short least;
    short most;
    VARTYPE answer;
};
extern const std::vector<RecordsMember> records_members;

// What type information says of these members.
ITypeInfo* new_type_information();
