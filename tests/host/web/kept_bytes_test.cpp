#include "host/web/sessions/kept_bytes.h"

#include <gtest/gtest.h>

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/app_server.h"
#include "platform/values/failure.h"
#include "platform/values/value_bytes.h"
#include "platform/values/values.h"

namespace orvo::web {
namespace {

// One of each type that a page can come by.
std::vector<Variant> all_kinds() {
    Values from_one(1, 2);
    from_one[1] = u"first";
    return {{},
            Variant::null(),
            Variant::missing(),
            std::int16_t{-7},
            70000,
            std::int64_t{1} << 40,
            2.5,
            true,
            false,
            Currency{-12345},
            Date{37623.75},
            u"",
            Text(u"a\0\xD800", 3),
            Variant::bytes(""),
            Variant::bytes(std::string("\0\xFF", 2)),
            Values(),
            from_one,
            Values{1, u"two", Values{Values{3.0}, Variant::null()}},
            Object()};
}

SessionData session_of(const std::vector<Variant>& all) {
    SessionData session{.timeout = std::chrono::minutes(7),
                        .form_token = std::string("t\0k", 3),
                        .public_id = u"12"};
    for (std::size_t i = 0; i < all.size(); ++i)
        session.values.put(u"Name" + decimal(static_cast<long long>(i)), all[i]);
    return session;
}

TEST(KeptBytes, OfASessionGiveItBackAsItWas) {
    const std::vector<Variant> all = all_kinds();
    const SessionData session = session_of(all);
    const auto back = try_session_of(bytes_of(session));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->timeout, session.timeout);
    EXPECT_EQ(back->form_token, session.form_token);
    EXPECT_EQ(back->public_id, session.public_id);
    EXPECT_EQ(back->values.names(), session.values.names());
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(back->values.value_at(i).kind(), all[i].kind()) << i;
        EXPECT_EQ(back->values.value_at(i), all[i]) << i;
    }
    EXPECT_EQ(bytes_of(*back), bytes_of(session));
}

TEST(KeptBytes, AreRefusedWhereAnythingIsMissingOrTooMuch) {
    const std::string bytes = bytes_of(session_of(all_kinds()));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(try_session_of(bytes.substr(0, size))) << size;
    EXPECT_FALSE(try_session_of(bytes + '\0'));
    EXPECT_FALSE(try_session_of('\2' + bytes.substr(1))) << "another version";
}

TEST(KeptBytes, HaveNoNameTwice) {
    NamedValues one, two;
    one.put(u"name", 1);
    two.put(u"NAME", 2);
    std::string twice = bytes_of(one);
    twice[1] = 2;
    twice += bytes_of(two).substr(2);
    EXPECT_FALSE(try_values_of(twice));
    two = {};
    two.put(u"other", 2);
    std::string both = bytes_of(one);
    both[1] = 2;
    both += bytes_of(two).substr(2);
    EXPECT_TRUE(try_values_of(both));
}

TEST(KeptBytes, OfArraysAreNoReasonToAllocateWhatHasNotCome) {
    std::string bytes(1, static_cast<char>(0x80 | 12));  // an array of values
    append_number(bytes, std::uint64_t{1} << 31);
    bytes += std::string(4, '\0');
    std::string_view rest = bytes;
    EXPECT_FALSE(try_take_value(rest));
}

TEST(KeptBytes, HoldNoObjectAndNoArraysWithoutEnd) {
    NamedValues values;
    values.put(u"x", Values{make<AppServerObject>().object()});
    EXPECT_THROW(bytes_of(values), Failure);
    Variant deep = 1;
    for (int i = 0; i < deepest_value; ++i) deep = Values{deep};
    std::string bytes;
    append_value(bytes, deep);
    std::string_view rest = bytes;
    EXPECT_EQ(try_take_value(rest), deep);
    EXPECT_THROW(append_value(bytes, Values{deep}), Failure);
}

}  // namespace
}  // namespace orvo::web
