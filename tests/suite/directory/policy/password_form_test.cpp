#include "suite/directory/policy/password_form.h"

#include <gtest/gtest.h>

#include <string>

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

TEST(PasswordForm, LetsEveryOrdinaryPasswordBe) {
    for (const std::string& password :
         {std::string(), std::string(" "), std::string("gr\xC3\xBC\xC3\x9F"),
          std::string("\xFF\x01"), std::string(65'536, 'x')})
        EXPECT_FALSE(unusable(Secret::of_bytes(password))) << password.size();
}

TEST(PasswordForm, RefusesANulWhereverItStands) {
    for (const std::string& password :
         {std::string("\0", 1), std::string("\0a", 2), std::string("a\0", 2)})
        EXPECT_EQ(unusable(Secret::of_bytes(password))->code, result_code::invalid_syntax);
}

TEST(PasswordForm, RefusesWhatIsLongerThanAnyPassword) {
    const auto why = unusable(Secret::of_bytes(std::string(65'537, 'x')));
    ASSERT_TRUE(why);
    EXPECT_EQ(why->code, result_code::constraint_violation);
    EXPECT_EQ(why->sentence, "A password cannot have more than 65536 bytes.");
}

}  // namespace
}  // namespace orvo::directory
