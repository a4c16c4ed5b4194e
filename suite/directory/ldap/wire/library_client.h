#pragma once

// What a session asks of a client library: one connection, and one request at a time. Private to
// the sources of this folder; there is one implementation for each system.
//
// Codes are those of Result: the library's own failures count from 81.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/network/deadline.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap::detail {

// How a request ended.
struct Outcome {
    Result result;
    std::vector<Control> controls;
    std::string value;  // of an extended operation
};

enum class Received {
    entry,    // one that is wanted, decoded
    nothing,  // an entry that is not wanted, or a reference to another server
    outcome,  // the end, also where the connection fails or the deadline passes (85)
};

class LibraryClient {
public:
    virtual ~LibraryClient() = default;

    // Each sends a request and sets its number, or gives the result that ends it at once.
    virtual Result send_bind(const std::string& name, const Secret& password, Policy policy,
                             int& request) = 0;
    virtual Result send_search(const SearchRequest& search, int& request) = 0;
    virtual Result send_add(const std::string& name, std::span<const Attribute> attributes,
                            int& request) = 0;
    virtual Result send_remove(const std::string& name, int& request) = 0;
    virtual Result send_modify(const std::string& name, std::span<const Replacement> replacements,
                               int& request) = 0;
    // `value`: null for an operation that has none.
    virtual Result send_extended(std::string_view oid, const Secret* value, int& request) = 0;

    // Waits for the next message of the answer. `wanted` is SearchRequest's; `entry` is memory that
    // may be used again. After a failure the request is abandoned.
    virtual Received receive(int request, const Deadline& deadline,
                             const std::function<bool(const std::string&)>& wanted,
                             EntryData& entry, Outcome& outcome) = 0;

    // See Session.
    virtual void set_controls(std::span<const Control> controls) = 0;
    virtual std::string certificate() const = 0;
    virtual bool seems_open() const = 0;
    // How much has been sent on this connection; nothing where the library does not show it.
    virtual std::optional<std::uint64_t> bytes_sent() const = 0;
};

// Connects to one host before the deadline, and encrypts the connection where the host asks for it.
// Null: `why` tells; with code 85 its message names what was not done in time.
std::unique_ptr<LibraryClient> open_client(const ServerHost& host, const Limits& limits,
                                           const Deadline& deadline, Result& why);

}  // namespace orvo::directory::ldap::detail
