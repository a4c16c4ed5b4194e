#include "suite/directory/entries/failure_note.h"

#include <gmock/gmock.h>

#include "component/common/log_contract.h"
#include "platform/interfaces/call.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/context/context_scope.h"
#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapDirectory.h"
#include "tests/support/environment.h"
#include "tests/support/recording/recording_context.h"
#include "tests/support/recording/recording_log.h"

namespace orvo {
namespace directory::ldap {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LogEntry note(const char* source, const char* message) {
    return {"LogMessage", source, message, 1};
}

class FailureNote : public testing::Test {
protected:
    static Failure sample() { return {error_number(0x8007052E), u"Some.Source", u"(49) Wrong."}; }

    RecordingLog log_;
    const Ref<DirectoryModule> module_ = make<LdapDirectory>();

private:
    Environment level_{"ORVO_LOG_LEVEL", std::nullopt};
};

TEST_F(FailureNote, TellsOperationEntryNumberAndDescriptionUnderTheFailuresSource) {
    note_failure("Bind", "cn=jsmith,ou=Users,o=Shop", sample());
    EXPECT_THAT(log_.take(),
                ElementsAre(note("Some.Source",
                                 "Bind of 'cn=jsmith,ou=Users,o=Shop' failed, 0x8007052E: "
                                 "(49) Wrong.")));
    EXPECT_EQ(log_.alive, 0);
}

TEST_F(FailureNote, OfALongNameTellsTheBeginning) {
    note_failure("Bind", std::string(300, 'x'), sample());
    EXPECT_EQ(log_.take().at(0).message,
              "Bind of '" + std::string(200, 'x') + "...' failed, 0x8007052E: (49) Wrong.");
}

TEST_F(FailureNote, IsNotPutTogetherWhereNotesAreLeftOut) {
    const Environment errors_only("ORVO_LOG_LEVEL", "error");
    note_failure("Bind", "cn=jsmith", sample());
    EXPECT_EQ(log_.created, 0);
}

TEST_F(FailureNote, IsDroppedWhereTheLogFailsOrIsMissing) {
    log_.throws = true;
    note_failure("Bind", "", sample());
    EXPECT_EQ(log_.take().size(), 1u) << "the log was asked";
    log_.remove();
    note_failure("Bind", "", sample());
}

TEST_F(FailureNote, IsWrittenOnceByEachObjectThatRefuses) {
    Text name = u"cn", filter = u"(cn=*)";
    Variant none = Values(), path = u"cn=jsmith", password = u"never-told";
    const auto entry = call<&DirectoryModule::CreateEntry>(module_);
    const auto search = call<&DirectoryModule::CreateSearch>(module_);
    const auto validator = call<&DirectoryModule::CreateValidator>(module_);
    EXPECT_THROW(call<&DirectoryEntry::GetValues>(entry, name), Failure);
    EXPECT_THROW(call<&DirectorySearch::Execute>(search, filter, none, 1), Failure);
    EXPECT_THROW(call<&DirectoryValidator::Validate>(validator, path, password), Failure);
    const std::string not_set = " failed, 0x5B: Object variable or With block variable not set";
    EXPECT_THAT(log_.take(),
                ElementsAre(note("OrvoDirectory.Ldap", ("GetValues" + not_set).c_str()),
                            note("OrvoDirectory.Ldap", ("Execute" + not_set).c_str()),
                            note("OrvoDirectory.Ldap", ("Validate" + not_set).c_str())));
}

// A log that keeps its entries in the directory, say.
class WorkingLog final : public Log {
public:
    Variant LogMessage(Text&, Text&, std::int32_t&) override {
        ++entries;
        note_failure("Bind", "cn=log", Failure(5, u"s", u"the log's own"));
        return {};
    }
    Variant LogMessageAlternate(Text&, Text&, std::int32_t&) override { return {}; }

    static inline int entries = 0;
};

// As a web host's Request answers.
class IdentifiedRequest {
public:
    Text ServerVariables(const Text& name) { return name == u"REQUEST_ID" ? u"yN1" : u""; }
};

}  // namespace
}  // namespace directory::ldap

template <>
inline constexpr auto table_of<directory::ldap::IdentifiedRequest> =
    describe<directory::ldap::IdentifiedRequest>(
        "IIdentifiedRequest", "7e57ab1e-0000-4000-8000-0000000000f4",
        get<&directory::ldap::IdentifiedRequest::ServerVariables>("ServerVariables", "name"));
template <>
inline constexpr auto class_of<directory::ldap::IdentifiedRequest> =
    describe_class<directory::ldap::IdentifiedRequest>("Test.IdentifiedRequest");
template <>
inline constexpr auto class_of<directory::ldap::WorkingLog> =
    describe_class<Log>("Quendra.Log", "7e57ab1e-0000-4000-8000-0000000000f3");

namespace directory::ldap {
namespace {

TEST_F(FailureNote, NamesTheRequestThatThePageAnswers) {
    const LocalClass app_server = local_class<AppServerObject>();
    const ContextScope page({{u"Request", make<IdentifiedRequest>().object()}});
    note_failure("Bind", "cn=jsmith", sample());
    EXPECT_EQ(log_.take().at(0).message,
              "Bind of 'cn=jsmith' failed (request yN1), 0x8007052E: (49) Wrong.");
}

TEST_F(FailureNote, AsksNoContextWhereNotesAreLeftOut) {
    Journal journal;
    const RecordingContext context(journal);
    const Environment errors_only("ORVO_LOG_LEVEL", "error");
    note_failure("Bind", "cn=jsmith", sample());
    EXPECT_THAT(journal.take(), IsEmpty());
}

TEST_F(FailureNote, OfWhatTheWritingOfANoteCausesIsNotWritten) {
    log_.remove();
    WorkingLog::entries = 0;
    const LocalClass working = local_class<WorkingLog>();
    note_failure("Bind", "cn=jsmith", sample());
    EXPECT_EQ(WorkingLog::entries, 1);
    note_failure("Bind", "cn=jsmith", sample());
    EXPECT_EQ(WorkingLog::entries, 2);
}

}  // namespace
}  // namespace directory::ldap
}  // namespace orvo
