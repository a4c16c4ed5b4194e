#include "suite/directory/entries/given_password.h"

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/values/values.h"
#include "suite/directory/entries/new_entry.h"
#include "suite/directory/policy/password_form.h"
#include "tests/platform/releases.h"
#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory {
namespace {

using testing::AllOf;
using testing::Each;
using testing::IsEmpty;
using testing::Not;

const Text password = u"secret-of-26-characters-ß!";

TEST(AGivenPassword, IsATextBytesOrAnArrayOfOne) {
    EXPECT_EQ(password_in(u"s\u00E9cret").reveal(),
              "s\xC3\xA9"
              "cret");
    EXPECT_EQ(password_in(Variant::bytes("secret")).reveal(), "secret");
    EXPECT_EQ(password_in(Values{u"secret"}).reveal(), "secret");
    EXPECT_EQ(password_in(Values{Variant::bytes("secret")}).reveal(), "secret");
    EXPECT_EQ(password_in(std::int32_t{4711}).reveal(), "4711");
    Values from_three(3, 1);
    from_three[3] = u"secret";
    EXPECT_EQ(password_in(from_three).reveal(), "secret");
}

TEST(AGivenPassword, IsEmptyWhereThereIsNone) {
    EXPECT_TRUE(password_in(Variant()).empty());
    EXPECT_TRUE(password_in(u"").empty());
    EXPECT_TRUE(password_in(Values()).empty());
    EXPECT_TRUE(password_in(Values{u""}).empty());
}

TEST(AGivenPassword, IsRefusedWhereItIsNotOneOrNobodysToUse) {
    EXPECT_EQ(failure_of([] { password_in(Values{u"a", u"b"}); }).number, 13);
    EXPECT_EQ(failure_of([] { password_in(Variant::null()); }).number, 94);
    EXPECT_EQ(
        failure_of([] { password_in(u"half \xD83D"); }).description,
        u"(21) The value does not have the attribute's syntax. A password cannot hold half of a "
        u"surrogate pair.");
    EXPECT_NE(failure_of([] { password_in(Text(u"a\0b", 3)); }).number, 0);
    EXPECT_NE(failure_of([] { password_in(Text(longest_password + 1, u'a')); }).number, 0);
}

TEST(AGivenPassword, InAnArrayIsReadWithoutACopyOfItsCharacters) {
    const Variant given = Values{password};
    const Releases releases;
    EXPECT_FALSE(password_in(given).empty());
    EXPECT_THAT(releases.as_long_as(password), AllOf(Not(IsEmpty()), Each(overwritten(password))));
}

TEST(AGivenPassword, AmongTheAttributesOfANewEntryIsOverwrittenInEveryCopy) {
    const auto attributes = make<DictionaryObject>();
    for (auto& [name, value] : {std::pair<Variant, Variant>{u"cn", u"jsmith"},
                                {u"userPassword", password},
                                {u"mail", Values{u"a@shop"}}}) {
        Variant key = name, item = value;
        call<&Dictionary::Add>(attributes, key, item);
    }
    const Object dictionary = attributes.object();
    const Releases releases;
    {
        const std::vector<GivenAttribute> given = given_attributes(dictionary);
        const NewEntry made(given, u"person", "cn", AttributeTypes());
        EXPECT_FALSE(made.password.empty());
    }
    EXPECT_THAT(releases.as_long_as(password), AllOf(Not(IsEmpty()), Each(overwritten(password))));
}

}  // namespace
}  // namespace orvo::directory
