// The client of OpenLDAP's library.
#include <ldap.h>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/ldap/wire/library_client.h"
#include "suite/directory/ldap/wire/library_values.h"
#include "suite/directory/ldap/wire/openldap_connection.h"
#include "suite/directory/ldap/wire/openldap_transport.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap::detail {
namespace {

// A name as the library takes it, which does not change it.
class BorrowedName {
public:
    explicit BorrowedName(const std::string& text) : text_(text.c_str()) {}
    char* get() const { return const_cast<char*>(text_); }

private:
    const char* text_;
};

struct Library {
    using Modification = LDAPMod;
    using Control = LDAPControl;
    using Value = berval;
    using Name = BorrowedName;
};

std::string text_of(const berval& value) { return {value.bv_val, value.bv_len}; }

// Takes the outcome out of the message that ends an operation.
void decode_outcome(LDAP* handle, LDAPMessage* message, Outcome& outcome) {
    int code = LDAP_OTHER;
    char* nearest = nullptr;
    char* text = nullptr;
    char** referrals = nullptr;
    LDAPControl** controls = nullptr;
    const int parsed =
        ldap_parse_result(handle, message, &code, &nearest, &text, &referrals, &controls, 0);
    if (parsed != LDAP_SUCCESS) {
        outcome.result = client_result(handle, parsed);
        return;
    }
    outcome.result = {code, text ? text : "", nearest ? nearest : ""};
    ldap_memfree(nearest);
    ldap_memfree(text);
    for (char** url = referrals; url && *url; ++url) outcome.result.referrals.emplace_back(*url);
    ldap_memvfree(reinterpret_cast<void**>(referrals));
    for (LDAPControl** control = controls; control && *control; ++control)
        outcome.controls.push_back({(*control)->ldctl_oid, text_of((*control)->ldctl_value)});
    ldap_controls_free(controls);
}

void decode_value(LDAP* handle, LDAPMessage* message, Outcome& outcome) {
    berval* value = nullptr;
    ldap_parse_extended_result(handle, message, nullptr, &value, 0);
    if (value) outcome.value = text_of(*value);
    ber_bvfree(value);
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
Decoded decode_entry(LDAP* handle, LDAPMessage* message,
                     const std::function<bool(const std::string&)>& wanted, EntryData& entry) {
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
    if (wanted && !wanted(entry.name)) return Decoded::passed_over;
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

class OpenLdapClient : public LibraryClient {
public:
    explicit OpenLdapClient(Handle handle) : handle_(std::move(handle)) {}

    Result send_bind(const std::string& name, const Secret& password, Policy policy,
                     int& request) override {
        berval credentials = value_of<Library>(password.reveal());
        auto question = policy_question<Library>(policy);
        return sent(ldap_sasl_bind(get(), name.c_str(), LDAP_SASL_SIMPLE, &credentials,
                                   question.get(), nullptr, &request));
    }

    Result send_search(const SearchRequest& search, int& request) override {
        NameList<Library> attributes(search.attributes);
        auto page = page_control<Library>(search);
        return sent(ldap_search_ext(get(), search.base.c_str(), scope_of(search.scope),
                                    search.filter.c_str(), attributes.get(), 0, page.get(), nullptr,
                                    nullptr, LDAP_NO_LIMIT, &request));
    }

    Result send_add(const std::string& name, std::span<const Attribute> attributes,
                    int& request) override {
        ChangeList<Library> changes(attributes);
        return sent(ldap_add_ext(get(), name.c_str(), changes.get(), nullptr, nullptr, &request));
    }

    Result send_remove(const std::string& name, int& request) override {
        return sent(ldap_delete_ext(get(), name.c_str(), nullptr, nullptr, &request));
    }

    Result send_modify(const std::string& name, std::span<const Replacement> replacements,
                       int& request) override {
        ChangeList<Library> changes(replacements);
        return sent(
            ldap_modify_ext(get(), name.c_str(), changes.get(), nullptr, nullptr, &request));
    }

    Result send_extended(std::string_view oid, const Secret* value, int& request) override {
        const std::string operation(oid);
        berval data = value ? value_of<Library>(value->reveal()) : berval{};
        return sent(ldap_extended_operation(get(), operation.c_str(), value ? &data : nullptr,
                                            nullptr, nullptr, &request));
    }

    Received receive(int request, const Deadline& deadline,
                     const std::function<bool(const std::string&)>& wanted, EntryData& entry,
                     Outcome& outcome) override {
        const Message message = next_message(get(), request, deadline, outcome.result);
        if (!message) return Received::outcome;
        auto* raw = static_cast<LDAPMessage*>(message.get());
        switch (ldap_msgtype(raw)) {
            case LDAP_RES_SEARCH_ENTRY:
                return entry_received(request, decode_entry(get(), raw, wanted, entry), outcome);
            case LDAP_RES_SEARCH_REFERENCE:
                return Received::nothing;
            case LDAP_RES_EXTENDED:
                decode_value(get(), raw, outcome);
                break;
            default:
                break;
        }
        decode_outcome(get(), raw, outcome);
        return Received::outcome;
    }

    void set_controls(std::span<const Control> controls) override {
        std::vector<LDAPControl> list;
        for (const Control& control : controls)
            list.push_back({const_cast<char*>(control.oid.c_str()),
                            value_of<Library>(control.value), control.is_critical});
        std::vector<LDAPControl*> pointers;
        for (LDAPControl& control : list) {
            if (control.ldctl_value.bv_len == 0) control.ldctl_value = {};
            pointers.push_back(&control);
        }
        pointers.push_back(nullptr);
        const int set = ldap_set_option(get(), LDAP_OPT_SERVER_CONTROLS, pointers.data());
        check(sent(set));
    }
    std::string certificate() const override { return server_certificate(get()); }

    bool seems_open() const override { return is_quiet(get()); }
    std::optional<std::uint64_t> bytes_sent() const override { return detail::bytes_sent(get()); }

private:
    LDAP* get() const { return handle_.get(); }
    Result sent(int code) const {
        return code == LDAP_SUCCESS ? Result() : client_result(get(), code);
    }
    Received entry_received(int request, Decoded decoded, Outcome& outcome) const {
        switch (decoded) {
            case Decoded::whole:
                return Received::entry;
            case Decoded::passed_over:
                return Received::nothing;
            case Decoded::unreadable:
                break;
        }
        ldap_abandon_ext(get(), request, nullptr, nullptr);
        outcome.result = {result_code::decoding_error, {}, {}};
        return Received::outcome;
    }

    Handle handle_;
};

}  // namespace

std::unique_ptr<LibraryClient> open_client(const ServerHost& host, const Limits& limits,
                                           const Deadline& deadline, Result& why) {
    if (Handle handle = open_connection(host, limits, deadline, why))
        return std::make_unique<OpenLdapClient>(std::move(handle));
    return nullptr;
}

}  // namespace orvo::directory::ldap::detail
