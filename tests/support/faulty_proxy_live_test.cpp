#include "tests/support/faulty_proxy.h"

#include <gmock/gmock.h>

#include <csignal>
#include <mutex>

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int success = 0;
constexpr int server_down = -1;
constexpr int timed_out = -5;

class AFaultyProxy : public testing::Test {
protected:
    static int port_of(const PrivateSlapd& slapd) { return std::stoi(slapd.server().substr(10)); }

    std::unique_ptr<LdapProbe> client() const {
        auto made = std::make_unique<LdapProbe>("ldap://" + proxy_.server());
        made->set_patience(1);
        return made;
    }
    int log_in(LdapProbe& probe) const {
        return probe.bind(slapd_.service_dn(), slapd_.service_password());
    }
    std::vector<std::string> phone() const {
        return LdapProbe(slapd_.url(), slapd_.root_dn(), slapd_.root_password())
            .values(slapd_.user_dn("glee"), "PhoneNumber");
    }

    PrivateSlapd slapd_;
    std::mutex mutex_;
    std::string heard_;
    FaultyProxy proxy_{port_of(slapd_), [this]() -> FaultyProxy::Listener {
                           return [this](std::string_view bytes) {
                               const std::lock_guard lock(mutex_);
                               heard_ += bytes;
                           };
                       }};
};

TEST_F(AFaultyProxy, PassesOnWhatBothSidesSay) {
    const auto probe = client();
    EXPECT_EQ(log_in(*probe), success);
    EXPECT_EQ(probe->find("ou=Users,o=Shop", "(objectClass=orvoPerson)").size(), 200u)
        << "answers that do not fit into one piece";
}

TEST_F(AFaultyProxy, HoldsRequestsBackWhileItIsSilentAndPassesThemOnAfterwards) {
    const auto before = client();
    ASSERT_EQ(log_in(*before), success);
    proxy_.fall_silent();
    EXPECT_EQ(before->replace(slapd_.user_dn("glee"), "PhoneNumber", {"held back"}), timed_out);
    EXPECT_EQ(log_in(*client()), timed_out) << "connections are accepted all the same";
    {
        const std::lock_guard lock(mutex_);
        EXPECT_THAT(heard_, HasSubstr("held back")) << "it was sent";
    }
    EXPECT_NE(phone(), std::vector<std::string>{"held back"});
    proxy_.pass_on();
    EXPECT_EQ(log_in(*client()), success);
    EXPECT_EQ(log_in(*before), success) << "the connection is as it was";
    EXPECT_THAT(phone(), ElementsAre("held back")) << "the server does what nobody waits for";
}

TEST_F(AFaultyProxy, RefusesNewConnectionsAndKeepsThoseItHas) {
    const auto before = client();
    ASSERT_EQ(log_in(*before), success);
    proxy_.refuse();
    EXPECT_EQ(log_in(*client()), server_down);
    EXPECT_EQ(log_in(*before), success);
    proxy_.pass_on();
    EXPECT_EQ(log_in(*client()), success);
}

TEST_F(AFaultyProxy, ResetsTheConnectionsItHas) {
    // The client library does not keep it from ending the process.
    const auto usual = std::signal(SIGPIPE, SIG_IGN);
    auto before = client();
    ASSERT_EQ(log_in(*before), success);
    proxy_.refuse_and_reset();
    EXPECT_EQ(log_in(*client()), server_down);
    EXPECT_EQ(before->search_result("o=Shop", "(o=Shop)"), server_down);
    before.reset();
    std::signal(SIGPIPE, usual);
    proxy_.pass_on();
    EXPECT_EQ(log_in(*client()), success);
}

TEST_F(AFaultyProxy, DelaysEachAnswer) {
    const auto probe = client();
    ASSERT_EQ(log_in(*probe), success);
    constexpr auto delay = std::chrono::milliseconds(50);
    proxy_.slow_down(delay);
    const auto begin = Clock::now();
    EXPECT_EQ(log_in(*probe), success);
    EXPECT_GE(Clock::now() - begin, delay);
    proxy_.slow_down(std::chrono::seconds(60));
    EXPECT_EQ(log_in(*probe), timed_out);
    proxy_.pass_on();
    EXPECT_EQ(log_in(*client()), success);
}

TEST_F(AFaultyProxy, LosesItsConnectionsWithTheServer) {
    const auto before = client();
    ASSERT_EQ(log_in(*before), success);
    slapd_.kill();
    EXPECT_FALSE(slapd_.running());
    EXPECT_EQ(before->search_result("o=Shop", "(o=Shop)"), server_down);
    EXPECT_EQ(log_in(*client()), server_down);
    slapd_.start();
    EXPECT_EQ(log_in(*client()), success);
}

}  // namespace
}  // namespace orvo
