#include "suite/directory/embedded/directory/login.h"

#include <utility>

#include "suite/directory/embedded/access/access_view.h"
#include "suite/directory/embedded/directory/entry_changes.h"
#include "suite/directory/entries/login_name.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/schema/entry_change.h"
#include "suite/directory/schema/entry_check.h"
#include "suite/directory/schema/value_syntax.h"

namespace orvo::directory::embedded {
namespace {

constexpr const char* user_password = "userPassword";

[[noreturn]] void refuse_name() { raise_code(result_code::invalid_name, "invalid DN"); }

void check(const Refusal& refusal) {
    if (refusal.code != result_code::success) raise_code(refusal.code, refusal.message);
}

// Of an entry that is not there, or that nobody is to know of.
[[noreturn]] void raise_missing(const Reading& reading, const AccessRules& rules,
                                const Identity& who, const DistinguishedName& name) {
    std::string nearest = reading.nearest_above(name);
    if (!nearest.empty() &&
        !rules.allow(who, Right::read, *DistinguishedName::try_parse(from_utf8(nearest)),
                     the_entry))
        nearest.clear();
    raise_code(result_code::no_such_object, {}, nearest);
}

[[noreturn]] void refuse_access(std::string_view message = {}) {
    raise_code(result_code::insufficient_access, message);
}

}  // namespace

Login::Login(std::shared_ptr<Directory> directory, TextView user, const Secret& password)
    : directory_(std::move(directory)), user_(login_name(user, password)) {
    schema_ = directory_->store().schema();
    if (user_.empty()) return;
    user_name_ = DistinguishedName::try_parse(from_utf8(user_));
    if (!user_name_) raise_code(result_code::invalid_credentials);
    user_key_ = user_name_->key();
    presented_ = password.clone();
}

DistinguishedName Login::parsed(const std::string& name) const {
    auto read = DistinguishedName::try_parse(from_utf8(name));
    if (!read || !try_name_of_schema(name, *schema_)) refuse_name();
    return *std::move(read);
}

Login::Login(TextView server, TextView user, const Secret& password)
    : Login(Directory::of(server), user, password) {}

void Login::authenticate() {
    if (!presented_) return;
    if (!try_name_of_schema(user_, *schema_)) refuse_name();
    BindAnswer answer = directory_->bind(user_, *presented_, Directory::Proof::known);
    // Whoever cannot be bound has the wrong credentials, whatever the reason is called.
    if (!answer.credentials) raise_code(result_code::invalid_credentials);
    credentials_ = std::move(answer.credentials);
    presented_.reset();
}

Identity Login::identity(const Reading& reading) const {
    if (!user_name_) return Identity::nobody();
    std::optional<EntryData> own = reading.find(*user_name_);
    if (!own || !directory_->credentials().is_current(*credentials_, stored_password(*own)))
        raise_code(result_code::invalid_credentials);
    return Identity::of(*user_name_, *std::move(own));
}

// Users who have to change their password do that first.
void Login::require_unrestricted(const Reading& reading, const Identity& who) const {
    if (who.is_nobody() || !AccountState::from(who.entry()).reset.value_or(false)) return;
    const std::optional<PasswordRules> policy = directory_->password_rules(reading, who.entry());
    if (policy && policy->must_change)
        refuse_access("Operations are restricted to bind/unbind/abandon/StartTLS/modify password");
}

EntryData Login::require_visible(const Reading& reading, const AccessRules& rules,
                                 const Identity& who, const DistinguishedName& name) {
    std::optional<EntryData> entry = reading.find(name);
    if (!entry) raise_missing(reading, rules, who, name);
    // Nobody is told what is above an entry that is hidden.
    if (!rules.allow(who, Right::read, name, the_entry)) raise_code(result_code::no_such_object);
    return *std::move(entry);
}

namespace {

// What an entry has without anybody writing it.
void add_computed(const Reading& reading, const DistinguishedName& name, EntryData& entry) {
    entry.attributes.push_back({"entryDN", {entry.name}});
    entry.attributes.push_back(
        {"hasSubordinates", {reading.has_children(name) ? "TRUE" : "FALSE"}});
}

}  // namespace

EntryData Login::read(const std::string& name) {
    const DistinguishedName read = parsed(name);
    const Reading reading = directory_->read();
    const Identity who = identity(reading);
    require_unrestricted(reading, who);
    const auto rules = directory_->access_rules(reading);
    EntryData entry = require_visible(reading, *rules, who, read);
    add_computed(reading, read, entry);
    std::vector<std::string> names;
    for (const Attribute& attribute : entry.attributes) names.push_back(attribute.name);
    AccessView view(*rules, who, names);
    auto may_read = view.of(entry.name).may_read.begin();
    std::erase_if(entry.attributes, [&](const Attribute&) { return !*may_read++; });
    return entry;
}

const EntryData& Login::known(const std::string& name) {
    const std::uint64_t version = directory_->store().version();
    if (!known_ || known_->version != version || known_->name != name) {
        known_.reset();
        EntryData entry = read(name);
        std::erase_if(entry.attributes,
                      [](const Attribute& attribute) { return is_secret(attribute.name); });
        known_ = Known{version, name, std::move(entry)};
    }
    return known_->entry;
}

// Of an entry that is made: nothing has to be hashed for it.
void Login::check_first_password(const PasswordRules& policy, const Secret& password,
                                 EntryData& entry) {
    const AccountState nothing;
    const PasswordChange first{ChangedBy::other, FormerPassword::not_told, password, {}};
    const Moment now = directory_->now();
    const ChangeRefusal refusal = refusal_of_change(policy, nothing, first, now);
    if (refusal.code != result_code::success) raise_code(refusal.code, refusal.message);
    carry_out(changes_with_password(policy, nothing, ChangedBy::other, {}, now), entry);
}

void Login::add(EntryData entry, const Secret& password) {
    const DistinguishedName added = parsed(entry.name);
    check(check_new_entry(*schema_, entry));
    const std::string hash = password.empty() ? "" : hashed_password(password);

    Writing writing = directory_->write();
    const Identity who = identity(writing);
    require_unrestricted(writing, who);
    const auto rules = directory_->access_rules(writing);
    if (writing.find(added)) raise_code(result_code::entry_already_exists);
    const std::optional<EntryData> above = writing.find(added.parent());
    if (!above) raise_missing(writing, *rules, who, added.parent());
    if (!rules->allow(who, Right::write, added.parent(), its_children))
        refuse_access("no write access to parent");
    if (!rules->allow(who, Right::write, added, the_entry))
        refuse_access("no write access to entry");
    if (!hash.empty()) {
        if (!rules->allow(who, Right::write, added, user_password)) refuse_access();
        if (const auto policy = directory_->password_rules(writing, entry))
            check_first_password(*policy, password, entry);
        entry.attributes.push_back({user_password, {hash}});
        check(check_entry(*schema_, entry));
    }
    if (const auto parts = try_name_parts(entry.name))
        entry.name = joined_name({parts->front()}) + ',' + above->name;
    stamp_new(entry, user_, directory_->now());
    if (const ObjectClass* structural = structural_class(*schema_, entry))
        entry.attributes.push_back({"structuralObjectClass", {structural->name()}});
    writing.add(entry);
    writing.commit();
}

void Login::remove(const std::string& name) {
    const DistinguishedName removed = parsed(name);
    Writing writing = directory_->write();
    const Identity who = identity(writing);
    require_unrestricted(writing, who);
    const auto rules = directory_->access_rules(writing);
    if (!writing.find(removed)) raise_missing(writing, *rules, who, removed);
    if (!rules->allow(who, Right::write, removed.parent(), its_children))
        refuse_access("no write access to parent");
    if (!rules->allow(who, Right::write, removed, the_entry))
        refuse_access("no write access to entry");
    if (writing.has_children(removed))
        raise_code(result_code::not_allowed_on_non_leaf,
                   "subordinate objects must be deleted first");
    writing.remove(removed);
    writing.commit();
}

void Login::modify(const std::string& name, const std::vector<Replacement>& changes) {
    const DistinguishedName modified = parsed(name);
    Writing writing = directory_->write();
    const Identity who = identity(writing);
    require_unrestricted(writing, who);
    const auto rules = directory_->access_rules(writing);
    std::optional<EntryData> entry = writing.find(modified);
    if (!entry) raise_missing(writing, *rules, who, modified);
    const AccountState former = AccountState::from(*entry);
    const Refusal refusal = apply_changes(*schema_, *entry, changes);
    // What nobody could write is refused before it is asked who may.
    if (refusal.code == result_code::undefined_attribute_type ||
        refusal.code == result_code::invalid_syntax)
        check(refusal);
    for (const Replacement& change : changes)
        if (!rules->allow(who, Right::write, modified, change.attribute)) refuse_access();
    check(refusal);
    if (!former.locked_time.empty() && AccountState::from(*entry).locked_time.empty())
        carry_out(changes_with_unlocking(former), *entry);
    stamp_changed(*entry, user_, directory_->now());
    writing.replace(*entry);
    writing.commit();
}

}  // namespace orvo::directory::embedded
