#include "suite/directory/schema/object_classes.h"

#include <gmock/gmock.h>

namespace orvo::directory::ldap {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Names = std::vector<std::string>;

Names required(const Names& descriptions, const Names& classes) {
    return ObjectClasses::from_descriptions(descriptions).required(classes);
}

const Names person = {
    "( 2.5.6.0 NAME 'top' DESC 'top of all' ABSTRACT MUST objectClass )",
    "( 2.5.6.6 NAME 'person' SUP top STRUCTURAL MUST ( sn $ cn ) MAY ( userPassword $ seeAlso ) )",
    "( 1.2.3 NAME ( 'worker' 'labourer' ) SUP ( person $ insured ) MUST number )",
    "( 1.2.4 NAME 'insured' SUP top AUXILIARY MUST (policy$agent) )"};

TEST(ObjectClasses, RequireWhatTheyAndTheirSuperiorsSay) {
    EXPECT_THAT(required(person, {"person"}), ElementsAre("sn", "cn", "objectClass"));
    EXPECT_THAT(required(person, {"worker"}),
                ElementsAre("number", "sn", "cn", "policy", "agent", "objectClass"));
    EXPECT_THAT(required(person, {"top", "insured"}),
                ElementsAre("objectClass", "policy", "agent"));
}

TEST(ObjectClasses, GoByEveryNameAndTheNumberInAnyCase) {
    for (const char* name : {"WORKER", "Labourer", "1.2.3"})
        EXPECT_EQ(required(person, {name}), required(person, {"worker"}));
}

TEST(ObjectClasses, RequireNothingWhereTheyAreNotKnown) {
    EXPECT_THAT(required(person, {"robot"}), IsEmpty());
    EXPECT_THAT(required({}, {"person"}), IsEmpty());
    EXPECT_THAT(required(person, {}), IsEmpty());
    EXPECT_THAT(required({"( 1.1 NAME 'a' SUP nowhere MUST b )"}, {"a"}), ElementsAre("b"));
}

TEST(ObjectClasses, MayNameEachOtherAsTheirSuperiors) {
    const Names circle = {"( 1.1 NAME 'a' SUP b MUST x )", "( 1.2 NAME 'b' SUP a MUST y )"};
    EXPECT_THAT(required(circle, {"a"}), ElementsAre("x", "y"));
}

TEST(ObjectClasses, AreLeftOutWhereTheirDescriptionsCannotBeRead) {
    for (const char* unreadable :
         {"", "1.1 NAME 'a' MUST b", "(", "( )", "( 1.1 NAME 'a' MUST b", "( 1.1 NAME 'a MUST b )",
          "( 1.1 NAME ( 'a' MUST b )", "( 1.1 NAME 'a' MUST", "( ( 1.1 ) NAME 'a' MUST b )"})
        EXPECT_THAT(required({unreadable, person[0]}, {"a", "1.1", "top"}),
                    ElementsAre("objectClass"))
            << unreadable;
}

}  // namespace
}  // namespace orvo::directory::ldap
