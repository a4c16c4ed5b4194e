// The session over the client library that Windows ships.
#include "suite/directory/ldap/wire/wldap32_connection.h"

#include <array>
#include <optional>
#include <utility>

#include "suite/directory/ldap/wire/deadline.h"
#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/ldap/wire/password_modify.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {
namespace {

using detail::borrowed;
using detail::client_result;
using detail::Handle;
using detail::last_code;
using detail::Message;
using detail::narrow;
using detail::outcome_of;
using detail::OwnedText;
using detail::wait_for;
using detail::Wide;
using detail::WideList;
using detail::WideSecret;

constexpr const char* who_am_i_oid = "1.3.6.1.4.1.4203.1.11.3";

// LDAP_OPT_SERVER_CONTROLS, which not every version of the library and its header has.
constexpr int option_server_controls = 0x12;

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

// The request for a page, as the library takes it; not critical, so that a server that has no pages
// answers all the same.
class PageControl {
public:
    explicit PageControl(const SearchRequest& request)
        : is_wanted_(request.page_size != 0),
          oid_(paged_results_oid),
          value_(paged_results_value(request.page_size, request.page)),
          control_{oid_.get(), borrowed(value_), FALSE} {}
    PageControl(const PageControl&) = delete;
    // Nothing where no page is wanted.
    LDAPControlW** get() { return is_wanted_ ? list_.data() : nullptr; }

private:
    bool is_wanted_;
    Wide oid_;
    std::string value_;
    LDAPControlW control_;
    std::array<LDAPControlW*, 2> list_ = {&control_, nullptr};
};

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

// What is done with an attribute's values, as the library takes it.
struct Modification {
    Modification(ULONG operation, const std::string& attribute,
                 const std::vector<std::string>& texts)
        : name(attribute) {
        for (const std::string& text : texts) values.push_back(borrowed(text));
        for (berval& value : values) pointers.push_back(&value);
        pointers.push_back(nullptr);
        modification.mod_op = operation | LDAP_MOD_BVALUES;
        modification.mod_type = name.get();
        modification.mod_vals.modv_bvals = pointers.data();
    }
    Modification(const Modification&) = delete;

    Wide name;
    std::vector<berval> values;
    std::vector<berval*> pointers;
    LDAPModW modification{};
};

// A list of changes as the library takes it.
class ChangeList {
public:
    void append(ULONG operation, const std::string& attribute,
                const std::vector<std::string>& values) {
        changes_.push_back(std::make_unique<Modification>(operation, attribute, values));
    }
    LDAPModW** get() {
        pointers_.clear();
        for (const auto& change : changes_) pointers_.push_back(&change->modification);
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<std::unique_ptr<Modification>> changes_;
    std::vector<LDAPModW*> pointers_;
};

}  // namespace

struct Session::Connection {
    Handle handle;
    Limits limits;
    bool is_lost = false;

    LDAP* get() const { return handle.get(); }

    // One request and its answer. `send` takes the handle and a place for the request's number, and
    // gives the library's code; `receive` takes that number, and gives the outcome.
    template <class Send, class Receive>
    Result ask(Send send, Receive receive) {
        if (is_lost) return lost_before();
        ULONG request = 0;
        const ULONG code = send(get(), &request);
        Result result = code == LDAP_SUCCESS ? receive(request) : client_result(code);
        is_lost = result.connection_failed();
        return result;
    }
    // The same for an answer of one message, of which `more` takes what is beyond the outcome.
    template <class Send, class More>
    Result ask_once(Send send, More more, std::vector<Control>* controls = nullptr) {
        return ask(send, [&](ULONG request) {
            Result why;
            const Message answer =
                wait_for(get(), request, LDAP_MSG_ALL, limits.answer, why).message;
            if (!answer) return why;
            more(answer.get());
            return outcome_of(get(), answer.get(), controls);
        });
    }
    template <class Send>
    Result ask_once(Send send) {
        return ask_once(send, [](LDAPMessage*) {});
    }

    Result collect(ULONG id, const SearchRequest& request,
                   const std::function<void(EntryData&&)>& take,
                   std::vector<Control>& controls) const;
};

Session::Session(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;
Session::~Session() = default;

std::optional<Session> Session::try_connect(const ServerHost& host, const Limits& limits,
                                            Result& why) {
    if (Handle handle = detail::open_connection(host, limits, why))
        return Session(std::unique_ptr<Connection>(new Connection{std::move(handle), limits}));
    return std::nullopt;
}

// The library shows nothing of its connection; a lost one shows at its next use.
bool Session::seems_open() const { return true; }
void Session::set_limits(const Limits& limits) { connection_->limits = limits; }

BindResult Session::bind(const std::string& name, const Secret& password, Policy policy) {
    // The library would read both only as far as a NUL; behind one it would leave a password out.
    if (name.find('\0') != std::string::npos ||
        password.reveal().find('\0') != std::string_view::npos)
        return {{result_code::invalid_credentials, {}, {}}, {}};
    Wide oid(policy_control);
    LDAPControlW ask{oid.get(), {0, nullptr}, FALSE};
    std::array<LDAPControlW*, 2> controls = {&ask, nullptr};
    LDAPControlW** none = nullptr;
    Wide user(name);
    WideSecret credentials(password);
    // A simple bind takes no controls of its own; the handle's are sent with it. A library without
    // them asks for no policy, and a locked account then looks like a wrong password.
    const auto send = [&](LDAP* handle, ULONG* request) {
        if (policy == Policy::asked)
            ldap_set_optionW(handle, option_server_controls, controls.data());
        *request = ldap_simple_bindW(handle, user.get(), credentials.get());
        if (policy == Policy::asked) ldap_set_optionW(handle, option_server_controls, none);
        return *request == static_cast<ULONG>(-1) ? last_code(handle) : ULONG(LDAP_SUCCESS);
    };
    BindResult result;
    static_cast<Result&>(result) = connection_->ask_once(
        send, [](LDAPMessage*) {}, &result.controls);
    return result;
}

SearchResult Session::search(const SearchRequest& request,
                             const std::function<void(EntryData&&)>& take) {
    Wide base(request.base);
    Wide filter(request.filter);
    WideList attributes(request.attributes);
    PageControl page(request);
    std::vector<Control> controls;
    Result result = connection_->ask(
        [&](LDAP* handle, ULONG* id) {
            return ldap_search_extW(handle, base.get(), scope_of(request.scope), filter.get(),
                                    attributes.get(), FALSE, page.get(), nullptr, 0, 0, id);
        },
        [&](ULONG id) { return connection_->collect(id, request, take, controls); });
    return paged(std::move(result), controls);
}

Result Session::Connection::collect(ULONG id, const SearchRequest& request,
                                    const std::function<void(EntryData&&)>& take,
                                    std::vector<Control>& controls) const {
    LDAP* handle = get();
    const Deadline deadline(limit_of(request, limits));
    for (;;) {
        Result why;
        const auto [message, type] = wait_for(handle, id, LDAP_MSG_ONE, deadline.left(), why);
        if (!message) return why;
        switch (type) {
            case LDAP_RES_SEARCH_ENTRY:
                take(decoded_entry(handle, message.get()));
                break;
            case LDAP_RES_SEARCH_RESULT:
                return outcome_of(handle, message.get(), &controls);
            default:
                break;  // a reference to another server, which is not followed
        }
    }
}

Result Session::add(const std::string& name, std::span<const Attribute> attributes) {
    ChangeList changes;
    for (const Attribute& attribute : attributes)
        changes.append(LDAP_MOD_ADD, attribute.name, attribute.values);
    Wide entry(name);
    return connection_->ask_once([&](LDAP* handle, ULONG* request) {
        return ldap_add_extW(handle, entry.get(), changes.get(), nullptr, nullptr, request);
    });
}

Result Session::remove(const std::string& name) {
    Wide entry(name);
    return connection_->ask_once([&](LDAP* handle, ULONG* request) {
        return ldap_delete_extW(handle, entry.get(), nullptr, nullptr, request);
    });
}

Result Session::modify(const std::string& name, std::span<const Replacement> replacements) {
    ChangeList changes;
    for (const Replacement& replacement : replacements)
        changes.append(static_cast<ULONG>(replacement.kind), replacement.attribute,
                       replacement.values);
    Wide entry(name);
    return connection_->ask_once([&](LDAP* handle, ULONG* request) {
        return ldap_modify_extW(handle, entry.get(), changes.get(), nullptr, nullptr, request);
    });
}

Result Session::change_password(const std::string& name, const Secret& new_password,
                                const Secret& former_password) {
    const Secret value = password_modify_request(name, new_password, former_password);
    berval data = borrowed(value.reveal());
    Wide oid(password_modify_oid);
    return connection_->ask_once([&](LDAP* handle, ULONG* request) {
        return ldap_extended_operationW(handle, oid.get(), &data, nullptr, nullptr, request);
    });
}

WhoAmIResult Session::who_am_i() {
    Wide oid(who_am_i_oid);
    WhoAmIResult result;
    static_cast<Result&>(result) = connection_->ask_once(
        [&](LDAP* handle, ULONG* request) {
            return ldap_extended_operationW(handle, oid.get(), nullptr, nullptr, nullptr, request);
        },
        [&](LDAPMessage* answer) {
            berval* identity = nullptr;
            ldap_parse_extended_resultW(connection_->get(), answer, nullptr, &identity, FALSE);
            if (!identity) return;
            result.identity.assign(identity->bv_val, identity->bv_len);
            ber_bvfree(identity);
        });
    return result;
}

}  // namespace orvo::directory::ldap
