#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/module/local_class.h"
#include "platform/values/values.h"
#include "suite/audit/audit_contract.h"
#include "suite/authfilter/filter_connector.h"
#include "suite/authfilter/live_logins.h"
#include "suite/authfilter/memory_store.h"
#include "tests/support/raised.h"

namespace orvo::authfilter {

// An audit that the test reads.
struct RecordingAudit final : Audit {
    static inline std::vector<std::string> lines;
    static inline bool is_full = false;

    Boolean IsOn() override { return true; }
    void Record(const Text& event, const Text& result, const Text& user, const Text& by,
                const Text& server, const Text& what) override {
        if (is_full) throw Failure(75, {}, u"the disk is full");
        lines.push_back(
            to_utf8(event + u"|" + result + u"|" + user + u"|" + by + u"|" + server + u"|" + what));
    }
};

}  // namespace orvo::authfilter

namespace orvo {

template <>
inline constexpr auto class_of<authfilter::RecordingAudit> =
    describe_class<Audit>("OrvoSuite.Audit", "541ba06b-9aa9-45fa-8333-8463d6c28344");

}  // namespace orvo

namespace orvo::authfilter {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AuditedLoginsTest : public testing::Test {
protected:
    AuditedLoginsTest() {
        RecordingAudit::lines.clear();
        RecordingAudit::is_full = false;
    }
    void log_in(const Text& guid, const Text& user, const Text& path = {}) {
        const auto record = call<&FilterConnector::CreateUserWithGUID>(connector_, guid);
        call<&FilterUser::put_UserName>(record, user);
        call<&FilterUser::put_AccountPath>(record, path);
        call<&FilterUser::Save>(record);
        call<&FilterConnector::RegisterLogin>(
            connector_, user, Values{std::int32_t{3}, std::int32_t{10}}, guid, std::int16_t{1}, 10);
    }
    bool may_use(const Text& guid, std::int32_t application) {
        return call<&FilterConnector::IsLoggedIn>(connector_, guid, application);
    }
    void log_out(const Text& guid) { call<&FilterConnector::Logout>(connector_, guid); }
    static std::vector<std::string> recorded() { return std::exchange(RecordingAudit::lines, {}); }

    MemoryStore store_;
    Ref<FilterConnector> connector_ = make<FilterConnectorObject>(store_);
    LocalClass audit_ = local_class<RecordingAudit>();
};

TEST_F(AuditedLoginsTest, ALoginARefusalAndALogoutAreRecordedByTheUsersFullName) {
    log_in(u"g", u"smith", u"cn=smith,ou=Users,o=Shop");
    EXPECT_THAT(recorded(), ElementsAre("login|done|cn=smith,ou=Users,o=Shop|||application 3, 10"));
    EXPECT_TRUE(may_use(u"g", 3));
    EXPECT_THAT(recorded(), IsEmpty());
    EXPECT_FALSE(may_use(u"g", 24));
    EXPECT_THAT(recorded(),
                ElementsAre("refusal|refused|cn=smith,ou=Users,o=Shop|||application 24"));
    log_out(u"g");
    EXPECT_THAT(recorded(), ElementsAre("logout|done|cn=smith,ou=Users,o=Shop|||"));
}

TEST_F(AuditedLoginsTest, AUserWithoutAFullNameIsRecordedAsTyped) {
    log_in(u"g", u"smith");
    log_out(u"g");
    EXPECT_THAT(recorded(),
                ElementsAre("login|done|smith|||application 3, 10", "logout|done|smith|||"));
}

TEST_F(AuditedLoginsTest, WhoIsNotLoggedInIsNobodyToRecord) {
    EXPECT_FALSE(may_use(u"g", 3));
    log_out(u"g");
    EXPECT_THAT(recorded(), IsEmpty());
}

TEST_F(AuditedLoginsTest, OfALoginThatIsEndedFromElsewhereIsRecordedWhoEndedIt) {
    log_in(u"g", u"smith");
    log_in(u"h", u"smith");
    recorded();
    LiveLogins logins(store_);
    for (const LiveLoginFacts& facts : store_.logins_of(u"h"))
        if (!facts.is_asker) {
            EXPECT_TRUE(logins.EndLogin(u"h", LiveLogin(facts).ID()));
        }
    EXPECT_THAT(recorded(), ElementsAre("logout|done|smith|smith||"));
}

TEST_F(AuditedLoginsTest, OfLoginsThatAreEndedTogetherIsRecordedHowManyAndByWhom) {
    for (const char16_t* guid : {u"g", u"h", u"i"}) log_in(guid, u"smith", u"cn=smith,o=Shop");
    log_in(u"admin", u"admin", u"cn=admin,o=Shop");
    recorded();
    LiveLogins logins(store_);
    EXPECT_EQ(logins.EndOthers(u"g"), 2);
    EXPECT_THAT(recorded(), ElementsAre("logout|done|cn=smith,o=Shop|cn=smith,o=Shop||2 logins"));
    EXPECT_EQ(logins.EndAllOf(u"cn=smith,o=Shop", u"admin"), 1);
    EXPECT_THAT(recorded(), ElementsAre("logout|done|cn=smith,o=Shop|cn=admin,o=Shop||1 login"));
    EXPECT_EQ(logins.EndAllOf(u"cn=smith,o=Shop", u""), 0);
    EXPECT_THAT(recorded(), IsEmpty());
}

TEST_F(AuditedLoginsTest, ALoginThatHasToBeRecordedAndIsNotIsNone) {
    RecordingAudit::is_full = true;
    EXPECT_EQ(raised_by([&] { log_in(u"g", u"smith"); }).number, 75);
    RecordingAudit::is_full = false;
    EXPECT_FALSE(may_use(u"g", 3));
    EXPECT_FALSE(call<&FilterConnector::FindUserByGUID>(connector_, u"g"));
}

}  // namespace
}  // namespace orvo::authfilter
