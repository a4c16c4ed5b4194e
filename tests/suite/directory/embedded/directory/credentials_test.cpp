#include "suite/directory/embedded/directory/credentials.h"

#include <gtest/gtest.h>

#include <string>

namespace orvo::directory::embedded {
namespace {

Secret secret(const std::string& text) { return Secret::of_bytes(text); }

TEST(CredentialSet, KnowsAPasswordForTheHashThatItWasRightFor) {
    CredentialSet set;
    const CredentialsRef added = set.add("cn=a", secret("right"), "hash 1");
    EXPECT_EQ(set.find("cn=a", secret("right"), "hash 1"), added);
    EXPECT_FALSE(set.find("cn=a", secret("right"), "hash 2"));
    EXPECT_FALSE(set.find("cn=a", secret("wrong"), "hash 1"));
    EXPECT_FALSE(set.find("cn=b", secret("right"), "hash 1"));
    EXPECT_TRUE(set.is_current(*added, "hash 1"));
    EXPECT_FALSE(set.is_current(*added, "hash 2"));
}

TEST(CredentialSet, WhoComesAgainSharesWhatIsThere) {
    CredentialSet set;
    EXPECT_EQ(set.add("cn=a", secret("right"), "hash"), set.add("cn=a", secret("right"), "hash"));
}

TEST(CredentialSet, AUsersOwnChangeTakesThoseAlongWhoHadTheFormerPassword) {
    CredentialSet set;
    const CredentialsRef own = set.add("cn=a", secret("one"), "hash 1");
    const CredentialsRef others = set.add("cn=b", secret("one"), "hash 1");
    {
        HashChange change(set, "cn=a", "hash 1", "hash 2");
        EXPECT_TRUE(set.is_current(*own, "hash 1"));
        EXPECT_TRUE(set.is_current(*own, "hash 2"));
        EXPECT_FALSE(set.is_current(*others, "hash 2"));
        change.done(secret("two"));
    }
    EXPECT_TRUE(set.is_current(*own, "hash 2"));
    EXPECT_EQ(set.find("cn=a", secret("two"), "hash 2"), own);
    EXPECT_FALSE(set.find("cn=a", secret("one"), "hash 1"));
    EXPECT_TRUE(set.is_current(*others, "hash 1"));
}

TEST(CredentialSet, AChangeThatIsNotDoneLeavesAllAsTheyAre) {
    CredentialSet set;
    const CredentialsRef own = set.add("cn=a", secret("one"), "hash 1");
    { const HashChange change(set, "cn=a", "hash 1", "hash 2"); }
    EXPECT_TRUE(set.is_current(*own, "hash 1"));
    EXPECT_FALSE(set.is_current(*own, "hash 2"));
}

TEST(CredentialSet, WhoHasProvenAPasswordGoesOnWhereItIsProvenForAnotherHash) {
    CredentialSet set;
    const CredentialsRef own = set.add("cn=a", secret("one"), "hash 1");
    EXPECT_EQ(set.add("cn=a", secret("one"), "hash 2"), own);
    EXPECT_TRUE(set.is_current(*own, "hash 2"));
}

TEST(CredentialSet, KeepsWhatIsInUseHoweverManyCome) {
    CredentialSet set;
    const CredentialsRef kept = set.add("cn=kept", secret("right"), "hash");
    for (int user = 0; user < 5000; ++user)
        set.add("cn=" + std::to_string(user), secret("right"), "hash");
    EXPECT_EQ(set.find("cn=kept", secret("right"), "hash"), kept);
    EXPECT_FALSE(set.find("cn=0", secret("right"), "hash"));
}

}  // namespace
}  // namespace orvo::directory::embedded
