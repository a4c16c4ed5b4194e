#pragma once

// Named values that came with a request: query, form, cookies.

#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/values/text.h"

namespace orvo::web {

struct HttpRequest;

// Names in the order of their first value, without regard to case; a name may have several values.
class RequestFields {
public:
    struct Field {
        Text name;
        std::vector<Text> values;
    };

    void add(Text name, Text value);
    // Null where there is none of that name.
    const Field* find(TextView name) const;
    const std::vector<Field>& all() const { return fields_; }
    void remove(TextView name);

private:
    std::vector<Field> fields_;
    std::unordered_map<Text, std::size_t> places_;  // by name in lower case
};

// Beyond this many values a request is refused (400).
inline constexpr std::size_t most_fields = 500;

// "a=1&b=2", of a query or a form. Raises Refusal.
RequestFields parse_urlencoded(std::string_view text);

}  // namespace orvo::web
