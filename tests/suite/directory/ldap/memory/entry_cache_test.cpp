#include "suite/directory/ldap/memory/entry_cache.h"

#include <gmock/gmock.h>

#include <array>

#include "platform/values/values.h"
#include "suite/directory/ldap/memory/write_marks.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/manual_clock.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const AttributeTypes no_types;

CacheKey key(const std::string& entry, const std::string& user = "cn=service") {
    return {"ldap://dir01:389", user, entry, EntryKey(entry)};
}

KnownEntry known(const std::string& attribute, const std::string& value) {
    return {{{attribute, {value}}}, {attribute}, false};
}

class EntryCacheTest : public testing::Test {
protected:
    EntryCacheTest() { use(2, 60); }

    void use(std::int32_t entries, std::int32_t seconds) {
        cache_.configure(Values{u"Entries", u"TimeToLive"}, Values{entries, seconds});
    }
    void add(const CacheKey& key, KnownEntry entry) {
        cache_.add(key, std::move(entry), clock_.now(), writes_.mark(key.mark));
    }
    // The value of an attribute; "absent" where it is known not to be there, "?" where nothing is
    // known.
    std::string value(const CacheKey& key, const std::string& attribute) {
        const auto entry = cache_.find(key).entry;
        if (!entry) return "?";
        const auto values = entry->try_values(attribute, no_types);
        if (!values) return "?";
        return values->empty() ? "absent" : values->front();
    }

    ManualClock clock_;
    WriteMarks writes_;
    EntryCache cache_{clock_, writes_};
};

TEST_F(EntryCacheTest, WithoutRoomKeepsForAQuarterOfASecond) {
    use(0, 60);
    EXPECT_FALSE(cache_.is_on());
    add(key("cn=a"), known("sn", "A"));
    clock_.advance(249ms);
    EXPECT_EQ(value(key("cn=a"), "sn"), "A");
    clock_.advance(1ms);
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
}

TEST_F(EntryCacheTest, WithoutRoomForgetsWhatThisProcessWroteToAtOnce) {
    use(0, 60);
    add(key("cn=a"), known("sn", "A"));
    writes_.note(EntryKey("cn=a"));
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
}

TEST_F(EntryCacheTest, KnowsWhatItWasTold) {
    add(key("cn=a"), {{{"sn", {"A"}}}, {"SN", "mail"}, false});
    EXPECT_EQ(value(key("cn=a"), "Sn"), "A");
    EXPECT_EQ(value(key("cn=a"), "MAIL"), "absent");
    EXPECT_EQ(value(key("cn=a"), "c"), "?");
    EXPECT_EQ(value(key("cn=b"), "sn"), "?");
}

TEST_F(EntryCacheTest, TellsServersUsersAndEntriesApart) {
    use(10, 60);
    add(key("cn=a"), known("sn", "A"));
    EXPECT_FALSE(cache_.find(key("cn=a", "cn=other")).entry);
    EXPECT_FALSE(cache_.find({"ldap://dir02:389", "cn=service", "cn=a", EntryKey("cn=a")}).entry);
    EXPECT_FALSE(cache_.find({"ldap://dir01:389", "cn=servicecn", "=a", EntryKey("cn=a")}).entry);
    EXPECT_FALSE(cache_.find({"ldap://dir01:389c", "n=service", "cn=a", EntryKey("cn=a")}).entry);
}

TEST_F(EntryCacheTest, AddsWhatIsReadLaterToWhatItKnows) {
    add(key("cn=a"), {{{"sn", {"A"}}}, {}, true});
    add(key("cn=a"), known("entryUUID", "1"));
    add(key("cn=a"), known("SN", "B"));
    EXPECT_EQ(value(key("cn=a"), "entryUUID"), "1");
    EXPECT_EQ(value(key("cn=a"), "sn"), "B");
    EXPECT_TRUE(cache_.find(key("cn=a")).entry->is_whole);
}

TEST_F(EntryCacheTest, ForgetsWhatThisProcessWroteTo) {
    add(key("cn=a"), known("sn", "A"));
    add(key("cn=b"), known("sn", "B"));
    writes_.note(EntryKey("cn=a"));
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
    EXPECT_EQ(value(key("cn=b"), "sn"), "B");
}

TEST_F(EntryCacheTest, DoesNotFindWhatWasReadWhileThisProcessWrote) {
    const std::uint64_t before = writes_.mark(EntryKey("cn=a"));
    writes_.note(EntryKey("cn=a"));
    cache_.add(key("cn=a"), known("sn", "A"), clock_.now(), before);
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
}

TEST_F(EntryCacheTest, ForgetsWhatIsTooOldAlsoWhereOnlyAPartIs) {
    use(2, 1);
    const auto nearly_a_second_ago = clock_.now() - 900ms;
    cache_.add(key("cn=a"), known("sn", "A"), nearly_a_second_ago, writes_.mark(EntryKey("cn=a")));
    add(key("cn=a"), known("mail", "a@shop.example"));
    EXPECT_EQ(value(key("cn=a"), "sn"), "A");
    clock_.advance(150ms);
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
    EXPECT_EQ(value(key("cn=a"), "mail"), "?");
}

TEST_F(EntryCacheTest, KeepsThoseThatWereUsedLast) {
    add(key("cn=a"), known("sn", "A"));
    add(key("cn=b"), known("sn", "B"));
    EXPECT_EQ(value(key("cn=a"), "sn"), "A");
    add(key("cn=c"), known("sn", "C"));
    EXPECT_EQ(value(key("cn=b"), "sn"), "?");
    EXPECT_EQ(value(key("cn=a"), "sn"), "A");
    EXPECT_EQ(value(key("cn=c"), "sn"), "C");
    use(1, 60);
    EXPECT_EQ(value(key("cn=a"), "sn"), "?");
    EXPECT_EQ(value(key("cn=c"), "sn"), "C");
    use(0, 60);
    EXPECT_EQ(value(key("cn=c"), "sn"), "?");
}

TEST_F(EntryCacheTest, NeverHoldsAPassword) {
    add(key("cn=a"), {{{"userPassword", {"{SSHA}x"}},
                       {"sn", {"A"}},
                       {"2.5.4.35", {"{SSHA}x"}},
                       {"USERPASSWORD;lang-de", {"{SSHA}x"}},
                       {"orvoNTpassword", {"x"}},
                       {"OrvoAttribute:58;lang-de", {"x"}}},
                      {"userPassword", "OrvoNTPassword", "sn"},
                      true});
    const auto entry = cache_.find(key("cn=a")).entry;
    ASSERT_TRUE(entry);
    ASSERT_EQ(entry->attributes.size(), 1u);
    EXPECT_EQ(entry->attributes[0].name, "sn");
    EXPECT_THAT(entry->asked, ElementsAre("sn")) << "it is not known to be absent either";
}

TEST_F(EntryCacheTest, DoesNotTakeForAbsentWhatAServerSendsOnlyToThoseWhoNameIt) {
    const auto types = AttributeTypes::from_descriptions(std::array<std::string, 3>{
        "( 2.5.4.4 NAME 'sn' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 1.1.1 NAME 'constructed' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 NO-USER-MODIFICATION )",
        "( 1.1.2 NAME 'kept' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 USAGE directoryOperation )"});
    const KnownEntry whole{{}, {}, true};
    EXPECT_EQ(whole.try_values("sn", types), std::vector<std::string>());
    EXPECT_EQ(whole.try_values("constructed", types), std::nullopt);
    EXPECT_EQ(whole.try_values("kept", types), std::nullopt);
    const KnownEntry asked{{{"kept", {"k"}}}, {"constructed"}, true};
    EXPECT_EQ(asked.try_values("constructed", types), std::vector<std::string>());
    EXPECT_EQ(asked.try_values("kept", types), std::vector<std::string>{"k"});
}

TEST_F(EntryCacheTest, RefusesWhatItDoesNotKnowOrCannotUse) {
    struct Case {
        Variant names, values;
        const char16_t* why;
    };
    const Case cases[] = {
        {Values{u"Size"}, Values{1},
         u"There is no setting 'Size'. There are: Entries, TimeToLive."},
        {Values{u"Entries"}, Values{-1},
         u"The setting 'Entries' has to be a whole number from 0 to 1000000."},
        {Values{u"Entries", u"TimeToLive"}, Values{1, 0},
         u"The setting 'TimeToLive' has to be a whole number from 1 to 86400."},
        {Values{u"Entries", u"entries"}, Values{1, 1}, u"The setting 'Entries' is given twice."},
        {u"Entries", 1, u"The names of the settings are not an array."},
    };
    for (const Case& row : cases) {
        const Failure failure = failure_of([&] { cache_.configure(row.names, row.values); });
        EXPECT_EQ(failure.number, error_number(0x8007203F));
        EXPECT_EQ(failure.description,
                  u"(89) A setting or argument is not valid. " + Text(row.why));
    }
    EXPECT_EQ(cache_.settings().entries, 2u);
    EXPECT_EQ(cache_.settings().time_to_live, 60s);
}

}  // namespace
}  // namespace orvo::directory::ldap
