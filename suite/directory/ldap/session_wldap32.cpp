// The session over the client library that Windows ships. It verifies a server's certificate
// against the system's store; a certificate file of its own cannot be named to it.
#define NOMINMAX
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// Each stands on the one before it.
#include <winldap.h>

#include <winber.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "suite/directory/common/result_codes.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/password_modify.h"
#include "suite/directory/ldap/session.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* password_policy_control = "1.3.6.1.4.1.42.2.27.8.5.1";

// LDAP_OPT_SERVER_CONTROLS, which not every version of the library and its header has.
constexpr int option_server_controls = 0x12;

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

class WideList {
public:
    explicit WideList(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) texts_.emplace_back(text);
        for (Wide& text : texts_) pointers_.push_back(text.get());
        pointers_.push_back(nullptr);
    }
    // Nothing for an empty list.
    wchar_t** get() { return texts_.empty() ? nullptr : pointers_.data(); }

private:
    std::vector<Wide> texts_;
    std::vector<wchar_t*> pointers_;
};

std::string narrow(const wchar_t* text) {
    return text ? to_utf8(reinterpret_cast<const char16_t*>(text)) : std::string();
}

berval borrowed(std::string_view bytes) {
    return {static_cast<ULONG>(bytes.size()), const_cast<char*>(bytes.data())};
}

struct FreeText {
    void operator()(wchar_t* text) const { ldap_memfreeW(text); }
};
using OwnedText = std::unique_ptr<wchar_t, FreeText>;

struct FreeMessage {
    void operator()(LDAPMessage* message) const { ldap_msgfree(message); }
};
using Message = std::unique_ptr<LDAPMessage, FreeMessage>;

// A message and what it is; the type within the message is not set by every version of the library.
struct Received {
    Message message;
    ULONG type = 0;
};

struct Unbind {
    void operator()(LDAP* handle) const { ldap_unbind(handle); }
};
using Handle = std::unique_ptr<LDAP, Unbind>;

l_timeval timeval_of(milliseconds limit) {
    return {static_cast<LONG>(limit.count() / 1000),
            static_cast<LONG>(limit.count() % 1000 * 1000)};
}

// What the library says of its last failure on this handle.
Result client_result(LDAP* handle) {
    ULONG code = LDAP_SUCCESS;
    if (ldap_get_option(handle, LDAP_OPT_ERROR_NUMBER, &code) != LDAP_SUCCESS ||
        code == LDAP_SUCCESS)
        code = LDAP_SERVER_DOWN;
    return {static_cast<int>(code), {}, {}};
}

// Takes the outcome out of the message that ends an operation.
Result outcome_of(LDAP* handle, LDAPMessage* message, std::vector<Control>* controls = nullptr) {
    ULONG code = LDAP_OTHER;
    wchar_t* nearest_text = nullptr;
    wchar_t* message_text = nullptr;
    LDAPControlW** received = nullptr;
    const ULONG parsed = ldap_parse_resultW(handle, message, &code, &nearest_text, &message_text,
                                            nullptr, controls ? &received : nullptr, FALSE);
    const OwnedText nearest(nearest_text);
    const OwnedText text(message_text);
    if (parsed != LDAP_SUCCESS) return {static_cast<int>(parsed), {}, {}};
    for (LDAPControlW** control = received; control && *control; ++control) {
        const berval& value = (*control)->ldctl_value;
        controls->push_back({narrow((*control)->ldctl_oid),
                             value.bv_val ? std::string(value.bv_val, value.bv_len) : ""});
    }
    if (received) ldap_controls_freeW(received);
    return {static_cast<int>(code), narrow(text.get()), narrow(nearest.get())};
}

Attribute decoded_attribute(LDAP* handle, LDAPMessage* entry, wchar_t* name) {
    struct FreeValues {
        void operator()(berval** values) const { ldap_value_free_len(values); }
    };
    const std::unique_ptr<berval*, FreeValues> values(ldap_get_values_lenW(handle, entry, name));
    Attribute attribute{narrow(name), {}};
    for (berval** value = values.get(); value && *value; ++value)
        attribute.values.emplace_back((*value)->bv_val, (*value)->bv_len);
    return attribute;
}

EntryData decoded_entry(LDAP* handle, LDAPMessage* message) {
    struct FreeElement {
        void operator()(BerElement* element) const { ber_free(element, 0); }
    };
    LDAPMessage* entry = ldap_first_entry(handle, message);
    EntryData data;
    data.name = narrow(OwnedText(ldap_get_dnW(handle, entry)).get());
    BerElement* position = nullptr;
    OwnedText name(ldap_first_attributeW(handle, entry, &position));
    const std::unique_ptr<BerElement, FreeElement> held(position);
    for (; name; name.reset(ldap_next_attributeW(handle, entry, position)))
        data.attributes.push_back(decoded_attribute(handle, entry, name.get()));
    return data;
}

ULONG scope_of(Scope scope) {
    switch (scope) {
        case Scope::base:
            return LDAP_SCOPE_BASE;
        case Scope::one_level:
            return LDAP_SCOPE_ONELEVEL;
        case Scope::subtree:
            return LDAP_SCOPE_SUBTREE;
    }
    return LDAP_SCOPE_BASE;
}

// The values of one replacement as the library takes them.
struct Change {
    explicit Change(const Replacement& replacement) : name(replacement.attribute) {
        for (const std::string& value : replacement.values) values.push_back(borrowed(value));
        for (berval& value : values) pointers.push_back(&value);
        pointers.push_back(nullptr);
        modification.mod_op = LDAP_MOD_REPLACE | LDAP_MOD_BVALUES;
        modification.mod_type = name.get();
        modification.mod_vals.modv_bvals = pointers.data();
    }
    Change(const Change&) = delete;

    Wide name;
    std::vector<berval> values;
    std::vector<berval*> pointers;
    LDAPModW modification{};
};

// Empty: `why` tells.
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
    l_timeval limit = timeval_of(limits.connect);
    ULONG code = ldap_connect(handle.get(), &limit);
    if (code == LDAP_SUCCESS && host.security == Security::start_tls)
        code = ldap_start_tls_sW(handle.get(), nullptr, nullptr, nullptr, nullptr);
    if (code == LDAP_SUCCESS) return handle;
    why = {static_cast<int>(code), {}, {}};
    return nullptr;
}

}  // namespace

struct Session::Connection {
    Handle handle;
    Limits limits;

    LDAP* get() const { return handle.get(); }

    // The next message of a request, or all of them. Empty: `why` tells, and the request is
    // abandoned.
    Received wait_for(ULONG request, ULONG wanted, milliseconds limit, Result& why) const {
        l_timeval timeout = timeval_of(limit);
        LDAPMessage* received = nullptr;
        const ULONG type = ldap_result(get(), request, wanted, &timeout, &received);
        Message message(received);
        if (type == 0) {
            ldap_abandon(get(), request);
            why = {result_code::timeout, {}, {}};
            return {};
        }
        if (type == static_cast<ULONG>(-1) || !message) {
            why = client_result(get());
            return {};
        }
        return {std::move(message), type};
    }

    Result outcome(ULONG request, std::vector<Control>* controls = nullptr) const {
        Result why;
        const Message answer = wait_for(request, LDAP_MSG_ALL, limits.operation, why).message;
        return answer ? outcome_of(get(), answer.get(), controls) : why;
    }
    // The outcome of a request that was sent with the library's `code`.
    Result outcome_of_sent(ULONG code, ULONG request) const {
        return code == LDAP_SUCCESS ? outcome(request) : Result{static_cast<int>(code), {}, {}};
    }
};

void check(const Result& result) {
    if (!result.ok()) raise_code(result.code, result.message, result.nearest_entry);
}

Session::Session(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;
Session::~Session() = default;

Session Session::connect(const ServerAddress& server, const Limits& limits) {
    std::string reasons;
    Result why;
    for (const ServerHost& host : server.hosts()) {
        if (Handle handle = open_connection(host, limits, why))
            return Session(std::unique_ptr<Connection>(new Connection{std::move(handle), limits}));
        if (!reasons.empty()) reasons += ' ';
        reasons += "'" + host.url() + "'";
        if (!why.message.empty()) reasons += ": " + why.message;
    }
    raise_code(why.code, reasons);
}

Result Session::bind(const std::string& name, const Secret& password) {
    Wide user(name);
    WideSecret credentials(password);
    const ULONG request = ldap_simple_bindW(connection_->get(), user.get(), credentials.get());
    return request == static_cast<ULONG>(-1) ? client_result(connection_->get())
                                             : connection_->outcome(request);
}

BindResult Session::bind_with_policy(const std::string& name, const Secret& password) {
    Wide oid(password_policy_control);
    LDAPControlW ask{oid.get(), {0, nullptr}, FALSE};
    std::array<LDAPControlW*, 2> controls = {&ask, nullptr};
    LDAPControlW** none = nullptr;
    LDAP* handle = connection_->get();
    Wide user(name);
    WideSecret credentials(password);
    // A simple bind takes no controls of its own; the handle's are sent with it. A library without
    // them asks for no policy, and a locked account then looks like a wrong password.
    ldap_set_optionW(handle, option_server_controls, controls.data());
    const ULONG request = ldap_simple_bindW(handle, user.get(), credentials.get());
    ldap_set_optionW(handle, option_server_controls, none);
    BindResult result;
    static_cast<Result&>(result) = request == static_cast<ULONG>(-1)
                                       ? client_result(handle)
                                       : connection_->outcome(request, &result.controls);
    return result;
}

ReadResult Session::read(const std::string& name, const std::vector<std::string>& attributes) {
    ReadResult result;
    SearchRequest request;
    request.base = name;
    request.attributes = attributes;
    bool found = false;
    static_cast<Result&>(result) = collect(send(request), [&](EntryData&& entry) {
        result.entry = std::move(entry);
        found = true;
    });
    // An entry that may not be read is not there for its reader.
    if (result.ok() && !found) result.code = result_code::no_such_object;
    return result;
}

PendingSearch Session::send(const SearchRequest& request) {
    Wide base(request.base);
    Wide filter(request.filter);
    WideList attributes(request.attributes);
    ULONG id = 0;
    const ULONG sent =
        ldap_search_extW(connection_->get(), base.get(), scope_of(request.scope), filter.get(),
                         attributes.get(), FALSE, nullptr, nullptr, 0, 0, &id);
    PendingSearch search;
    search.id = static_cast<int>(id);
    if (sent != LDAP_SUCCESS) search.sent = {static_cast<int>(sent), {}, {}};
    return search;
}

Result Session::collect(const PendingSearch& search, const std::function<void(EntryData&&)>& take) {
    if (!search.sent.ok()) return search.sent;
    LDAP* handle = connection_->get();
    const auto deadline = steady_clock::now() + connection_->limits.operation;
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        Result why;
        const auto [message, type] = connection_->wait_for(
            static_cast<ULONG>(search.id), LDAP_MSG_ONE, std::max(left, milliseconds(0)), why);
        if (!message) return why;
        switch (type) {
            case LDAP_RES_SEARCH_ENTRY:
                take(decoded_entry(handle, message.get()));
                break;
            case LDAP_RES_SEARCH_RESULT:
                return outcome_of(handle, message.get());
            default:
                break;  // a reference to another server, which is not followed
        }
    }
}

Result Session::modify(const std::string& name, std::span<const Replacement> replacements) {
    std::vector<std::unique_ptr<Change>> changes;
    std::vector<LDAPModW*> modifications;
    for (const Replacement& replacement : replacements)
        modifications.push_back(
            &changes.emplace_back(std::make_unique<Change>(replacement))->modification);
    modifications.push_back(nullptr);
    Wide entry(name);
    ULONG request = 0;
    const ULONG sent = ldap_modify_extW(connection_->get(), entry.get(), modifications.data(),
                                        nullptr, nullptr, &request);
    return connection_->outcome_of_sent(sent, request);
}

Result Session::change_password(const std::string& name, const Secret& new_password) {
    const Secret value = password_modify_request(name, new_password);
    berval data = borrowed(value.reveal());
    Wide oid(password_modify_oid);
    ULONG request = 0;
    const ULONG sent =
        ldap_extended_operationW(connection_->get(), oid.get(), &data, nullptr, nullptr, &request);
    return connection_->outcome_of_sent(sent, request);
}

}  // namespace orvo::directory::ldap
