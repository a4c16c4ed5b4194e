#include "host/web/messages/request_fields.h"

#include <algorithm>

#include "host/web/messages/encoding.h"
#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

class Counter {
public:
    void count() {
        if (++count_ > most_fields)
            throw Refusal(400,
                          "The request has more than " + std::to_string(most_fields) + " fields.");
    }

private:
    std::size_t count_ = 0;
};

}  // namespace

void RequestFields::add(Text name, Text value) {
    const auto [place, is_new] = places_.try_emplace(lower(name), fields_.size());
    if (is_new)
        fields_.push_back({std::move(name), {std::move(value)}});
    else
        fields_[place->second].values.push_back(std::move(value));
}

const RequestFields::Field* RequestFields::find(TextView name) const {
    const auto found = places_.find(lower(name));
    return found == places_.end() ? nullptr : &fields_[found->second];
}

void RequestFields::remove(TextView name) {
    const auto found = places_.find(lower(name));
    if (found == places_.end()) return;
    const std::size_t place = found->second;
    fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(place));
    places_.erase(found);
    for (auto& [other, other_place] : places_)
        if (other_place > place) --other_place;
}

RequestFields parse_urlencoded(std::string_view text) {
    RequestFields fields;
    Counter counter;
    while (!text.empty()) {
        const auto end = text.find('&');
        const auto pair = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (pair.empty()) continue;
        counter.count();
        const auto equals = pair.find('=');
        const auto value =
            equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1);
        fields.add(from_utf8(form_decoded(pair.substr(0, equals))), from_utf8(form_decoded(value)));
    }
    return fields;
}

}  // namespace orvo::web
