#include <ldap.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/ldap/wire/deadline.h"
#include "suite/directory/ldap/wire/openldap_connection.h"
#include "suite/directory/ldap/wire/openldap_transport.h"
#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/ldap/wire/session.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {
namespace {

using detail::client_result;
using detail::Message;
using detail::wait_for;
using detail::Wanted;
using std::chrono::milliseconds;

LDAPMessage* raw(const Message& message) { return static_cast<LDAPMessage*>(message.get()); }

std::string text_of(const berval& value) { return {value.bv_val, value.bv_len}; }

// The library takes its input as pointers to characters that it does not change.
char* unchanged(const std::string& text) { return const_cast<char*>(text.c_str()); }

berval borrowed(const Secret& secret) {
    return {secret.reveal().size(), const_cast<char*>(secret.reveal().data())};
}

// A list of texts as the library takes it.
class TextList {
public:
    explicit TextList(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) pointers_.push_back(unchanged(text));
        pointers_.push_back(nullptr);
    }
    // Nothing for an empty list.
    char** get() { return pointers_.size() == 1 ? nullptr : pointers_.data(); }

private:
    std::vector<char*> pointers_;
};

// Takes the outcome out of the message that ends an operation.
Result outcome_of(LDAP* handle, LDAPMessage* message, std::vector<Control>* controls = nullptr) {
    int code = LDAP_OTHER;
    char* nearest = nullptr;
    char* text = nullptr;
    char** referrals = nullptr;
    LDAPControl** received = nullptr;
    const int parsed = ldap_parse_result(handle, message, &code, &nearest, &text, &referrals,
                                         controls ? &received : nullptr, 0);
    if (parsed != LDAP_SUCCESS) return client_result(handle, parsed);
    Result result{code, text ? text : "", nearest ? nearest : ""};
    ldap_memfree(nearest);
    ldap_memfree(text);
    for (char** url = referrals; url && *url; ++url) result.referrals.emplace_back(*url);
    ldap_memvfree(reinterpret_cast<void**>(referrals));
    for (LDAPControl** control = received; control && *control; ++control)
        controls->push_back({(*control)->ldctl_oid, text_of((*control)->ldctl_value)});
    ldap_controls_free(received);
    return result;
}

// Takes the first element off, which has to have this tag; nothing where there is none.
std::optional<std::string_view> take_content(std::string_view& bytes, unsigned char tag) {
    const auto element = ber::take_element(bytes);
    if (!element || element->tag != tag) return std::nullopt;
    return element->content;
}

// One attribute of an entry (RFC 4511, 4.1.7). What `attribute` held before is overwritten; its
// memory is used again.
bool decode_attribute(std::string_view bytes, Attribute& attribute) {
    const auto name = take_content(bytes, ber::octet_string);
    if (!name) return false;
    attribute.name.assign(*name);
    auto values = take_content(bytes, ber::set);
    if (!values) return false;
    std::size_t count = 0;
    for (; !values->empty(); ++count) {
        const auto value = take_content(*values, ber::octet_string);
        if (!value) return false;
        if (count == attribute.values.size()) attribute.values.emplace_back();
        attribute.values[count].assign(*value);
    }
    attribute.values.resize(count);
    return true;
}

// That an entry mostly has no more of.
constexpr std::size_t usual_attributes = 16;

// One pass over the message, attribute after attribute, where it lies: the library's own way makes
// a list of the values of each first. What `entry` held before is overwritten; its memory is used
// again.
enum class Decoded { whole, passed_over, unreadable };
Decoded decode_entry(LDAP* handle, LDAPMessage* message, const SearchRequest& request,
                     EntryData& entry) {
    BerElement* decoder = nullptr;
    berval name{};
    if (ldap_get_dn_ber(handle, message, &decoder, &name) != LDAP_SUCCESS)
        return Decoded::unreadable;
    struct Free {
        void operator()(BerElement* element) const { ber_free(element, 0); }
    };
    const std::unique_ptr<BerElement, Free> held(decoder);
    entry.name.assign(name.bv_val, name.bv_len);
    entry.attributes.reserve(usual_attributes);
    if (request.wanted && !request.wanted(entry.name)) return Decoded::passed_over;
    for (std::size_t count = 0;; ++count) {
        ber_len_t left = 0;
        ber_get_option(decoder, LBER_OPT_REMAINING_BYTES, &left);
        if (left == 0) {
            entry.attributes.resize(count);
            return Decoded::whole;
        }
        berval attribute{};
        if (ber_skip_element(decoder, &attribute) != ber::sequence) return Decoded::unreadable;
        if (count == entry.attributes.size()) entry.attributes.emplace_back();
        if (!decode_attribute({attribute.bv_val, attribute.bv_len}, entry.attributes[count]))
            return Decoded::unreadable;
    }
}

// The request for a page, as the library takes it; not critical, so that a server that has no pages
// answers all the same.
class PageControl {
public:
    explicit PageControl(const SearchRequest& request)
        : is_wanted_(request.page_size != 0),
          oid_(paged_results_oid),
          value_(paged_results_value(request.page_size, request.page)),
          control_{oid_.data(), {value_.size(), value_.data()}, 0} {}
    PageControl(const PageControl&) = delete;
    // Nothing where no page is wanted.
    LDAPControl** get() { return is_wanted_ ? list_.data() : nullptr; }

private:
    bool is_wanted_;
    std::string oid_;
    std::string value_;
    LDAPControl control_;
    std::array<LDAPControl*, 2> list_ = {&control_, nullptr};
};

int scope_of(Scope scope) {
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
    Modification(int operation, const std::string& attribute,
                 const std::vector<std::string>& texts) {
        for (const std::string& text : texts) values.push_back({text.size(), unchanged(text)});
        for (berval& value : values) pointers.push_back(&value);
        pointers.push_back(nullptr);
        modification.mod_op = operation | LDAP_MOD_BVALUES;
        modification.mod_type = unchanged(attribute);
        modification.mod_bvalues = values.empty() ? nullptr : pointers.data();
    }
    Modification(const Modification&) = delete;

    std::vector<berval> values;
    std::vector<berval*> pointers;
    LDAPMod modification{};
};

// A list of changes as the library takes it.
class ChangeList {
public:
    void append(int operation, const std::string& attribute,
                const std::vector<std::string>& values) {
        changes_.push_back(std::make_unique<Modification>(operation, attribute, values));
    }
    LDAPMod** get() {
        pointers_.clear();
        for (const auto& change : changes_) pointers_.push_back(&change->modification);
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<std::unique_ptr<Modification>> changes_;
    std::vector<LDAPMod*> pointers_;
};

}  // namespace

struct Session::Connection {
    detail::Handle handle;
    Limits limits;

    bool is_lost = false;

    LDAP* get() const { return handle.get(); }

    // A message of the answer to the only request there is.
    Message next(int request, Wanted wanted, milliseconds limit, Result& why) const {
        const Deadline deadline(limit);
        milliseconds left{0};
        if (detail::await_bytes(get(), limit, limits.poll)) left = deadline.left();
        return wait_for(get(), request, wanted, left, why);
    }

    // One request and its answer. `send` takes the handle and a place for the request's number, and
    // gives the library's code; `receive` takes that number, and gives the outcome.
    template <class Send, class Receive>
    Result ask(Send send, Receive receive) {
        if (is_lost) return lost_before();
        const std::uint64_t before = detail::bytes_sent(get());
        int request = -1;
        const int code = send(get(), &request);
        Result result = code == LDAP_SUCCESS ? receive(request) : client_result(get(), code);
        is_lost = result.connection_failed();
        result.sent = !is_lost || detail::bytes_sent(get()) != before;
        return result;
    }
    // The same for an answer of one message, of which `more` takes what is beyond the outcome.
    template <class Send, class More>
    Result ask_once(Send send, More more, std::vector<Control>* controls = nullptr) {
        return ask(send, [&](int request) {
            Result why;
            const Message answer = next(request, Wanted::all_messages, limits.answer, why);
            if (!answer) return why;
            more(raw(answer));
            return outcome_of(get(), raw(answer), controls);
        });
    }
    template <class Send>
    Result ask_once(Send send) {
        return ask_once(send, [](LDAPMessage*) {});
    }

    Result collect(int id, const SearchRequest& request,
                   const std::function<void(EntryData&&)>& take,
                   std::vector<Control>& controls) const;
};

Session::Session(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;
Session::~Session() = default;

std::optional<Session> Session::try_connect(const ServerHost& host, const Limits& limits,
                                            Result& why) {
    if (detail::Handle handle = detail::open_connection(host, limits, why))
        return Session(std::make_unique<Connection>(std::move(handle), limits));
    return std::nullopt;
}

bool Session::seems_open() const { return detail::is_quiet(connection_->get()); }
void Session::set_limits(const Limits& limits) { connection_->limits = limits; }

BindResult Session::bind(const std::string& name, const Secret& password, Policy policy) {
    LDAPControl ask{const_cast<char*>(policy_control), {0, nullptr}, 0};
    std::array<LDAPControl*, 2> controls = {&ask, nullptr};
    berval credentials = borrowed(password);
    BindResult result;
    static_cast<Result&>(result) = connection_->ask_once(
        [&](LDAP* handle, int* request) {
            return ldap_sasl_bind(handle, name.c_str(), LDAP_SASL_SIMPLE, &credentials,
                                  policy == Policy::asked ? controls.data() : nullptr, nullptr,
                                  request);
        },
        [](LDAPMessage*) {}, &result.controls);
    return result;
}

SearchResult Session::search(const SearchRequest& request,
                             const std::function<void(EntryData&&)>& take) {
    TextList attributes(request.attributes);
    PageControl page(request);
    std::vector<Control> controls;
    Result result = connection_->ask(
        [&](LDAP* handle, int* id) {
            return ldap_search_ext(handle, request.base.c_str(), scope_of(request.scope),
                                   request.filter.c_str(), attributes.get(), 0, page.get(), nullptr,
                                   nullptr, LDAP_NO_LIMIT, id);
        },
        [&](int id) { return connection_->collect(id, request, take, controls); });
    return paged(std::move(result), controls);
}

Result Session::Connection::collect(int id, const SearchRequest& request,
                                    const std::function<void(EntryData&&)>& take,
                                    std::vector<Control>& controls) const {
    LDAP* handle = get();
    const Deadline deadline(limit_of(request, limits));
    EntryData entry;
    for (;;) {
        const milliseconds left = deadline.left();
        if (left.count() == 0) {
            ldap_abandon_ext(handle, id, nullptr, nullptr);
            return {result_code::timeout, {}, {}};
        }
        Result why;
        const Message message = next(id, Wanted::one_message, left, why);
        if (!message) return why;
        switch (ldap_msgtype(raw(message))) {
            case LDAP_RES_SEARCH_ENTRY:
                switch (decode_entry(handle, raw(message), request, entry)) {
                    case Decoded::whole:
                        take(std::move(entry));
                        break;
                    case Decoded::passed_over:
                        break;
                    case Decoded::unreadable:
                        ldap_abandon_ext(handle, id, nullptr, nullptr);
                        return {result_code::decoding_error, {}, {}};
                }
                break;
            case LDAP_RES_SEARCH_RESULT:
                return outcome_of(handle, raw(message), &controls);
            default:  // a reference to another server, which is not followed
                break;
        }
    }
}

Result Session::add(const std::string& name, std::span<const Attribute> attributes) {
    ChangeList changes;
    for (const Attribute& attribute : attributes)
        changes.append(LDAP_MOD_ADD, attribute.name, attribute.values);
    return connection_->ask_once([&](LDAP* handle, int* request) {
        return ldap_add_ext(handle, name.c_str(), changes.get(), nullptr, nullptr, request);
    });
}

Result Session::remove(const std::string& name) {
    return connection_->ask_once([&](LDAP* handle, int* request) {
        return ldap_delete_ext(handle, name.c_str(), nullptr, nullptr, request);
    });
}

Result Session::modify(const std::string& name, std::span<const Replacement> replacements) {
    ChangeList changes;
    for (const Replacement& replacement : replacements)
        changes.append(static_cast<int>(replacement.kind), replacement.attribute,
                       replacement.values);
    return connection_->ask_once([&](LDAP* handle, int* request) {
        return ldap_modify_ext(handle, name.c_str(), changes.get(), nullptr, nullptr, request);
    });
}

Result Session::change_password(const std::string& name, const Secret& new_password,
                                const Secret& former_password) {
    berval user{name.size(), unchanged(name)};
    berval wanted = borrowed(new_password), former = borrowed(former_password);
    berval* old = former_password.empty() ? nullptr : &former;
    return connection_->ask_once([&](LDAP* handle, int* request) {
        return ldap_passwd(handle, &user, old, &wanted, nullptr, nullptr, request);
    });
}

WhoAmIResult Session::who_am_i() {
    WhoAmIResult result;
    static_cast<Result&>(result) = connection_->ask_once(
        [](LDAP* handle, int* request) { return ldap_whoami(handle, nullptr, nullptr, request); },
        [&](LDAPMessage* answer) {
            berval* identity = nullptr;
            ldap_parse_whoami(connection_->get(), answer, &identity);
            if (identity) result.identity = text_of(*identity);
            ber_bvfree(identity);
        });
    return result;
}

}  // namespace orvo::directory::ldap
