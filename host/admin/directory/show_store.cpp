#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>

#include "host/admin/common/texts.h"
#include "host/admin/directory/directory_admin.h"
#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/store/store.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/ldif/ldif_writer.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/schema/entry_check.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;

bool is_hidden(const Attribute& attribute) {
    return is_secret(attribute.name) || holds_hashes(attribute.name);
}

EntryData entry_of(const Reading& reading, const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed) throw std::runtime_error(quoted_name(name) + " is not a name");
    std::optional<EntryData> entry = reading.find(*parsed);
    if (!entry) throw std::runtime_error("there is no entry " + quoted_name(name));
    return *std::move(entry);
}

void show_entry(const Reading& reading, const std::string& name) {
    EntryData entry = entry_of(reading, name);
    for (const Attribute& attribute : entry.attributes)
        if (is_hidden(attribute)) std::cout << "# " << attribute.name << " is not shown.\n";
    std::erase_if(entry.attributes, is_hidden);
    std::string text;
    append_ldif(text, entry);
    std::cout << text;
}

void show_summary(const Reading& reading, const Schema& schema) {
    std::size_t count = 0;
    std::map<std::string, std::size_t> by_class;
    reading.every_entry([&](EntryData&& entry) {
        ++count;
        const ObjectClass* kind = structural_class(schema, entry);
        ++by_class[kind ? kind->name() : "no class"];
        return true;
    });
    const std::string policy = reading.setting(store_setting::policy);
    std::cout << "Base: " << printable(reading.setting(store_setting::base)) << '\n'
              << "Password policy: " << (policy.empty() ? "none" : printable(policy)) << '\n'
              << "Schema: " << schema.types.all().size() << " attribute types, "
              << schema.classes.all().size() << " classes\n"
              << "Entries: " << count << '\n';
    for (const auto& [name, entries] : by_class)
        std::cout << "  " << name << ": " << entries << '\n';
    std::cout << "\nAccess rules:\n\n" << reading.setting(store_setting::access);
}

}  // namespace

void show(const std::filesystem::path& store, const std::string& name) {
    const std::shared_ptr<Store> opened = Store::open(store);
    const Reading reading = opened->read();
    if (name.empty())
        show_summary(reading, *opened->schema());
    else
        show_entry(reading, name);
}

void change_settings(const SetRequest& request) {
    const std::shared_ptr<Store> opened = Store::open(request.store);
    Writing writing = opened->write();
    if (!request.access.empty()) {
        const std::string text = text_of_file(request.access);
        AccessRules::parse(text, opened->schema());
        writing.set_setting(store_setting::access, text);
    }
    if (request.policy) {
        if (!request.policy->empty()) {
            const EntryData policy = entry_of(writing, *request.policy);
            const auto classes =
                std::ranges::find(policy.attributes, "objectClass", &Attribute::name);
            if (classes == policy.attributes.end() ||
                std::ranges::find(classes->values, "pwdPolicy") == classes->values.end())
                throw std::runtime_error(quoted_name(*request.policy) + " is no password policy");
        }
        writing.set_setting(store_setting::policy, *request.policy);
    }
    writing.commit();
    std::cout << request.store.string() << ": changed.\n";
}

}  // namespace orvo::admin
