// Values, texts, objects and failures of the C++ client.

#include <gmock/gmock.h>
#include <orvo/record_set.h>

#include <limits>
#include <ranges>
#include <sstream>

#include "tests/client/installed_modules.h"

namespace {

using orvo::Value;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <class Call>
orvo::Error error_of(Call call) {
    try {
        call();
    } catch (const orvo::Error& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was raised";
    return {0, {}, {}};
}

TEST(ClientText, CrossesBothWaysAndNeverBreaks) {
    for (const char* text : {"", "a", "M\xC3\xBCller", "\xE2\x82\xAC", "\xF0\x9D\x84\x9E!"})
        EXPECT_EQ(orvo::to_utf8(orvo::to_utf16(text)), text);
    EXPECT_EQ(orvo::to_utf16("\xF0\x9D\x84\x9E"), u"\xD834\xDD1E");
    const std::string nul("a\0b", 3);
    EXPECT_EQ(orvo::to_utf8(orvo::to_utf16(nul)), nul);
    // An encoding that is too long, half a character, a surrogate, a point that is none.
    EXPECT_EQ(orvo::to_utf16("\xC0\x80"), u"\xFFFD\xFFFD");
    EXPECT_EQ(orvo::to_utf16("x\xE2\x82"), u"x\xFFFD\xFFFD");
    EXPECT_EQ(orvo::to_utf16("\xED\xA0\x80"), u"\xFFFD\xFFFD\xFFFD");
    EXPECT_EQ(orvo::to_utf16("\xF4\x90\x80\x80").size(), 4u);
    EXPECT_EQ(orvo::to_utf8(u"\xD834x\xDD1E"), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST(ClientValue, ConvertsByAutomationsRules) {
    EXPECT_EQ(Value(42).to<std::string>(), "42");
    EXPECT_EQ(Value("42").to<std::int32_t>(), 42);
    EXPECT_EQ(Value(2.5).to<std::int16_t>(), 2);
    EXPECT_EQ(Value(true).to<std::int32_t>(), -1);
    EXPECT_EQ(Value(std::int64_t(1) << 40).to<std::int64_t>(), std::int64_t(1) << 40);
    EXPECT_EQ(Value(u"wide").to<std::u16string>(), u"wide");
    EXPECT_EQ(Value("12.5").to<orvo::Currency>(), orvo::Currency::of(12.5));
    EXPECT_EQ(orvo::Currency::of(-0.1).ten_thousandths, -1000);
    EXPECT_THROW(orvo::Currency::of(1e15), std::out_of_range);
    EXPECT_THROW(orvo::Currency::of(std::numeric_limits<double>::quiet_NaN()), std::out_of_range);
    EXPECT_EQ(error_of([] { Value("abc").to<std::int32_t>(); }).number(),
              static_cast<std::int32_t>(0x80020005));
}

TEST(ClientText, OfANullPointerIsRefused) {
    const char* const unset = nullptr;
    EXPECT_THROW(orvo::Text{unset}, std::invalid_argument);
    EXPECT_THROW(Value{static_cast<const char16_t*>(nullptr)}, std::invalid_argument);
}

TEST(ClientValue, OfAnotherTypeIsTheFailureOfItsConversionAlone) {
    orvo::abi::IUnknown* other = nullptr;
    ASSERT_EQ(orvo::abi::CreateErrorInfo(&other), orvo::abi::s_ok);
    orvo::abi::call_slot<orvo::abi::HRESULT, const char16_t*>(
        other, orvo::abi::slot_error_set_description, u"of another call");
    orvo::abi::IUnknown* info = nullptr;
    orvo::abi::query_interface(other, orvo::abi::iid_error_info, reinterpret_cast<void**>(&info));
    orvo::abi::SetErrorInfo(0, info);
    EXPECT_STREQ(error_of([] { Value("abc").to<std::int32_t>(); }).what(),
                 "the value is not of the type that is needed (0x80020005)");
    EXPECT_STREQ(error_of([] { Value(100000).to<std::int16_t>(); }).what(),
                 "the value is too large for its type (0x8002000A)");
    orvo::abi::SetErrorInfo(0, nullptr);
    orvo::abi::release(info);
    orvo::abi::release(other);
}

TEST(ClientValue, OfNothingIsTheEmptyTextAndNoOptional) {
    for (const Value& nothing : {Value(), Value::null()}) {
        EXPECT_EQ(nothing.to<std::string>(), "");
        EXPECT_EQ(nothing.to<std::optional<std::string>>(), std::nullopt);
        EXPECT_THAT(nothing.to<std::vector<std::string>>(), IsEmpty());
        EXPECT_FALSE(nothing.to<orvo::Object>());
    }
    EXPECT_EQ(Value("x").to<std::optional<std::string>>(), "x");
    EXPECT_TRUE(Value(std::optional<std::int32_t>()).is_empty());
    EXPECT_EQ(Value(std::optional<std::u16string>(u"y")).to<std::string>(), "y");
    std::ostringstream out;
    out << Value() << Value(7);
    EXPECT_EQ(out.str(), "7");
}

TEST(ClientValue, HoldsArrays) {
    const Value roles(std::vector<std::int32_t>{2, 24});
    EXPECT_TRUE(roles.is_array());
    EXPECT_THAT(roles.to<std::vector<std::string>>(), ElementsAre("2", "24"));
    const Value copy = roles;
    EXPECT_THAT(copy.to<std::vector<std::int32_t>>(), ElementsAre(2, 24));
    EXPECT_THAT(Value("one").to<std::vector<std::string>>(), ElementsAre("one"));
    const std::vector<std::uint8_t> bytes{0, 255, 7};
    EXPECT_EQ(Value(bytes).to<std::vector<std::uint8_t>>(), bytes);
    EXPECT_THAT(Value(std::vector<std::uint8_t>{}).to<std::vector<std::uint8_t>>(), IsEmpty());
    EXPECT_THAT(Value(std::vector<std::string>{}).to<std::vector<std::string>>(), IsEmpty());
}

TEST(ClientDate, IsALocalTimeOnEitherSideOfItsFirstDay) {
    using namespace std::chrono;
    const auto noon = local_days(2026y / November / 22) + 12h;
    EXPECT_EQ(orvo::Date(noon).days, 46348.5);
    EXPECT_EQ(orvo::Date(noon).time(), noon);
    const auto early = local_days(1899y / December / 29) + 6h;
    EXPECT_EQ(orvo::Date(early).days, -1.25);
    EXPECT_EQ(orvo::Date(early).time(), early);
    EXPECT_EQ(Value(orvo::Date(noon)).to<orvo::Date>().time(), noon);
}

class ClientObject : public InstalledModules {
protected:
    // Three rows, user0 to user2, aged 20 to 22; it stands on the first.
    static orvo::RecordSet people() {
        orvo::RecordSet people{orvo::Object("ADODB.Recordset")};
        const auto fields = people.get("Fields").to<orvo::Object>();
        fields.call("Append", "cn", 202, 50);
        fields.call("Append", "age", 3);
        people.call("Open");
        for (int i = 0; i < 3; ++i) {
            people.call("AddNew", std::vector<std::string>{"cn", "age"},
                        std::vector<Value>{"user" + std::to_string(i), 20 + i});
            people.call("Update");
        }
        people.call("MoveFirst");
        return people;
    }
};

TEST_F(ClientObject, IsMadeByItsProgidAndCalledByName) {
    const orvo::Object words("Scripting.Dictionary");
    words.put("CompareMode", 1);
    words.call("Add", "one", 1);
    words.call("add", u"TWO", "zwei");
    EXPECT_EQ(words.get("Count").to<int>(), 2);
    EXPECT_EQ(words.get("Item", "two").to<std::string>(), "zwei");
    const orvo::Object same = words;
    EXPECT_EQ(same, words);
    same.call("RemoveAll");
    EXPECT_EQ(words.get("Count").to<int>(), 0);
    words.call("Add", "itself", words);
    EXPECT_EQ(words.get("Item", "itself").to<orvo::Object>(), words);
    words.call("RemoveAll");
}

TEST_F(ClientObject, TellsWhatFails) {
    const orvo::Error unknown = error_of([] { orvo::Object("No.Such"); });
    EXPECT_EQ(unknown.number(), static_cast<std::int32_t>(0x800401F3));
    EXPECT_THAT(unknown.what(), HasSubstr("(0x800401F3)"));
    const orvo::Object words("Scripting.Dictionary");
    words.call("Add", "one", 1);
    const orvo::Error twice = error_of([&] { words.call("Add", "one", 1); });
    EXPECT_EQ(twice.number(), static_cast<std::int32_t>(0x800A01C9));
    EXPECT_EQ(twice.description(),
              "This key is already associated with an element of this collection");
    EXPECT_EQ(error_of([&] { words.get("Nowhere"); }).number(),
              static_cast<std::int32_t>(0x800A01B6));
    EXPECT_EQ(error_of([] { orvo::Object().get("Count"); }).number(),
              static_cast<std::int32_t>(0x800A005B));
}

TEST_F(ClientObject, ARecordSetIsARangeOfRows) {
    const orvo::RecordSet people = this->people();
    std::string shown;
    for (const orvo::Row& row : people)
        shown += row["CN"].to<std::string>() + row[1].to<std::string>() + ' ';
    EXPECT_EQ(shown, "user020 user121 user222 ");
    EXPECT_EQ(people.size(), 3u);
    EXPECT_THAT(people.columns(), ElementsAre("cn", "age"));
    EXPECT_THROW((*people.begin())["sn"], std::out_of_range);
    EXPECT_TRUE(orvo::RecordSet(people).get("EOF").to<bool>());
}

TEST_F(ClientObject, CopiesOfARecordSetShareItsRows) {
    const orvo::RecordSet people = this->people();
    orvo::RecordSet copy = people;
    EXPECT_EQ(copy.size(), 3u);
    EXPECT_EQ(people.size(), 3u);
    const orvo::RecordSet moved = std::move(copy);
    EXPECT_EQ(copy.size() + moved.size(), 6u);  // NOLINT(bugprone-use-after-move)
}

static_assert(std::ranges::forward_range<const orvo::RecordSet>);
static_assert(std::ranges::sized_range<const orvo::RecordSet>);
static_assert(std::ranges::common_range<const orvo::RecordSet>);

TEST_F(ClientObject, AlgorithmsAndViewsTakeARecordSet) {
    const orvo::RecordSet people = this->people();
    const auto age = [](const orvo::Row& row) { return row["age"].to<int>(); };
    EXPECT_EQ(std::ranges::count_if(
                  people, [](int years) { return years > 20; }, age),
              2);
    EXPECT_EQ((*std::ranges::max_element(people, {}, age))["cn"].to<std::string>(), "user2");
    EXPECT_EQ(std::ranges::find(people, 30, age), people.end());
    std::vector<std::string> names;
    for (const std::string& name :
         this->people() | std::views::drop(1) | std::views::transform([](const orvo::Row& row) {
             return row["cn"].to<std::string>();
         }))
        names.push_back(name);
    EXPECT_THAT(names, ElementsAre("user1", "user2"));
}

}  // namespace
