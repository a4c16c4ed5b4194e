// The throttle in front of checks in a directory that finds a user by several names.

#include <gmock/gmock.h>

#include "platform/module/local_class.h"
#include "suite/throttle/suite_throttle.h"
#include "tests/suite/directory/ldap/provider/mapped_test.h"
#include "tests/support/environment.h"

namespace orvo::directory::ldap {
namespace {

using testing::ElementsAre;

class MappedThrottle : public MappedTest {
protected:
    MappedThrottle() {
        use("[DIRECTORY.MAP]\nUserSearch = sub\nLoginAttributes = uid, mail\ncn = uid\n"
            "[THROTTLE]\nOn = yes\nAttempts = 3\nLongestDelay = 0\n");
        for (const char* name :
             {"djansen", "dirk.jansen@company.example", "nobody", "no.body@company.example"})
            throttle::SuiteThrottle().Clear(path_of(name));
        throttle::SuiteThrottle().Clear(from_utf8(dn("djansen", "Warehouse")));
    }
    std::vector<std::int32_t> guesses(const std::string& name, int count) {
        std::vector<std::int32_t> numbers;
        for (int i = 0; i < count; ++i) numbers.push_back(checked(name, "guessed"));
        return numbers;
    }

    const Environment site_{"ORVO_SITE_CONFIG", (folder_.path() / "site.ini").string()};
    const LocalClass throttle_class_ = local_class<throttle::SuiteThrottle>();
};

TEST_F(MappedThrottle, AUserHasOneBudgetWhateverTheName) {
    EXPECT_EQ(checked("djansen", "guessed"), -1);
    EXPECT_EQ(checked("DJansen", "guessed"), -1);
    EXPECT_EQ(checked("dirk.jansen@company.example", "guessed"), -1);
    const long before = binds();
    EXPECT_EQ(checked("dirk.jansen@company.example"), -1) << "which is not told from a wrong one";
    EXPECT_EQ(checked("djansen"), -1);
    EXPECT_EQ(checked("djansen"), -5);
    EXPECT_EQ(binds() - before, 0);
    EXPECT_EQ(checked("jsmith"), 0);
}

TEST_F(MappedThrottle, WhoeverIsRefusedLearnsNoOtherNamesAndAsksTheDirectoryNothing) {
    EXPECT_THAT(guesses("djansen", 4), ElementsAre(-1, -1, -1, -5));
    EXPECT_THAT(guesses("dirk.jansen@company.example", 4), ElementsAre(-1, -1, -1, -5));
    EXPECT_THAT(guesses("nobody", 4), ElementsAre(-1, -1, -1, -5));
    EXPECT_THAT(guesses("no.body@company.example", 4), ElementsAre(-1, -1, -1, -5));
    clock_.advance(std::chrono::minutes(1));
    searches();
    const long before = searches();
    for (const char* name : {"djansen", "dirk.jansen@company.example", "nobody"})
        EXPECT_EQ(checked(name), -5);
    EXPECT_EQ(searches() - before, 0);
}

TEST_F(MappedThrottle, ARightPasswordEndsTheWrongOnesByAllNames) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(checked("djansen", "guessed"), -1);
        EXPECT_EQ(checked("dirk.jansen@company.example", "guessed"), -1);
        EXPECT_EQ(checked("djansen"), 0);
        EXPECT_EQ(checked("dirk.jansen@company.example"), 0);
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
