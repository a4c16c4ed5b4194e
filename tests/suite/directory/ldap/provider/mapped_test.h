#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/suite_configuration.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory::ldap {

// The company of examples/directories/openldap, whose server knows nothing of the product, and a
// site with a map. Objects and the server's counters are PoolTest's.
class MappedTest : public testing::Test {
protected:
    static constexpr const char16_t* people = u"ou=People,o=Company";

    explicit MappedTest(SlapdOptions options = {}) : server_(company(std::move(options))) {}

    static SlapdOptions company(SlapdOptions options) {
        options.directory = ORVO_SOURCE_DIR "/examples/directories/openldap";
        options.suffix = "o=Company";
        return options;
    }

    // The site has these lines instead of the example's map.
    void use(const std::string& lines) {
        const std::filesystem::path file = folder_.path() / "site.ini";
        std::ofstream(file) << "[MEMBERSHIP]\nLDAPServer = " << server_.server()
                            << "\nLDAPRoot = o=Company\nUserContainer = ou=People\n"
                               "AccountContainer = ou=Accounts\nUserClass = inetOrgPerson\n"
                               "UserNamingAttribute = uid\nMemScriptUser = cn=shop,ou=Services\n"
                               "MemScriptCode = service-sample\n"
                            << lines;
        load(file);
    }
    void use_example() { load(server_.site_ini()); }

    static std::string dn(const std::string& uid, const std::string& unit) {
        return "uid=" + uid + ",ou=" + unit + ",ou=People,o=Company";
    }
    static Object dictionary(const std::vector<std::pair<Text, Variant>>& given) {
        const auto made = make<DictionaryObject>();
        for (auto [name, value] : given) {
            Variant key = name;
            call<&Dictionary::Add>(made, key, value);
        }
        return made.object();
    }
    // As the component completes a name.
    static Text path_of(const std::string& name) {
        return from_utf8("uid=" + name + ",ou=People,o=Company");
    }

    void bind(LdapEntry& entry, const Text& user, const char* code, const Text& name,
              const Text& container = people, Variant attributes = Values{}) {
        Text server = from_utf8(server_.server()), as = user, at = container, common_name = name;
        Secret password(from_utf8(code));
        entry.Bind(server, at, common_name, as, password, attributes);
    }
    // As the service account.
    void bind(LdapEntry& entry, const std::string& uid) {
        bind(entry, u"cn=shop,ou=Services,o=Company", "service-sample", from_utf8("uid=" + uid));
    }
    static std::string text(LdapEntry& entry, Text name) {
        const Variant values = entry.GetValues(name);
        std::string result;
        for (const Variant& value : values.to<Values>())
            result += (result.empty() ? "" : ",") + to_utf8(value.to<Text>());
        return result;
    }
    static void set(LdapEntry& entry, Text name, Variant value) { entry.SetValues(name, value); }

    std::int32_t checked(const std::string& name, const std::string& code = "company-sample") {
        LdapValidator validator({}, client_);
        Text server = from_utf8(server_.server()), container = people;
        validator.Open(server, container);
        Variant path = path_of(name), password = from_utf8(code);
        return validator.Validate(path, password);
    }

    // Rows with blanks between the fields.
    std::vector<std::string> found(Text filter, Values columns = {u"cn"},
                                   std::int32_t maximum = 100, Text container = people) {
        LdapSearch search({}, client_);
        Text server = from_utf8(server_.server()), user = u"cn=shop,ou=Services,o=Company";
        Secret password(u"service-sample");
        search.Connect(server, container, user, password);
        Variant names = columns;
        const auto rows = Ref<RecordSet>::from(search.Execute(filter, names, maximum));
        const std::int32_t count = call<&Fields::Count>(call<&RecordSet::Fields>(rows));
        std::vector<std::string> result;
        for (; !call<&RecordSet::IsEof>(rows); call<&RecordSet::MoveNext>(rows)) {
            std::string row;
            for (std::int32_t at = 0; at < count; ++at) {
                const Variant value = call<&RecordSet::Collect>(rows, Variant(at));
                std::string field;
                if (value.is_array()) {
                    for (const Variant& one : value.to<Values>())
                        field += (field.empty() ? "" : ",") + to_utf8(one.to<Text>());
                } else if (!value.is_empty()) {
                    field = to_utf8(value.to<Text>());
                }
                row += (at == 0 ? "" : " ") + field;
            }
            result.push_back(row);
        }
        return result;
    }

    std::vector<std::string> stored(const std::string& entry, const std::string& attribute) {
        auto values = probe_.values(entry, attribute);
        std::ranges::sort(values);
        return values;
    }
    long operations(const std::string& kind) {
        return std::stol(
            probe_.values("cn=" + kind + ",cn=Operations,cn=Monitor", "monitorOpInitiated").at(0));
    }
    // Beside the one that counts.
    long searches() { return operations("Search") - ++counted_; }
    long binds() { return operations("Bind"); }

    PrivateSlapd server_;
    ManualClock clock_;
    Client client_{clock_, Client::Probing::by_caller};
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};

    TempFolder folder_;

private:
    static void load(const std::filesystem::path& file) {
        SuiteConfiguration().LoadConfigurationFile(text_of(file));
    }

    long counted_ = 0;
};

}  // namespace orvo::directory::ldap
