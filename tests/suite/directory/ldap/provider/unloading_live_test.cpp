// The module with the provider, as others load it.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "tests/platform/unused_modules.h"
#include "tests/support/environment.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory::ldap {
namespace {

class Unloading : public testing::Test {
protected:
    Unloading() { output_of({ORVO_REGISTER_TOOL, ORVO_SUITE}); }

    void use_everything() const {
        const auto directory = Ref<DirectoryModule>::from(create_object(u"OrvoDirectory.Ldap"));
        Text server = from_utf8(server_.server()), container = u"ou=Users,o=Shop";
        Text name = u"cn=djansen", user = from_utf8(server_.service_dn());
        Secret password = Secret::of_bytes(server_.service_password());
        Variant names = Values{u"Entries"}, values = Values{10}, attributes = Values{u"sn"};
        const auto entry = call<&DirectoryModule::CreateEntry>(directory);
        call<&DirectoryEntry::InitializeCache>(entry, names, values);
        call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
        const auto validator = call<&DirectoryModule::CreateValidator>(directory);
        call<&DirectoryValidator::Open>(validator, server, container);
        Variant path = from_utf8(server_.user_dn("djansen"));
        Variant right = from_utf8(server_.user_password());
        EXPECT_EQ(call<&DirectoryValidator::Validate>(validator, path, right), 0);
    }

    // Without the one that counts; a connection that was closed is still open for a moment.
    bool comes_to(long connections) {
        const std::string entry = "cn=Current,cn=Connections,cn=Monitor";
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (std::stol(probe_.values(entry, "monitorCounter").at(0)) != connections + 1) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }

    PrivateSlapd server_;
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};

private:
    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
};

// What is not used any more goes when the system is told to look, and takes its connections along.
TEST_F(Unloading, LeavesNoConnectionsBehind) {
    for (int round = 0; round < 3; ++round) {
        use_everything();
        EXPECT_TRUE(comes_to(2)) << "one of the service account, one for password checks";
        unload_unused_modules();
        EXPECT_TRUE(comes_to(0));
        EXPECT_EQ(dlopen(ORVO_SUITE, RTLD_LAZY | RTLD_NOLOAD), nullptr);
    }
}

TEST_F(Unloading, LeavesNoConnectionsOfOtherThreadsBehind) {
    for (int round = 0; round < 3; ++round) {
        std::thread([&] { use_everything(); }).join();
        std::thread([&] { use_everything(); }).join();
        EXPECT_TRUE(comes_to(2));
        unload_unused_modules();
        EXPECT_TRUE(comes_to(0));
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
