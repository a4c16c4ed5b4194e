#include "suite/directory/embedded/provider/EmbeddedEntry.h"

#include <algorithm>
#include <utility>

#include "platform/values/values.h"
#include "suite/directory/entries/child_name.h"
#include "suite/directory/entries/ended_logins.h"
#include "suite/directory/entries/given_password.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/schema/attribute_values.h"
#include "suite/directory/schema/value_syntax.h"
#include "suite/directory/settings/cache_settings.h"

namespace orvo::directory::embedded {

namespace {

bool takes_blank(const Schema& schema, const std::string& attribute) {
    const AttributeType* type = schema.types.find(attribute);
    return !type || validity_of(type->syntax_oid, " ", schema) != Validity::invalid;
}

}  // namespace

void EmbeddedEntry::Bind(Text& server, Text& container, Text& common_name, Text& user,
                         Secret& password, Variant&) {
    ProvenPassword::forget();
    login_.reset();
    name_.clear();
    audited_bind(server, user, [&] {
        Login login(server, user, password);
        const Text name = entry_name(common_name, container_name(container));
        require_whole(name);
        name_ = to_utf8(name);
        server_ = server;
        login.authenticate();
        login.known(name_);
        login_ = std::move(login);
    });
}

Variant EmbeddedEntry::GetValues(Text& name) {
    require_bound();
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    require_whole(name);
    const std::string attribute = to_utf8(name);
    if (is_secret(attribute)) return decoded_values(login_->read(name_), attribute);
    return decoded_values(login_->known(name_), attribute);
}

Variant EmbeddedEntry::decoded_values(const EntryData& entry, const std::string& attribute) const {
    const AttributeTypes& types = login_->schema().types;
    const auto held = std::ranges::find_if(entry.attributes, [&](const Attribute& other) {
        return types.same(other.name, attribute);
    });
    const AttributeType* type = types.find(attribute);
    if (held == entry.attributes.end()) return decode_values(type, {});
    return decode_values(type, held->values);
}

void EmbeddedEntry::SetValues(Text& name, Variant& value) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    audited_account_change(change_of(attribute),
                           [&](EndedLogins& ended) { ended = set_values(attribute, value); });
}

EndedLogins EmbeddedEntry::set_values(const std::string& attribute, const Variant& value) {
    if (!is_password(attribute)) {
        const AttributeType* type = login_->schema().types.find(attribute);
        std::vector<std::string> values = encode_values(type, value);
        if (attribute.empty()) raise_runtime_error(runtime_error::invalid_call);
        EndedLogins ended{.may_be_done = true};
        if (disables_account(attribute, values)) ended.accounts = {name_};
        login_->modify(name_, {{attribute, std::move(values)}});
        return ended;
    }
    const std::optional<Secret> former =
        ProvenPassword::take(login_->directory().key(), EntryKey(name_), Clock::steady().now());
    const Secret password = password_in(value);
    if (password.empty())
        raise_code(result_code::constraint_violation, "A new password cannot be empty.");
    login_->set_password(name_, password, former);
    return {.accounts = {name_}, .spares_own = true, .may_be_done = true};
}

void EmbeddedEntry::ClearValues(Text& name) {
    require_bound();
    require_whole(name);
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    const std::string attribute = to_utf8(name);
    audited_account_change(change_of(attribute), [&](EndedLogins& ended) {
        login_->modify(name_, {{attribute, {}}});
        if (is_password(attribute))
            ended = {.accounts = {name_}, .spares_own = true, .may_be_done = true};
    });
}

AuditedChange EmbeddedEntry::change_of(const std::string& attribute) const {
    return {event_of_change(attribute), server_, name_, login_->user(), attribute};
}

// A name that is empty, too, is what is behind the last comma of a list.
void EmbeddedEntry::require_known(const GivenAttribute& attribute) const {
    if (attribute.name.empty() || is_password(attribute.name) ||
        login_->schema().types.find(attribute.name))
        return;
    if (attribute.value.is_text() && attribute.value.text_view().empty())
        raise_code(result_code::undefined_attribute_type, quoted_name(attribute.name));
}

void EmbeddedEntry::CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) {
    require_bound();
    const std::vector<GivenAttribute> given = given_attributes(attributes);
    for (const GivenAttribute& attribute : given) require_known(attribute);
    require_whole(naming_attribute);
    const Schema& schema = login_->schema();
    NewEntry entry(given, classes, to_utf8(naming_attribute), schema.types, schema.classes);
    if (std::ranges::all_of(entry.required_empty,
                            [&](const std::string& name) { return takes_blank(schema, name); }))
        for (const std::string& name : entry.required_empty)
            entry.attributes.push_back({name, {" "}});
    const std::string name = to_utf8(entry.name_below(from_utf8(name_)));
    audited_change({u"create", server_, name, login_->user()}, [&] {
        login_->add({name, std::move(entry.attributes)}, entry.password);
    });
}

void EmbeddedEntry::DeleteChild(Text&, Text& entry_name) {
    require_bound();
    const std::string name = child_name(entry_name, name_);
    audited_account_change({u"delete", server_, name, login_->user()}, [&](EndedLogins& ended) {
        login_->remove(name);
        ended = {.accounts = {name}, .may_be_done = true};
    });
}

void EmbeddedEntry::require_bound() const {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
}

Boolean EmbeddedEntry::InitializeConnectionPool(Variant& names, Variant& values) {
    Directory::settings().change(names, values);
    return true;
}

Boolean EmbeddedEntry::InitializeCache(Variant& names, Variant& values) {
    changed(CacheSettings(), names, values);
    return true;
}

}  // namespace orvo::directory::embedded
