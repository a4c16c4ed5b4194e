#include "suite/store/reply.h"

#include <algorithm>

#include "suite/store/store_error.h"

namespace orvo::store {
namespace {

template <class Wanted, class Value>
const Wanted& wanted(const Value& value, TextView kind) {
    if (const auto* found = std::get_if<Wanted>(&value)) return *found;
    throw Failure(store_refused, Text(store_source),
                  u"The store does not answer with " + Text(kind) +
                      u": somebody else has written to its keys");
}

}  // namespace

std::string Reply::Error::reason() const {
    const std::string shown = text.substr(
        0, std::min({text.find(", with args"), text.find(" script: "), text.find('\n')}));
    return shown.substr(0, 200);
}

std::int64_t Reply::integer() const { return wanted<std::int64_t>(value_, u"a number"); }

const std::string& Reply::text() const { return wanted<std::string>(value_, u"a text"); }

const Reply::List& Reply::list() const { return wanted<List>(value_, u"a list"); }

}  // namespace orvo::store
