#pragma once

// What pages keep in the session and in the application: values by name.

#include <unordered_map>
#include <vector>

#include "platform/values/variant.h"

namespace orvo::web {

// Names without regard to case, in the order in which they were first put. The name keeps the
// spelling it was first put with.
class NamedValues {
public:
    // Empty where there is none of that name.
    Variant get(TextView name) const;
    void put(TextView name, Variant value);
    void remove(TextView name);
    void remove_all() { *this = {}; }
    std::size_t count() const { return entries_.size(); }
    const Text& name_at(std::size_t index) const { return entries_[index].first; }
    const Variant& value_at(std::size_t index) const { return entries_[index].second; }
    std::vector<Text> names() const;
    // What they hold, roughly in bytes.
    std::size_t size() const { return size_; }

private:
    std::vector<std::pair<Text, Variant>> entries_;
    std::unordered_map<Text, std::size_t> places_;  // by name in lower case
    std::size_t size_ = 0;
};

// Who else sees what is kept.
enum class Reach {
    process,  // all threads of this one
    fleet,    // other machines too: nothing but bytes gets there
};

// Raises 5 for a value that cannot be kept, with a text that says what may be: text, numbers,
// dates, booleans, bytes, arrays of these, and within a process objects made for sharing. `holder`:
// "Session" or "Application".
void require_keepable(const Variant& value, TextView holder, TextView name,
                      Reach reach = Reach::process);

// What is kept of a value that is put, not set: the value itself, or the default value of an object
// that cannot be kept, as a field of a form is its text. Raises as above.
Variant keepable(const Variant& value, TextView holder, TextView name,
                 Reach reach = Reach::process);

}  // namespace orvo::web
