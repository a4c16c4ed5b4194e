#include "component/server/idl_spelling.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(IdlSpelling, ListsTheNamesThatTheBodyAlsoSpellsOtherwise) {
    EXPECT_EQ(idl_spelling({"IUser", "User", "Roles", "Mail"},
                           "HRESULT Find(BSTR* iUser); interface IUser { Roles(); Mail(user); }"),
              "    typedef [hidden] struct NameSpelling\n"
              "    {\n"
              "        long IUser;\n"
              "    } NameSpelling;\n\n");
}

TEST(IdlSpelling, KeepsTheFirstOfTwoNamesThatDifferInCaseOnly) {
    EXPECT_EQ(idl_spelling({"Name", "NAME"}, "Name NAME name"),
              "    typedef [hidden] struct NameSpelling\n"
              "    {\n"
              "        long Name;\n"
              "    } NameSpelling;\n\n");
}

TEST(IdlSpelling, IsNothingWhereEveryNameIsSpelledOneWay) {
    EXPECT_EQ(idl_spelling({"IUser", "User"}, "interface IUser { Users(username); }; IUser"), "");
}

}  // namespace
}  // namespace orvo
