#include "tests/support/embedded_shop.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/embedded/directory/entry_changes.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"
#include "suite/directory/schema/entry_change.h"
#include "suite/directory/schema/entry_check.h"
#include "tests/support/throttle_setting.h"

namespace orvo {

using namespace directory;
using namespace directory::embedded;

namespace {

constexpr int no_such_object = 32;
constexpr int invalid_credentials = 49;

const std::filesystem::path source_tree = ORVO_SOURCE_DIR;
const std::string manager = "cn=root,o=Shop";

DistinguishedName parsed(const std::string& dn) {
    const auto name = DistinguishedName::try_parse(from_utf8(dn));
    if (!name) throw std::runtime_error("no name: " + dn);
    return *name;
}

std::vector<std::string> hashed(const std::vector<std::string>& passwords) {
    std::vector<std::string> stored;
    for (const std::string& password : passwords)
        stored.push_back(is_known_hash(password) ? password
                                                 : hashed_password(Secret::of_bytes(password)));
    return stored;
}

// As a directory keeps a new entry.
void complete(EntryData& entry) {
    for (Attribute& attribute : entry.attributes)
        if (attribute.name == "userPassword") attribute.values = hashed(attribute.values);
    stamp_new(entry, manager, time_of_day());
    const ObjectClass* structural = structural_class(Schema::of_product(), entry);
    entry.attributes.push_back({"structuralObjectClass", {structural->name()}});
}

void load(const std::filesystem::path& file, Loader& loader) {
    std::ifstream in(file);
    LdifReader reader(in);
    while (auto record = reader.next()) loader.take(*std::move(record));
}

void make_store(const std::filesystem::path& file, const DirectoryOptions& options) {
    const auto examples = source_tree / "examples/directory";
    Store::create(file, Schema::of_product());
    const std::shared_ptr<Store> store = Store::open(file);
    Loader loader(*store, time_of_day(), HashCost::usual);
    loader.set_setting(store_setting::access, AccessRules::text_of_product("o=Shop"));
    load(options.shop.empty() ? examples / "shop.ldif" : options.shop, loader);
    if (options.password_policy) {
        load(examples / "password-policy.ldif", loader);
        loader.set_setting(store_setting::policy, "cn=default,ou=Policies,o=Shop");
    }
    for (const auto& more : options.ldif) load(more, loader);
    loader.commit();
}

// The store that tests with the usual shop have copies of.
const std::filesystem::path& usual_store() {
    static const TempFolder folder;
    static const std::filesystem::path file = [] {
        auto path = folder.path() / "shop.db";
        make_store(path, {});
        return path;
    }();
    return file;
}

bool is_at_or_below(const DistinguishedName& name, const DistinguishedName& base) {
    return name == base || name.is_below(base);
}

}  // namespace

EmbeddedShop::EmbeddedShop(const DirectoryOptions& options)
    : file_(folder_.path() / "shop.db"), site_ini_(folder_.path() / "site.ini") {
    const bool is_usual = !options.password_policy && options.shop.empty() && options.ldif.empty();
    if (is_usual)
        Store::open(usual_store())->backup(file_, [](int, int) {});
    else
        make_store(file_, options);
    store_ = Store::open(file_);

    const auto examples = source_tree / "examples";
    std::string settings = content_of(examples / "site.ini");
    const std::string place = "@SERVER@";
    settings.replace(settings.find(place), place.size(), server());
    folder_.write("site.ini", settings);
    write_throttle_section(site_ini_, "On=no\n");
    std::filesystem::copy(examples / "Config", folder_.path() / "Config");
}

std::vector<std::string> EmbeddedShop::find(const std::string& base, const std::string& filter) {
    const AttributeTypes& types = store_->schema()->types;
    const DistinguishedName above = parsed(base);
    const FilterMatcher matcher(Filter::parse(from_utf8(filter)), [&](std::string_view attribute) {
        return matching_of(attribute, types, Bounds::of_rules);
    });
    std::vector<std::string> found;
    store_->read().every_entry([&](EntryData&& entry) {
        if (is_at_or_below(parsed(entry.name), above) &&
            matcher.matches(SearchedEntry(entry, types)))
            found.push_back(entry.name);
        return true;
    });
    return found;
}

std::vector<std::string> EmbeddedShop::values(const std::string& dn, const std::string& attribute) {
    const auto entry = store_->read().find(parsed(dn));
    if (!entry) throw std::runtime_error(dn + ": (32) No such object");
    const Attribute* held = find_attribute(*entry, attribute);
    return held ? held->values : std::vector<std::string>();
}

int EmbeddedShop::replace(const std::string& dn, const std::string& attribute,
                          const std::vector<std::string>& values) {
    const bool is_password = attribute == "userPassword";
    const Replacement change{attribute, is_password ? hashed(values) : values};
    Writing writing = store_->write(Durability::process);
    auto entry = writing.find(parsed(dn));
    if (!entry) return no_such_object;
    const Refusal refusal = apply_changes(*store_->schema(), *entry, {&change, 1});
    if (refusal) return refusal.code;
    stamp_changed(*entry, manager, time_of_day());
    writing.replace(*entry);
    writing.commit();
    return 0;
}

int EmbeddedShop::add(
    const std::string& dn,
    const std::vector<std::pair<std::string, std::vector<std::string>>>& attributes) {
    EntryData entry{dn, {}};
    for (const auto& [name, values] : attributes) entry.attributes.push_back({name, values});
    if (const Refusal refusal = check_new_entry(*store_->schema(), entry)) return refusal.code;
    complete(entry);
    Writing writing = store_->write(Durability::process);
    writing.add(entry);
    writing.commit();
    return 0;
}

int EmbeddedShop::remove(const std::string& dn) {
    Writing writing = store_->write(Durability::process);
    if (!writing.find(parsed(dn))) return no_such_object;
    writing.remove(parsed(dn));
    writing.commit();
    return 0;
}

int EmbeddedShop::bind(const std::string& dn, const std::string& password) {
    const auto entry = store_->read().find(parsed(dn));
    const bool is_right = entry && is_hash_of(stored_password(*entry), Secret::of_bytes(password));
    return is_right ? 0 : invalid_credentials;
}

std::map<std::string, std::string> EmbeddedShop::everything() {
    std::map<std::string, std::string> entries;
    store_->read().every_entry([&](EntryData&& entry) {
        std::string& all = entries[entry.name];
        for (const Attribute& attribute : entry.attributes) {
            if (attribute.name == "userPassword") continue;
            all += attribute.name + ":";
            for (const std::string& value : attribute.values) all += " '" + value + "'";
            all += "\n";
        }
        return true;
    });
    return entries;
}

}  // namespace orvo
