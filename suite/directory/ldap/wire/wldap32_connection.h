#pragma once

// How a connection comes about with the client library that Windows ships, and what its two sources
// share. Private to them: it shows the system's headers.

#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// Each stands on the one before it.
#include <winldap.h>

#include <winber.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/network/deadline.h"
#include "platform/values/secret.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap::detail {

// A text as the library takes it. The library does not change what it gets.
class Wide {
public:
    explicit Wide(std::string_view utf8) : text_(from_utf8(utf8)) {}
    wchar_t* get() { return reinterpret_cast<wchar_t*>(text_.data()); }

private:
    Text text_;
};

// The same for a password; overwritten when it goes.
class WideSecret {
public:
    explicit WideSecret(const Secret& secret) : text_(from_utf8(secret.reveal())) {}
    ~WideSecret() { overwrite(text_.data(), text_.size() * sizeof text_[0]); }
    WideSecret(const WideSecret&) = delete;
    wchar_t* get() { return reinterpret_cast<wchar_t*>(text_.data()); }

private:
    Text text_;
};

std::string narrow(const wchar_t* text);

struct FreeText {
    void operator()(wchar_t* text) const { ldap_memfreeW(text); }
};
using OwnedText = std::unique_ptr<wchar_t, FreeText>;

struct FreeMessage {
    void operator()(LDAPMessage* message) const { ldap_msgfree(message); }
};
using Message = std::unique_ptr<LDAPMessage, FreeMessage>;

// A message and what it is; the type within the message is not set by every version of the library.
struct ReceivedMessage {
    Message message;
    ULONG type = 0;
};

struct Unbind {
    void operator()(LDAP* handle) const { ldap_unbind(handle); }
};
using Handle = std::unique_ptr<LDAP, Unbind>;

// A result with one of the library's own codes; some versions count theirs down from -1.
Result client_result(ULONG library_code);
// The library's code for its last failure on this handle.
ULONG last_code(LDAP* handle);

// The next message of a request. Empty: `why` tells, and the request is abandoned.
ReceivedMessage next_message(LDAP* handle, ULONG request, std::chrono::milliseconds limit,
                             Result& why);

// Connects to one host before the deadline and encrypts the connection where it asks for it; a
// certificate is verified against the system's store. Empty: `why` tells; with code 85 its message
// names what was not done in time. How long finding the address takes, and agreeing on encryption
// by StartTLS, is the system's to limit.
Handle open_connection(const ServerHost& host, const Deadline& deadline, Result& why);

}  // namespace orvo::directory::ldap::detail
