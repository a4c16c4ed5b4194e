#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

class DirectoryTest : public ProviderTest {
protected:
    DirectoryTest() : ProviderTest(Shared()) {}
};
FOR_EVERY_DIRECTORY(DirectoryTest);

TEST_P(DirectoryTest, MakesObjectsThatWorkThroughTheirSlots) {
    const Entry entry = new_entry();
    bind(entry, service(), u"cn=djansen", Values{u"sn"});
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
    EXPECT_EQ(checked(u"cn=djansen,ou=Users,o=Shop", u"shop-sample"), 0);
    const Search search = new_search();
    connect(search, service());
    EXPECT_THAT(first_column(execute(search, u"(sn=Smith)", Values{u"cn"}, 2)),
                ElementsAre("Ann \"Andy\" <Smith>; =", "jsmith"));
}

TEST_P(DirectoryTest, MakesANewObjectEachTime) {
    const Entry one = new_entry(), other = new_entry();
    EXPECT_TRUE(one);
    EXPECT_FALSE(one == other);
    EXPECT_TRUE(call<&DirectoryModule::CreateSchema>(module_));
}

TEST_P(DirectoryTest, NamesItselfAsTheSourceOfItsFailures) {
    const Failure failure = failure_of([&] { values(new_entry(), u"sn"); });
    EXPECT_EQ(failure.number, 91);
    EXPECT_EQ(to_utf8(failure.source), shop_.own(differences::source));
}

}  // namespace
}  // namespace orvo::directory
