#pragma once

// The properties that hold for any input, one function for each kind of text that is read from
// elsewhere. libFuzzer calls them with inputs that it makes (fuzz_main.cpp), the ordinary tests
// with those of tests/fuzz/corpus (corpus_test.cpp).

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/failure.h"

namespace orvo::fuzz {

// A property does not hold.
class Broken : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

// `property`: what should be so.
void require(bool holds, const char* property);

// That a text was refused as such: by this failure, and with the place where it is wrong, a number
// behind `before` from 1 to `last`.
void require_place(std::string_view description, std::string_view before, std::size_t last);
void require_refusal(const Failure& failure, std::int32_t number, std::string_view before,
                     std::size_t last);

// Lines, the last one also where nothing ends it; an empty text has one.
std::size_t line_count(std::string_view text);
// Cut at the first line end; the second is empty where there is none.
std::pair<std::string_view, std::string_view> first_line_and_rest(std::string_view text);

// Each raises Broken, or nothing.
void access_rules_properties(std::string_view input);
void cookies_properties(std::string_view input);
void distinguished_name_properties(std::string_view input);
void filter_properties(std::string_view input);
void forwarded_properties(std::string_view input);
void generalized_time_properties(std::string_view input);
void http_request_properties(std::string_view input);
void kept_bytes_properties(std::string_view input);
void ldif_properties(std::string_view input);
void multipart_properties(std::string_view input);
void page_properties(std::string_view input);
void proxy_header_properties(std::string_view input);
void schema_file_properties(std::string_view input);
void script_properties(std::string_view input);
void store_reply_properties(std::string_view input);
void store_secrets_properties(std::string_view input);

}  // namespace orvo::fuzz
