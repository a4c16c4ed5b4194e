#include "suite/directory/embedded/store/entry_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "suite/directory/embedded/store/tables.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;

class TheFormOfAnEntry : public testing::Test {
protected:
    TheFormOfAnEntry() {
        database.execute("BEGIN");
        create_tables(database, schema);
    }

    TempFolder folder;
    Schema schema = sample_schema();
    Database database{folder.write("a", "")};
    AttributeNames names{database, schema};
};

TEST_F(TheFormOfAnEntry, IsReadAsItWasWritten) {
    const std::vector<Attribute> attributes = {
        {"cn", {"Ann", ""}}, {"OrvoRole", {"1", "2"}}, {"sn", {std::string(300, 'a')}}};
    EXPECT_EQ(decode(encode(attributes, names), names), attributes);
}

TEST_F(TheFormOfAnEntry, GivesTheWantedAttributesWithTheirOptions) {
    const std::string octets =
        encode({{"cn", {"Ann"}}, {"sn", {"Lee"}}, {"sn;lang-de", {"Lie"}}, {"o", {"Shop"}}}, names);
    EXPECT_THAT(decode(octets, names, names.of_types({"surname"})),
                ElementsAre(Attribute{"sn", {"Lee"}}, Attribute{"sn;lang-de", {"Lie"}}));
}

TEST_F(TheFormOfAnEntry, ThatIsDamagedIsNotReadPastItsEnd) {
    const std::string octets = encode({{"cn", {"Ann"}}, {"sn", {"Lee"}}}, names);
    for (std::size_t size = 0; size < octets.size(); ++size) {
        if (size == octets.size() / 2) continue;  // one attribute, and a whole one
        const std::string part = octets.substr(0, size);
        if (size == 0)
            EXPECT_TRUE(decode(part, names).empty());
        else
            EXPECT_NE(failure_of([&] { decode(part, names); }).number, 0) << size;
    }
    EXPECT_NE(failure_of([&] { decode("\x7F\x01\x00", names); }).number, 0);
    EXPECT_NE(failure_of([&] { decode(std::string(20, '\xFF'), names); }).number, 0);
}

}  // namespace
}  // namespace orvo::directory::embedded
