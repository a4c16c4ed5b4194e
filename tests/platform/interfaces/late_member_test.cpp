#include "platform/interfaces/late_member.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/interfaces/enumerator.h"
#include "tests/platform/interfaces/probe.h"

namespace orvo {
namespace {

using late::MemberKind;

class LateMember : public testing::Test {
protected:
    const Object probe = make<SwitchedProbe>().object();

    late::MemberId id(TextView name) { return late::try_member(probe, name).value(); }
    MemberKind kind(TextView name) { return late::try_kind_of(probe, id(name)).value(); }
};

TEST_F(LateMember, NamesAreFoundWithoutRegardToCase) {
    EXPECT_EQ(id(u"ADD"), id(u"add"));
    EXPECT_EQ(late::try_member(probe, u"Nothing at all"), std::nullopt);
}

TEST_F(LateMember, AMethodTellsThatItIsOneAndItsParameters) {
    EXPECT_EQ(kind(u"Add"), (MemberKind{.is_method = true, .parameters = 2, .required = 2}));
    EXPECT_EQ(kind(u"Join"), (MemberKind{.is_method = true, .parameters = 3, .required = 1}));
    EXPECT_EQ(kind(u"FailBare"), MemberKind{.is_method = true});
}

TEST_F(LateMember, APropertyTellsWhatCanBeDoneWithIt) {
    EXPECT_EQ(kind(u"Name"), (MemberKind{.is_readable = true, .is_writable = true}));
    EXPECT_EQ(kind(u"Counted"), MemberKind{.is_readable = true});
    EXPECT_EQ(
        kind(u"Item"),
        (MemberKind{.is_readable = true, .is_writable = true, .parameters = 1, .required = 1}));
}

TEST_F(LateMember, AMemberTellsWhetherItAlwaysAnswersAnObject) {
    const MemberKind answers_object{.is_readable = true, .answers_object = true};
    EXPECT_EQ(kind(u"Friend"), answers_object);
    EXPECT_EQ(kind(u"Nothing"), answers_object) << "of its type, whatever it answers today";
    EXPECT_FALSE(kind(u"Echo").answers_object) << "one that may answer anything";
}

TEST_F(LateMember, TheDefaultMemberHasANumber) {
    EXPECT_EQ(late::try_kind_of(probe, late::default_member), kind(u"Item"));
}

TEST_F(LateMember, AskingForAKindCallsNothing) {
    kind(u"Counted");
    EXPECT_EQ(late::get_member(probe, id(u"Counted")).to<std::int32_t>(), 0);
}

TEST_F(LateMember, AMemberThatIsNotThereCanDoNothing) {
    EXPECT_EQ(late::try_kind_of(probe, 4711), MemberKind{});
}

TEST_F(LateMember, AnObjectThatIsNoneOfTheHouseKeepsItsKindsToItself) {
    EXPECT_EQ(late::try_kind_of(make_enumerator({}), late::default_member), std::nullopt);
}

TEST_F(LateMember, IsCalledReadAndWrittenByNumber) {
    const std::array<Variant, 2> numbers{Variant(40), Variant(2)};
    EXPECT_EQ(late::call_member(probe, id(u"Add"), numbers).to<std::int32_t>(), 42);
    const std::array<Variant, 1> key{Variant(u"k")};
    late::put_member(probe, id(u"Item"), u"v", key);
    EXPECT_EQ(late::get_member(probe, id(u"Name")).to<Text>(), u"k=v");
    EXPECT_EQ(late::get_member(probe, late::default_member, key).to<Text>(), u"<k:k=v>");
}

TEST_F(LateMember, OfAnEmptyObjectIsRefused) {
    EXPECT_THROW(late::try_member({}, u"Name"), Failure);
    EXPECT_THROW(late::try_kind_of({}, 1), Failure);
    EXPECT_THROW(late::get_member({}, 1), Failure);
}

}  // namespace
}  // namespace orvo
