#include "suite/directory/embedded/store/index_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "suite/directory/embedded/store/tables.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TheIndexRows : public testing::Test {
protected:
    TheIndexRows() {
        database.execute("BEGIN");
        create_tables(database, schema);
    }

    std::vector<std::string> of(const Attribute& attribute) {
        std::vector<std::string> rows;
        for (const IndexedValue& row : indexed_values({attribute}, names))
            rows.push_back(names[row.attribute].name + "=" + row.key);
        return rows;
    }

    TempFolder folder;
    Schema schema = sample_schema();
    Database database{folder.write("a", "")};
    AttributeNames names{database, schema};
};

TEST_F(TheIndexRows, AreKeysOfTheEqualityRuleEachOnce) {
    EXPECT_THAT(of({"surname", {"Lee", "LEE ", "Ann"}}), ElementsAre("sn= ann ", "sn= lee "));
    EXPECT_THAT(of({"sn;lang-de", {"Lee"}}), ElementsAre("sn= lee "));
    EXPECT_THAT(of({"OrvoRole", {"07"}}), ElementsAre("OrvoRole=20000000017"));
}

TEST_F(TheIndexRows, HaveAValueThatItsRuleCannotReadForPresence) {
    EXPECT_THAT(of({"OrvoRole", {"seven"}}), ElementsAre("OrvoRole="));
}

TEST_F(TheIndexRows, AreCutWhereAKeyIsLong) {
    EXPECT_THAT(of({"sn", {std::string(1000, 'a')}}),
                ElementsAre("sn= " + std::string(longest_index_key - 1, 'a')));
}

TEST_F(TheIndexRows, LeaveOutPasswordsOperationalAttributesAndWhatHasNoEqualityRule) {
    EXPECT_THAT(of({"userPassword", {"{SSHA}x"}}), IsEmpty());
    EXPECT_THAT(of({"createTimestamp", {"20260101000000Z"}}), IsEmpty());
    EXPECT_THAT(of({"facsimileTelephoneNumber", {"1"}}), IsEmpty());
    EXPECT_THAT(of({"unheardOf", {"1"}}), IsEmpty());
}

TEST(TheKeyAbove, EndsWhereTheFirstPartOfTheNameEnds) {
    EXPECT_EQ(key_above(dn("cn=a,o=b").key()), "o=b");
    EXPECT_EQ(key_above(dn("cn=a\\,b\\\\,o=b").key()), "o=b");
    EXPECT_EQ(key_above(dn("cn=a+sn=b,ou=c,o=d").key()), "ou=c,o=d");
    EXPECT_EQ(key_above(dn("o=b").key()), "");
}

}  // namespace
}  // namespace orvo::directory::embedded
