#include "suite/directory/ldap/wire/wldap32_connection.h"

#include <array>
#include <utility>

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap::detail {
namespace {

using std::chrono::milliseconds;

l_timeval timeval_of(milliseconds limit) {
    return {static_cast<LONG>(limit.count() / 1000),
            static_cast<LONG>(limit.count() % 1000 * 1000)};
}

// One question and its answer, whatever that is: not every version of the library connects before
// it has something to send.
ULONG exchange(LDAP* handle, milliseconds limit) {
    Wide base("");
    Wide filter("(objectClass=*)");
    Wide nothing("1.1");
    std::array<wchar_t*, 2> attributes = {nothing.get(), nullptr};
    ULONG request = 0;
    const ULONG sent = ldap_search_extW(handle, base.get(), LDAP_SCOPE_BASE, filter.get(),
                                        attributes.data(), FALSE, nullptr, nullptr, 0, 0, &request);
    if (sent != LDAP_SUCCESS) return sent;
    Result why;
    const ReceivedMessage answer = next_message(handle, request, limit, why);
    return static_cast<ULONG>(answer.message ? 0 : why.code);
}

}  // namespace

std::string narrow(const wchar_t* text) {
    return text ? to_utf8(reinterpret_cast<const char16_t*>(text)) : std::string();
}

Result client_result(ULONG library_code) {
    const int code = static_cast<int>(library_code);
    return {code < 0 ? result_code::other - code : code, {}, {}};
}

ULONG last_code(LDAP* handle) {
    ULONG code = LDAP_SUCCESS;
    if (ldap_get_option(handle, LDAP_OPT_ERROR_NUMBER, &code) != LDAP_SUCCESS ||
        code == LDAP_SUCCESS)
        code = LDAP_SERVER_DOWN;
    return code;
}

ReceivedMessage next_message(LDAP* handle, ULONG request, milliseconds limit, Result& why) {
    l_timeval timeout = timeval_of(limit);
    LDAPMessage* received = nullptr;
    const ULONG type = ldap_result(handle, request, LDAP_MSG_ONE, &timeout, &received);
    Message message(received);
    if (type == 0) {
        ldap_abandon(handle, request);
        why = {result_code::timeout, {}, {}};
        return {};
    }
    if (type == static_cast<ULONG>(-1) || !message) {
        why = client_result(last_code(handle));
        return {};
    }
    return {std::move(message), type};
}

Handle open_connection(const ServerHost& host, const Deadline& deadline, Result& why) {
    if (!host.ca_file.empty()) {
        why = {
            result_code::not_supported, "A certificate file cannot be named on this system.", {}};
        return nullptr;
    }
    Wide name(host.name);
    Handle handle(host.security == Security::tls ? ldap_sslinitW(name.get(), host.port, TRUE)
                                                 : ldap_initW(name.get(), host.port));
    if (!handle) {
        why = {result_code::local_error, {}, {}};
        return nullptr;
    }
    ULONG version = LDAP_VERSION3;
    ULONG unlimited = 0;
    ldap_set_option(handle.get(), LDAP_OPT_PROTOCOL_VERSION, &version);
    ldap_set_option(handle.get(), LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    ldap_set_option(handle.get(), LDAP_OPT_SIZELIMIT, &unlimited);
    ldap_set_option(handle.get(), LDAP_OPT_TIMELIMIT, &unlimited);
    // A lost connection is the caller's to replace; a library without this option never does it.
    ldap_set_option(handle.get(), LDAP_OPT_AUTO_RECONNECT, LDAP_OPT_OFF);
    l_timeval limit = timeval_of(deadline.left());
    ULONG code = ldap_connect(handle.get(), &limit);
    if (code == LDAP_SUCCESS && host.security == Security::start_tls)
        code = ldap_start_tls_sW(handle.get(), nullptr, nullptr, nullptr, nullptr);
    if (code == LDAP_SUCCESS && host.security != Security::start_tls)
        code = exchange(handle.get(), deadline.left());
    if (code == LDAP_SUCCESS) return handle;
    why = client_result(code);
    if (why.code == result_code::timeout) why.message = "there was no connection";
    return nullptr;
}

}  // namespace orvo::directory::ldap::detail
