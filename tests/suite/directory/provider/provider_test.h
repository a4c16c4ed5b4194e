#pragma once

// A provider, of which tests know the contract alone, in front of a directory of each kind.

#include <gmock/gmock.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "platform/values/values.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/support/test_directory.h"

namespace orvo::directory {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Entry = Ref<DirectoryEntry>;
using Search = Ref<DirectorySearch>;
using Validator = Ref<DirectoryValidator>;
using Rows = Ref<RecordSet>;
using Row = std::vector<Variant>;
using Given = std::vector<std::pair<Text, Variant>>;

// Those of every_directory, and one that is seen through a map.
std::vector<DirectoryKind> every_provider();

struct Login {
    std::string user;
    std::string password;
};

inline constexpr const char16_t* users = u"ou=Users,o=Shop";

// Calls of the objects' methods.
Variant values(const Entry& entry, Text name);
void set(const Entry& entry, Text name, Variant value);
void clear(const Entry& entry, Text name);
void create(const Entry& container, const Given& given, Text naming = u"cn",
            Variant classes = Values{Values{u"orvoPerson", u"top"}});
void remove(const Entry& container, Text name);
Object dictionary(const Given& given);

std::int32_t validated(const Validator& validator, Variant path, Variant password);

Rows execute(const Search& search, Text filter, Variant attributes = Values{u"cn"},
             std::int32_t maximum = 1000);
// What is left of a record set.
std::vector<Row> all(const Rows& rows);
std::vector<std::string> first_column(const Rows& rows);

// What the component gives for a new user.
Given new_user(const Text& name, const Text& password = u"");

class ProviderTest : public testing::TestWithParam<DirectoryKind> {
protected:
    explicit ProviderTest(const DirectoryOptions& options = {});
    // With one directory for the whole suite, which no test changes.
    struct Shared {
        DirectoryOptions options = {};
    };
    explicit ProviderTest(const Shared& shared);
    static void TearDownTestSuite() { shared_.clear(); }

    // Whether users are looked for, which tells names that nobody has in words of its own.
    static bool is_looked_for() { return std::string_view(GetParam().name) == "Mapped"; }

    static Login service() {
        return {TestDirectory::service_dn(), TestDirectory::service_password()};
    }
    static Login user(const std::string& cn) {
        return {TestDirectory::user_dn(cn), TestDirectory::user_password()};
    }

    // An object is its thread's alone.
    static Ref<DirectoryModule> new_provider();
    Entry new_entry() { return call<&DirectoryModule::CreateEntry>(module_); }
    void bind(const Entry& entry, const Login& login, Text common_name,
              Variant attributes = Values{}, Text container = users);
    void bind(const Entry& entry, Text user, Secret password, Text common_name);
    // Bound with the service account.
    Entry bound(const Text& common_name = u"cn=djansen", const Text& container = users);

    Search new_search() { return call<&DirectoryModule::CreateSearch>(module_); }
    void connect(const Search& search, const Login& login, Text container = users);
    // How many users match, for the service account.
    std::int32_t found(const Text& filter);

    Validator new_validator() { return call<&DirectoryModule::CreateValidator>(module_); }
    Validator opened(Text container = users);
    std::int32_t checked(const Variant& path, const Variant& password,
                         const Text& container = users) {
        return validated(opened(container), path, password);
    }

private:
    static inline std::map<std::string, std::unique_ptr<TestDirectory>> shared_;
    std::unique_ptr<TestDirectory> own_;

protected:
    TestDirectory& shop_;
    const Ref<DirectoryModule> module_ = new_provider();

    // What the provider raises, under its own name.
    template <class Action>
    Failure refusal_of(Action action) const {
        const Failure failure = failure_of(action);
        if (failure.number != 0) {
            EXPECT_EQ(to_utf8(failure.source), shop_.own(differences::source));
        }
        return failure;
    }
};

}  // namespace orvo::directory

// Runs the tests of a fixture for every kind of directory.
#define FOR_EVERY_DIRECTORY(fixture)                                                          \
    INSTANTIATE_TEST_SUITE_P(, fixture, testing::ValuesIn(orvo::directory::every_provider()), \
                             [](const auto& info) { return info.param.name; })
