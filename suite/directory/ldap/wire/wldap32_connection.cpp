#include "suite/directory/ldap/wire/wldap32_connection.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/wire/deadline.h"
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
    WideList nothing({"1.1"});
    ULONG request = 0;
    const ULONG sent = ldap_search_extW(handle, base.get(), LDAP_SCOPE_BASE, filter.get(),
                                        nothing.get(), FALSE, nullptr, nullptr, 0, 0, &request);
    if (sent != LDAP_SUCCESS) return sent;
    Result why;
    const Received answer = wait_for(handle, request, LDAP_MSG_ALL, limit, why);
    return static_cast<ULONG>(answer.message ? 0 : why.code);
}

}  // namespace

std::string narrow(const wchar_t* text) {
    return text ? to_utf8(reinterpret_cast<const char16_t*>(text)) : std::string();
}

berval borrowed(std::string_view bytes) {
    return {static_cast<ULONG>(bytes.size()), const_cast<char*>(bytes.data())};
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

Received wait_for(LDAP* handle, ULONG request, ULONG wanted, milliseconds limit, Result& why) {
    l_timeval timeout = timeval_of(limit);
    LDAPMessage* received = nullptr;
    const ULONG type = ldap_result(handle, request, wanted, &timeout, &received);
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

Result outcome_of(LDAP* handle, LDAPMessage* message, std::vector<Control>* controls) {
    ULONG code = LDAP_OTHER;
    wchar_t* nearest_text = nullptr;
    wchar_t* message_text = nullptr;
    wchar_t** referrals = nullptr;
    LDAPControlW** received = nullptr;
    const ULONG parsed = ldap_parse_resultW(handle, message, &code, &nearest_text, &message_text,
                                            &referrals, controls ? &received : nullptr, FALSE);
    const OwnedText nearest(nearest_text);
    const OwnedText text(message_text);
    if (parsed != LDAP_SUCCESS) return client_result(parsed);
    Result result{static_cast<int>(code), narrow(text.get()), narrow(nearest.get())};
    for (wchar_t** url = referrals; url && *url; ++url) result.referrals.push_back(narrow(*url));
    if (referrals) ldap_value_freeW(referrals);
    for (LDAPControlW** control = received; control && *control; ++control) {
        const berval& value = (*control)->ldctl_value;
        controls->push_back({narrow((*control)->ldctl_oid),
                             value.bv_val ? std::string(value.bv_val, value.bv_len) : ""});
    }
    if (received) ldap_controls_freeW(received);
    return result;
}

Handle open_connection(const ServerHost& host, const Limits& limits, Result& why) {
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
    const Deadline deadline(std::min(limits.connect, limits.answer));
    l_timeval limit = timeval_of(deadline.left());
    ULONG code = ldap_connect(handle.get(), &limit);
    if (code == LDAP_SUCCESS && host.security == Security::start_tls)
        code = ldap_start_tls_sW(handle.get(), nullptr, nullptr, nullptr, nullptr);
    if (code == LDAP_SUCCESS && host.security != Security::start_tls)
        code = exchange(handle.get(), deadline.left());
    if (code == LDAP_SUCCESS) return handle;
    why = client_result(code);
    return nullptr;
}

}  // namespace orvo::directory::ldap::detail
