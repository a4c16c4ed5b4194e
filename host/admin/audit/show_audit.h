#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/admin/common/options.h"
#include "suite/audit/audit_event.h"

namespace orvo::admin {

// What is asked of the audit; an empty list asks for nothing in particular.
struct AuditRequest {
    CommonOptions common;
    RowOptions rows;
    std::filesystem::path file;  // empty: the site's
    std::vector<std::string> users, by, from, events, results;
    std::optional<std::chrono::system_clock::time_point> since, until;  // until: not itself
    bool follows = false;
};

// "2026-11-22T12:34:56Z" and shorter forms (audit_event.h), or how long ago: "30m", "2h", "7d".
std::optional<std::chrono::system_clock::time_point> try_time_or_age(
    const std::string& text, std::chrono::system_clock::time_point now);

// Whether the event is one of those that are asked for. Users and accounts are the same whose names
// are, in whatever spelling; a text without "=" is the first value of a name: "jsmith". An address
// that ends in "." or ":" is the beginning of addresses, a result "failed" that of results.
bool is_asked_for(const AuditRequest& request, const audit::Event& event);

// Prints the events, the oldest first, from all files that there are. With `follows` it goes on
// with those that are recorded from now on, as lines of JSON, until it is interrupted. partly_done
// where there are lines that are none of an audit.
int show_audit(const AuditRequest& request);

}  // namespace orvo::admin
