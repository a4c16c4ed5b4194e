#include "suite/directory/ldap/LdapEntry.h"

#include <algorithm>
#include <utility>

#include "suite/directory/common/ascii.h"
#include "suite/directory/common/attribute_values.h"
#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/common/password_hash.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/write_marks.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::steady_clock;

// Asked for alone, it stands for "no attributes".
constexpr const char* no_attributes = "1.1";
constexpr const char* all_user_attributes = "*";

std::vector<std::string> names_in(const Variant& attributes) {
    std::vector<std::string> names;
    if (!attributes.is_array()) return names;
    for (const Variant& name : attributes.to<Values>()) {
        const Text text = name.to<Text>();
        if (!text.empty()) names.push_back(to_utf8(text));
    }
    return names;
}

bool is_password(const std::string& name) {
    const std::string type = AttributeDescription(name).type;
    return type == "userpassword" || type == "2.5.4.35";
}

// The single value of a password: none to remove it.
Secret password_in(const Variant& value) {
    if (value.is_array() && !value.try_bytes()) {
        const Values values = value.to<Values>();
        if (values.count() == 0) return {};
        if (values.count() > 1) raise_runtime_error(runtime_error::type_mismatch);
        return password_in(values[values.lower_bound()]);
    }
    if (std::optional<std::string> bytes = value.try_bytes()) return Secret::of_bytes(*bytes);
    if (value.is_text()) return Secret(value.text_view());
    return Secret(value.to<Text>());
}

// Notes a write when it is over, whatever came of it: one that timed out may have been done.
class NotedWrite {
public:
    explicit NotedWrite(const std::string& entry) : entry_(entry) {}
    ~NotedWrite() { note_write(entry_); }
    NotedWrite(const NotedWrite&) = delete;

private:
    const std::string& entry_;
};

}  // namespace

void LdapEntry::Bind(Text& server, Text& container, Text& common_name, Text& user, Text& password,
                     Variant& attributes) {
    session_.reset();
    facts_.reset();
    fetched_ = {};
    login_.emplace(server, user, password, limits_);
    const Text name = entry_name(common_name, container_name(container));
    name_ = to_utf8(name);
    const auto parsed = DistinguishedName::try_parse(name);
    key_ = parsed ? parsed->key() : name_;
    fetched_.asked = names_in(attributes);

    Session session = login_->connect();
    fetched_.write_mark = write_mark(key_);
    std::vector<std::string> wanted = fetched_.asked;
    wanted.push_back(wanted.empty() ? no_attributes : all_user_attributes);
    fetched_.at = steady_clock::now();
    ReadResult read = session.read(name_, wanted);
    check(read);
    fetched_.entry = std::move(read.entry);
    std::erase_if(fetched_.entry.attributes,
                  [](const Attribute& attribute) { return is_password(attribute.name); });
    session_ = std::move(session);
}

// Runs an operation that may be repeated, once more where the server has closed the connection.
template <class Operation>
auto LdapEntry::on_session(Operation operation) {
    auto result = operation(*session_);
    if (result.code == result_code::server_down) {
        session_ = login_->connect();
        result = operation(*session_);
    }
    return result;
}

const ServerFacts& LdapEntry::facts() {
    if (!facts_) {
        FactsResult result =
            on_session([&](Session& session) { return facts_of(session, login_->server_key()); });
        check(result);
        facts_ = std::move(result.facts);
    }
    return *facts_;
}

const AttributeType* LdapEntry::type_of(const std::string& name) {
    const AttributeTypes& types = facts().types;
    if (const auto* known = types.find(name)) return known;
    if (types.empty()) return nullptr;  // this user may not read the schema
    FactsResult result = on_session(
        [&](Session& session) { return refreshed_facts_of(session, login_->server_key()); });
    check(result);
    facts_ = std::move(result.facts);
    return facts_->types.find(name);
}

std::vector<std::string> LdapEntry::values_in(const EntryData& entry,
                                              const std::string& name) const {
    for (const Attribute& attribute : entry.attributes)
        if (facts_->types.same(attribute.name, name)) return attribute.values;
    return {};
}

// Nothing for what was not fetched, or was read before. An attribute that the entry seems to lack
// may be one that the server sends only when asked by name.
std::optional<std::vector<std::string>> LdapEntry::take_fetched(const std::string& name) {
    if (steady_clock::now() - fetched_.at > fetched_lasts ||
        write_mark(key_) != fetched_.write_mark) {
        fetched_ = {};
        return std::nullopt;
    }
    auto is_it = [&](const std::string& other) { return facts_->types.same(other, name); };
    const bool was_asked = std::erase_if(fetched_.asked, is_it) != 0;
    std::vector<std::string> values = values_in(fetched_.entry, name);
    std::erase_if(fetched_.entry.attributes,
                  [&](const Attribute& attribute) { return is_it(attribute.name); });
    if (values.empty() && !was_asked) return std::nullopt;
    return values;
}

Variant LdapEntry::GetValues(Text& name) {
    require_bound();
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    const std::string attribute = to_utf8(name);
    const AttributeType* type = type_of(attribute);
    if (const auto fetched = take_fetched(attribute)) return decode_values(type, *fetched);
    const ReadResult read =
        on_session([&](Session& session) { return session.read(name_, {attribute}); });
    check(read);
    return decode_values(type, values_in(read.entry, attribute));
}

void LdapEntry::SetValues(Text& name, Variant& value) {
    require_bound();
    const std::string attribute = to_utf8(name);
    if (is_password(attribute)) return write_password(attribute, value);
    replace(attribute, encode_values(type_of(attribute), value));
}

void LdapEntry::ClearValues(Text& name) {
    require_bound();
    replace(to_utf8(name), {});
}

void LdapEntry::write_password(const std::string& name, const Variant& value) {
    const Secret password = password_in(value);
    if (password.empty()) return replace(name, {});
    if (!facts().changes_passwords) {
        replace(name, {hashed_password(password)});
    } else {
        const NotedWrite noted(key_);
        check(
            on_session([&](Session& session) { return session.change_password(name_, password); }));
    }
    // A connection that is made anew has to use it.
    const auto user = DistinguishedName::try_parse(from_utf8(login_->user()));
    if (user && user->key() == key_) login_->set_password(password.clone());
}

void LdapEntry::replace(const std::string& name, std::vector<std::string> values) {
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    const Replacement replacement{name, std::move(values)};
    const NotedWrite noted(key_);
    check(on_session([&](Session& session) { return session.modify(name_, {&replacement, 1}); }));
}

void LdapEntry::require_bound() const {
    if (!session_) raise_runtime_error(runtime_error::object_not_set);
}

void LdapEntry::CreateChild(Variant&, Text&, Object&) { raise_unsupported(); }
void LdapEntry::DeleteChild(Text&, Text&) { raise_unsupported(); }
bool LdapEntry::InitializeConnectionPool(Variant&, Variant&) { raise_unsupported(); }
bool LdapEntry::InitializeCache(Variant&, Variant&) { raise_unsupported(); }

}  // namespace orvo::directory::ldap
