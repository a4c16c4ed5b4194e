#include "tests/suite/directory/provider/provider_test.h"

#include "platform/interfaces/hosted.h"
#include "platform/objects/dictionary/dictionary.h"
#include "suite/directory/embedded/provider/EmbeddedDirectory.h"
#include "suite/directory/ldap/provider/LdapDirectory.h"
#include "tests/suite/directory/provider/mapped_shop.h"

namespace orvo::directory {

Variant values(const Entry& entry, Text name) {
    return call<&DirectoryEntry::GetValues>(entry, name);
}

void set(const Entry& entry, Text name, Variant value) {
    call<&DirectoryEntry::SetValues>(entry, name, value);
}

void clear(const Entry& entry, Text name) { call<&DirectoryEntry::ClearValues>(entry, name); }

void create(const Entry& container, const Given& given, Text naming, Variant classes) {
    Object attributes = dictionary(given);
    call<&DirectoryEntry::CreateChild>(container, classes, naming, attributes);
}

void remove(const Entry& container, Text name) {
    Text class_name = u"orvoPerson";
    call<&DirectoryEntry::DeleteChild>(container, class_name, name);
}

Object dictionary(const Given& given) {
    const auto made = make<DictionaryObject>();
    for (auto [name, value] : given) {
        Variant key = name;
        call<&Dictionary::Add>(made, key, value);
    }
    return made.object();
}

std::int32_t validated(const Validator& validator, Variant path, Variant password) {
    return call<&DirectoryValidator::Validate>(validator, path, password);
}

Rows execute(const Search& search, Text filter, Variant attributes, std::int32_t maximum) {
    return Rows::from(call<&DirectorySearch::Execute>(search, filter, attributes, maximum));
}

std::vector<Row> all(const Rows& rows) {
    const std::int32_t columns = call<&Fields::Count>(call<&RecordSet::Fields>(rows));
    std::vector<Row> result;
    for (; !call<&RecordSet::IsEof>(rows); call<&RecordSet::MoveNext>(rows)) {
        Row& row = result.emplace_back();
        for (std::int32_t column = 0; column < columns; ++column)
            row.push_back(call<&RecordSet::Collect>(rows, Variant(column)));
    }
    return result;
}

std::vector<std::string> first_column(const Rows& rows) {
    std::vector<std::string> values;
    for (const Row& row : all(rows)) values.push_back(to_utf8(row[0].to<Text>()));
    return values;
}

Given new_user(const Text& name, const Text& password) {
    return {{u"cn", name},
            {u"OrvoGUID", u"00112233445566778899AABBCCDDEEFF"},
            {u"userPassword", password},
            {u"sn", u""},
            {u"OrvoUserType", u""},
            {u"objectClass", Values{u"orvoPerson", u"top"}}};
}

std::vector<DirectoryKind> every_provider() {
    std::vector<DirectoryKind> kinds = every_directory();
    kinds.push_back({"Mapped", u"OrvoDirectory.Ldap",
                     [](const DirectoryOptions& options) -> std::unique_ptr<TestDirectory> {
                         return std::make_unique<MappedShop>(options);
                     }});
    return kinds;
}

ProviderTest::ProviderTest(const DirectoryOptions& options)
    : own_(GetParam().make(options)), shop_(*own_) {}

ProviderTest::ProviderTest(const Shared& shared)
    : shop_([&]() -> TestDirectory& {
          auto& made = shared_[GetParam().name];
          if (!made) made = GetParam().make(shared.options);
          return *made;
      }()) {}

Ref<DirectoryModule> ProviderTest::new_provider() {
    const Text name = GetParam().provider;
    if (name == u"OrvoDirectory.Ldap") return make<ldap::LdapDirectory>();
    if (name == u"OrvoDirectory.Embedded") return make<embedded::EmbeddedDirectory>();
    throw std::logic_error("no provider " + to_utf8(name));
}

void ProviderTest::bind(const Entry& entry, const Login& login, Text common_name,
                        Variant attributes, Text container) {
    Text server = from_utf8(shop_.server()), user = from_utf8(login.user);
    Secret password = Secret::of_bytes(login.password);
    call<&DirectoryEntry::Bind>(entry, server, container, common_name, user, password, attributes);
}

void ProviderTest::bind(const Entry& entry, Text user, Secret password, Text common_name) {
    Text server = from_utf8(shop_.server()), container = users;
    Variant nothing = Values{};
    call<&DirectoryEntry::Bind>(entry, server, container, common_name, user, password, nothing);
}

Entry ProviderTest::bound(const Text& common_name, const Text& container) {
    const Entry entry = new_entry();
    bind(entry, service(), common_name, Values{}, container);
    return entry;
}

void ProviderTest::connect(const Search& search, const Login& login, Text container) {
    Text server = from_utf8(shop_.server()), user = from_utf8(login.user);
    Secret password = Secret::of_bytes(login.password);
    call<&DirectorySearch::Connect>(search, server, container, user, password);
}

std::int32_t ProviderTest::found(const Text& filter) {
    const Search search = new_search();
    connect(search, service());
    return call<&RecordSet::RecordCount>(execute(search, filter));
}

Validator ProviderTest::opened(Text container) {
    Validator validator = new_validator();
    Text server = from_utf8(shop_.server());
    call<&DirectoryValidator::Open>(validator, server, container);
    return validator;
}

}  // namespace orvo::directory
