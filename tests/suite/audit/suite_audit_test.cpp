#include "suite/audit/suite_audit.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/interfaces/call.h"
#include "platform/module/local_class.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/context/context_scope.h"
#include "platform/output/journal.h"
#include "suite/audit/audit_call.h"
#include "suite/log/suite_log.h"
#include "tests/support/addressed_request.h"
#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo {

namespace audit {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* time_pattern = "\"time\":\"[0-9-]{10}T[0-9:]{8}\\.[0-9]{3}Z\"";

class SuiteAuditTest : public testing::Test {
protected:
    void configure(const std::string& section) { folder_.write("site.ini", "[AUDIT]\n" + section); }
    static void record() {
        SuiteAudit().Record(u"check", u"right", u"cn=a,o=Shop", u"", u"/srv/shop.db", u"");
    }
    std::string audit() const { return content_of(folder_.path() / "audit.jsonl"); }
    std::string log() const { return content_of(folder_.path() / "orvo.log"); }

    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    Environment site_{"ORVO_SITE_CONFIG", folder_.write("site.ini", "").string()};
    Environment log_{"ORVO_LOG_FILE", (folder_.path() / "orvo.log").string()};
    LocalClass log_class_ = local_class<SuiteLog>();
    LocalClass app_server_class_{app_server_progid, class_of<AppServerObject>.clsid,
                                 [] { return make<AppServerObject>().object(); }};
    LocalClass audit_class_ = local_class<SuiteAudit>();
};

TEST_F(SuiteAuditTest, IsOffUnlessTheSiteAsksForIt) {
    EXPECT_FALSE(SuiteAudit().IsOn());
    EXPECT_FALSE(try_audit());
    record();
    EXPECT_FALSE(std::filesystem::exists(folder_.path() / "audit.jsonl"));
}

TEST_F(SuiteAuditTest, RecordsAnEventAsALine) {
    configure("File=audit.jsonl\n");
    const auto audit = try_audit();
    ASSERT_TRUE(audit);
    call<&Audit::Record>(audit, u"change", u"done", u"cn=a,o=Shop", u"cn=b,o=Shop", u"ldap://d",
                         u"mail");
    EXPECT_THAT(
        this->audit(),
        MatchesRegex(std::string("\\{") + time_pattern +
                     ",\"event\":\"change\",\"result\":\"done\",\"user\":\"cn=a,o=Shop\","
                     "\"by\":\"cn=b,o=Shop\",\"server\":\"ldap://d\",\"what\":\"mail\"\\}\n"));
}

TEST_F(SuiteAuditTest, RecordsAddressAndRequestOfThePageThatTheThreadRuns) {
    configure("File=audit.jsonl\n");
    {
        const ContextScope page({{u"Request", make<AddressedRequest>().object()}});
        record();
    }
    EXPECT_THAT(audit(), HasSubstr("\"user\":\"cn=a,o=Shop\",\"from\":\"203.0.113.7\",\"server\":"
                                   "\"/srv/shop.db\",\"request\":\"yN1\"}"));
    {
        const ContextScope script({});
        record();
    }
    EXPECT_THAT(audit(), HasSubstr("\"user\":\"cn=a,o=Shop\",\"server\""));
}

TEST_F(SuiteAuditTest, WhatIsWrongWithTheSettingsIsRaised) {
    configure("Fiel=audit.jsonl\n");
    EXPECT_EQ(raised_by([] { try_audit(); }).number, error_number(0x80040201));
}

TEST_F(SuiteAuditTest, WithoutSyncTheLogSaysWhatIsLost) {
    configure("File=/dev/full\n");
    EXPECT_NO_THROW(record());
    EXPECT_THAT(log(), MatchesRegex(std::string(".* error OrvoSuite.Audit: /dev/full: the audit "
                                                "cannot be written \\(No space left on device\\); "
                                                "lost: \\{") +
                                    time_pattern +
                                    ",\"event\":\"check\",\"result\":\"right\",\"user\":"
                                    "\"cn=a,o=Shop\",\"server\":\"/srv/shop.db\"\\}\n"));
}

TEST_F(SuiteAuditTest, WithSyncWhatCannotBeRecordedIsRaisedToo) {
    configure("File=/dev/full\nSync=yes\n");
    expect_failure(raised_by([] { record(); }), 75, u"OrvoSuite.Audit",
                   "/dev/full: the audit cannot be written (No space left on device)");
    EXPECT_THAT(log(), HasSubstr("lost: {"));
}

TEST(Journal, GetsOneDatagramOfFields) {
    const TempFolder folder;
    const auto path = folder.path() / "socket";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const int journal = socket(AF_UNIX, SOCK_DGRAM, 0);
    ASSERT_EQ(bind(journal, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    write_to_journal("orvo-audit", R"({"time":"…"})", path);
    char datagram[200];
    const auto size = recv(journal, datagram, sizeof datagram, MSG_DONTWAIT);
    close(journal);
    ASSERT_GT(size, 0);
    EXPECT_EQ(std::string(datagram, static_cast<std::size_t>(size)),
              "PRIORITY=6\nSYSLOG_IDENTIFIER=orvo-audit\nMESSAGE={\"time\":\"…\"}\n");
    EXPECT_THROW(write_to_journal("orvo-audit", "nobody listens", folder.path() / "other"),
                 std::system_error);
}

}  // namespace
}  // namespace audit
}  // namespace orvo
