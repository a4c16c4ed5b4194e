#include "suite/directory/embedded/transfer/loader.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/values/secret.h"
#include "suite/directory/embedded/directory/entry_changes.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"
#include "suite/directory/schema/entry_change.h"
#include "suite/directory/schema/entry_check.h"

namespace orvo::directory::embedded {
namespace {

// What a directory makes of its entries for whoever reads them, or for its own copies.
constexpr std::array not_loaded = {
    "entryCSN",          "contextCSN",           "entryDN", "hasSubordinates", "numSubordinates",
    "subschemaSubentry", "structuralObjectClass"};

bool is_not_loaded(const Attribute& attribute) {
    return std::ranges::any_of(not_loaded, [&](const char* name) {
        return ascii::equal_ignoring_case(attribute.name, name);
    });
}

void raise_if(const Refusal& refusal) {
    if (refusal) raise_code(refusal.code, refusal.message);
}

DistinguishedName parsed(const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed || parsed->depth() == 0)
        raise_code(result_code::invalid_name, quoted_name(name) + " is not a name.");
    return *parsed;
}

bool has_scheme(std::string_view password) {
    return password.starts_with('{') && password.find('}') != std::string_view::npos;
}

bool is_empty(const Reading& reading) {
    bool is_empty = true;
    reading.every_entry([&](EntryData&&) { return is_empty = false; });
    return is_empty;
}

}  // namespace

Loader::Loader(Store& store, Moment now, int hash_cost)
    : schema_(store.schema()), now_(now), hash_cost_(hash_cost), writing_(store.write()) {
    expect_many();
}

void Loader::expect_many() {
    writing_.expect_many();
    expects_many_ = true;
}

bool Loader::has_children(const DistinguishedName& name) const {
    return writing_.has_children(name) || (expects_many_ && parents_.contains(name.key()));
}

void Loader::take(LdifRecord record) {
    switch (record.kind) {
        case LdifRecord::Kind::entry:
        case LdifRecord::Kind::add:
            add(std::move(record.entry));
            break;
        case LdifRecord::Kind::modify:
            modify(record.entry.name, std::move(record.changes));
            break;
        case LdifRecord::Kind::remove:
            remove(record.entry.name);
            break;
    }
    ++count_;
}

void Loader::add(EntryData entry) {
    std::erase_if(entry.attributes, is_not_loaded);
    raise_if(check_loaded_entry(*schema_, entry));
    for (Attribute& attribute : entry.attributes) hash_passwords(attribute.name, attribute.values);
    put_in_place(entry);
    stamp(entry);
    writing_.add(entry);
}

// Its name ends in that of the entry above it, as that is written. The base, as it was made with
// the store, gives way to the one that is loaded.
void Loader::put_in_place(EntryData& entry) {
    const DistinguishedName name = parsed(entry.name);
    const DistinguishedName above = name.parent();
    auto parent = parents_.find(above.key());
    const std::string nearest =
        parent == parents_.end() ? writing_.nearest_above(name) : parent->second;
    if (parent == parents_.end() && !nearest.empty() && parsed(nearest) == above)
        parent = parents_.emplace(above.key(), nearest).first;
    if (parent != parents_.end()) {
        const RelativeName own = try_name_parts(entry.name)->front();
        entry.name = joined_name({own}) + ',' + parent->second;
        return;
    }
    const std::string base = writing_.setting(store_setting::base);
    const bool is_base = !base.empty() && parsed(base) == name;
    const bool is_there = writing_.find(name).has_value();
    if (is_base && is_there && !has_children(name)) {
        writing_.remove(name);
        expect_many();
    }
    if (is_base || is_there || (base.empty() && is_empty(writing_))) return;
    raise_code(result_code::no_such_object,
               "The entry above " + quoted_name(entry.name) + " is not there.", nearest);
}

void Loader::stamp(EntryData& entry) const {
    EntryData stamped;
    stamp_new(stamped, {}, now_);
    if (const ObjectClass* structural = structural_class(*schema_, entry))
        stamped.attributes.push_back({"structuralObjectClass", {structural->name()}});
    for (Attribute& attribute : stamped.attributes) {
        const auto held = std::ranges::find(entry.attributes, attribute.name, &Attribute::name);
        if (held == entry.attributes.end()) entry.attributes.push_back(std::move(attribute));
    }
}

void Loader::hash_passwords(std::string_view attribute, std::vector<std::string>& values) const {
    if (!is_password(attribute)) return;
    for (std::string& value : values) {
        if (is_known_hash(value)) continue;
        if (has_scheme(value))
            raise_code(result_code::constraint_violation,
                       "The password has a scheme that is not known: " +
                           value.substr(0, value.find('}') + 1));
        std::string hash = hashed_password(Secret::of_bytes(value), hash_cost_);
        overwrite(value.data(), value.size());
        value = std::move(hash);
    }
}

EntryData Loader::existing(const DistinguishedName& name) const {
    std::optional<EntryData> entry = writing_.find(name);
    if (!entry) raise_code(result_code::no_such_object, {}, writing_.nearest_above(name));
    return *std::move(entry);
}

void Loader::modify(const std::string& name, std::vector<Replacement> changes) {
    EntryData entry = existing(parsed(name));
    for (Replacement& change : changes)
        if (change.kind != Change::remove) hash_passwords(change.attribute, change.values);
    raise_if(apply_changes(*schema_, entry, changes));
    stamp_changed(entry, {}, now_);
    writing_.replace(entry);
    expects_many_ = false;
}

void Loader::remove(const std::string& name) {
    const DistinguishedName key = parsed(name);
    existing(key);
    if (has_children(key))
        raise_code(result_code::not_allowed_on_non_leaf,
                   "subordinate objects must be deleted first");
    writing_.remove(key);
    expects_many_ = false;
    parents_.erase(key.key());
}

}  // namespace orvo::directory::embedded
