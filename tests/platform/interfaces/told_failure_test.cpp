#include <gmock/gmock.h>

#include <vector>

#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"
#include "platform/interfaces/late_call.h"

namespace orvo {
namespace {

class Faulty {
public:
    void Fail(std::int32_t number) { throw Failure(number, {}, u"It failed"); }
    std::int32_t Answer() { throw std::runtime_error("out of cheese"); }
    std::int32_t Work() { return 5; }

    void failed(const char* member, const Failure& failure) const noexcept {
        told.push_back(std::string(member) + ": " + failure.what());
        sources.push_back(to_utf8(failure.source));
    }

    static inline std::vector<std::string> told, sources;
};

}  // namespace

// clang-format off
template <>
inline constexpr auto table_of<Faulty> = describe<Faulty>(
    "IFaulty", "7e57ab1e-0000-4000-8000-0000000000f2",
    method<&Faulty::Fail>("Fail", "number"),
    method<&Faulty::Answer>("Answer"),
    method<&Faulty::Work>("Work"));
// clang-format on
template <>
inline constexpr auto class_of<Faulty> = describe_class<Faulty>("Test.Faulty");

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ToldFailure : public testing::Test {
protected:
    ToldFailure() {
        Faulty::told.clear();
        Faulty::sources.clear();
    }
    const Ref<Faulty> faulty_ = make<Faulty>();
};

TEST_F(ToldFailure, IsTheOneThatACallerBySlotGets) {
    EXPECT_THROW(call<&Faulty::Fail>(faulty_, 91), Failure);
    EXPECT_THROW(call<&Faulty::Answer>(faulty_), Failure);
    EXPECT_THAT(Faulty::told,
                ElementsAre(testing::HasSubstr("Fail: "), testing::HasSubstr("out of cheese")));
    EXPECT_THAT(Faulty::sources, ElementsAre("Test.Faulty", "Test.Faulty"));
}

TEST_F(ToldFailure, IsTheOneThatALateBoundCallerGets) {
    EXPECT_THROW(late::call(faulty_.object(), u"fail", {91}), Failure);
    EXPECT_THROW(late::call(faulty_.object(), u"answer"), Failure);
    EXPECT_THAT(Faulty::told,
                ElementsAre(testing::HasSubstr("Fail: "), testing::HasSubstr("out of cheese")));
    EXPECT_THAT(Faulty::sources, ElementsAre("Test.Faulty", "Test.Faulty"));
}

TEST_F(ToldFailure, IsNoneWhereACallSucceeds) {
    EXPECT_EQ(call<&Faulty::Work>(faulty_), 5);
    EXPECT_EQ(late::call(faulty_.object(), u"Work"), Variant(5));
    EXPECT_THAT(Faulty::told, IsEmpty());
}

}  // namespace
}  // namespace orvo
