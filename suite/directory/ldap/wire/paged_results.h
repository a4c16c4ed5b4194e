#pragma once

// Answers that come in pages (RFC 2696), so that a server's limit for one answer does not cut what
// was asked for.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap {

inline constexpr std::string_view paged_results_oid = "1.2.840.113556.1.4.319";

// The control's value in a request: how many entries, and the place to go on from ("" at first).
std::string paged_results_value(int page_size, std::string_view page);

// Where the next page begins, from the controls of an answer; "" behind the last page and where
// the server knows no pages. Nothing where the control cannot be read.
std::optional<std::string> try_next_page(std::span<const Control> controls);

// What came of a search, and which page follows it.
SearchResult paged(Result result, std::span<const Control> controls);

// Hands over the entries of all pages. Limits::operation is for each page. A server that allows no
// pages of this size is asked for ten times smaller ones, and so on; one that allows none is asked
// for everything at once.
Result collect_pages(Session& session, SearchRequest request, int page_size,
                     const std::function<void(EntryData&&)>& take);

}  // namespace orvo::directory::ldap
