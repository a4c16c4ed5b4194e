// The client of the library that Windows ships.
#include "suite/directory/ldap/wire/wldap32_connection.h"

#include <memory>
#include <utility>

#include "suite/directory/ldap/wire/library_client.h"
#include "suite/directory/ldap/wire/library_values.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap::detail {
namespace {

struct Library {
    using Modification = LDAPModW;
    using Control = LDAPControlW;
    using Value = berval;
    using Name = Wide;
};

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

// Takes the outcome out of the message that ends an operation.
void decode_outcome(LDAP* handle, LDAPMessage* message, Outcome& outcome) {
    ULONG code = LDAP_OTHER;
    wchar_t* nearest_text = nullptr;
    wchar_t* message_text = nullptr;
    wchar_t** referrals = nullptr;
    LDAPControlW** controls = nullptr;
    const ULONG parsed = ldap_parse_resultW(handle, message, &code, &nearest_text, &message_text,
                                            &referrals, &controls, FALSE);
    const OwnedText nearest(nearest_text);
    const OwnedText text(message_text);
    if (parsed != LDAP_SUCCESS) {
        outcome.result = client_result(parsed);
        return;
    }
    outcome.result = {static_cast<int>(code), narrow(text.get()), narrow(nearest.get())};
    for (wchar_t** url = referrals; url && *url; ++url)
        outcome.result.referrals.push_back(narrow(*url));
    if (referrals) ldap_value_freeW(referrals);
    for (LDAPControlW** control = controls; control && *control; ++control) {
        const berval& value = (*control)->ldctl_value;
        outcome.controls.push_back({narrow((*control)->ldctl_oid),
                                    value.bv_val ? std::string(value.bv_val, value.bv_len) : ""});
    }
    if (controls) ldap_controls_freeW(controls);
}

void decode_value(LDAP* handle, LDAPMessage* message, Outcome& outcome) {
    berval* value = nullptr;
    ldap_parse_extended_resultW(handle, message, nullptr, &value, FALSE);
    if (!value) return;
    outcome.value.assign(value->bv_val, value->bv_len);
    ber_bvfree(value);
}

class Wldap32Client : public LibraryClient {
public:
    explicit Wldap32Client(Handle handle) : handle_(std::move(handle)) {}

    Result send_bind(const std::string& name, const Secret& password, Policy policy,
                     int& request) override {
        // The library would read both only as far as a NUL; behind one it would leave a password
        // out.
        if (name.find('\0') != std::string::npos ||
            password.reveal().find('\0') != std::string_view::npos)
            return {result_code::invalid_credentials, {}, {}};
        Wide user(name);
        WideSecret credentials(password);
        auto question = policy_question<Library>(policy);
        LDAPControlW** none = nullptr;
        // A simple bind takes no controls of its own; the handle's are sent with it. A library
        // without them asks for no policy, and a locked account then looks like a wrong password.
        if (question.get()) ldap_set_optionW(get(), option_server_controls, question.get());
        const ULONG number = ldap_simple_bindW(get(), user.get(), credentials.get());
        if (question.get()) ldap_set_optionW(get(), option_server_controls, none);
        return sent(number == static_cast<ULONG>(-1) ? last_code(get()) : ULONG(LDAP_SUCCESS),
                    number, request);
    }

    Result send_search(const SearchRequest& search, int& request) override {
        Wide base(search.base);
        Wide filter(search.filter);
        NameList<Library> attributes(search.attributes);
        auto page = page_control<Library>(search);
        ULONG number = 0;
        const ULONG code = ldap_search_extW(
            get(), base.get(), static_cast<ULONG>(scope_of(search.scope)), filter.get(),
            attributes.get(), FALSE, page.get(), nullptr, 0, 0, &number);
        return sent(code, number, request);
    }

    Result send_add(const std::string& name, std::span<const Attribute> attributes,
                    int& request) override {
        ChangeList<Library> changes(attributes);
        Wide entry(name);
        ULONG number = 0;
        const ULONG code =
            ldap_add_extW(get(), entry.get(), changes.get(), nullptr, nullptr, &number);
        return sent(code, number, request);
    }

    Result send_remove(const std::string& name, int& request) override {
        Wide entry(name);
        ULONG number = 0;
        const ULONG code = ldap_delete_extW(get(), entry.get(), nullptr, nullptr, &number);
        return sent(code, number, request);
    }

    Result send_modify(const std::string& name, std::span<const Replacement> replacements,
                       int& request) override {
        ChangeList<Library> changes(replacements);
        Wide entry(name);
        ULONG number = 0;
        const ULONG code =
            ldap_modify_extW(get(), entry.get(), changes.get(), nullptr, nullptr, &number);
        return sent(code, number, request);
    }

    Result send_extended(std::string_view oid, const Secret* value, int& request) override {
        Wide operation(oid);
        berval data = value ? value_of<Library>(value->reveal()) : berval{};
        ULONG number = 0;
        const ULONG code = ldap_extended_operationW(get(), operation.get(), value ? &data : nullptr,
                                                    nullptr, nullptr, &number);
        return sent(code, number, request);
    }

    Received receive(int request, const Deadline& deadline,
                     const std::function<bool(const std::string&)>&, EntryData& entry,
                     Outcome& outcome) override {
        const auto [message, type] =
            next_message(get(), static_cast<ULONG>(request), deadline.left(), outcome.result);
        if (!message) return Received::outcome;
        switch (type) {
            case LDAP_RES_SEARCH_ENTRY:
                entry = decoded_entry(get(), message.get());
                return Received::entry;
            case LDAP_RES_REFERRAL:
                return Received::nothing;
            case LDAP_RES_EXTENDED:
                decode_value(get(), message.get(), outcome);
                break;
            default:
                break;
        }
        decode_outcome(get(), message.get(), outcome);
        return Received::outcome;
    }

    // The library shows nothing of its connection; a lost one shows at its next use.
    // Only diagnosis asks, which there is none of here.
    void set_controls(std::span<const Control>) override { raise_code(result_code::not_supported); }
    std::string certificate() const override { return {}; }
    bool seems_open() const override { return true; }
    std::optional<std::uint64_t> bytes_sent() const override { return std::nullopt; }

private:
    LDAP* get() const { return handle_.get(); }
    static Result sent(ULONG code, ULONG number, int& request) {
        request = static_cast<int>(number);
        return code == LDAP_SUCCESS ? Result() : client_result(code);
    }

    Handle handle_;
};

}  // namespace

std::unique_ptr<LibraryClient> open_client(const ServerHost& host, const Limits&,
                                           const Deadline& deadline, Result& why) {
    if (Handle handle = open_connection(host, deadline, why))
        return std::make_unique<Wldap32Client>(std::move(handle));
    return nullptr;
}

}  // namespace orvo::directory::ldap::detail
