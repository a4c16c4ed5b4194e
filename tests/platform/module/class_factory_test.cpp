#include "platform/module/class_factory.h"

#include <gtest/gtest.h>

#include "platform/interfaces/hosted.h"

namespace orvo {

class Made {};
template <>
inline constexpr auto table_of<Made> = describe<Made>("IMade",
                                                      "7e57ab1e-0000-4000-8000-000000000601");
template <>
inline constexpr auto class_of<Made> = describe_class<Made>("Test.Made");

namespace {

// What a call that failed, and whose failure nobody looked at, leaves behind.
void leave_error_object() {
    Object error;
    ASSERT_EQ(abi::CreateErrorInfo(error.put()), abi::s_ok);
    abi::SetErrorInfo(0, error.get());
}

bool is_error_object_left() {
    Object error;
    return abi::GetErrorInfo(0, error.put()) == abi::s_ok;
}

abi::HRESULT create(detail::ClassFactory& factory, abi::IUnknown* outer, const abi::IID* iid,
                    Object& made) {
    return abi::call_slot<abi::HRESULT, abi::IUnknown*, const abi::IID*, abi::IUnknown**>(
        factory.get(), abi::slot_factory_create_instance, outer, iid, made.put());
}

TEST(ClassFactory, ASuccessfulCreationLeavesNoErrorObject) {
    detail::ClassFactory factory("Test.Made", [] {
        leave_error_object();
        return make<Made>().object();
    });
    leave_error_object();
    Object made;
    EXPECT_EQ(create(factory, nullptr, &abi::iid_dispatch, made), abi::s_ok);
    EXPECT_TRUE(made);
    EXPECT_FALSE(is_error_object_left());
}

TEST(ClassFactory, ARefusalLeavesNoErrorObjectOfAnEarlierCall) {
    detail::ClassFactory factory("Test.Made", [] { return make<Made>().object(); });
    Object made;
    leave_error_object();
    EXPECT_EQ(create(factory, factory.get(), &abi::iid_dispatch, made), abi::class_e_noaggregation);
    EXPECT_FALSE(is_error_object_left());
    leave_error_object();
    EXPECT_EQ(create(factory, nullptr, &abi::iid_class_factory, made), abi::e_nointerface);
    EXPECT_FALSE(is_error_object_left());
    leave_error_object();
    EXPECT_EQ(create(factory, nullptr, nullptr, made), abi::e_pointer);
    EXPECT_FALSE(is_error_object_left());
}

TEST(ClassFactory, ACreationThatFailsLeavesItsFailure) {
    detail::ClassFactory factory(
        "Test.Made", []() -> Object { throw Failure(abi::e_unexpected, {}, u"no object today"); });
    Object made;
    EXPECT_EQ(create(factory, nullptr, &abi::iid_dispatch, made), abi::e_unexpected);
    EXPECT_TRUE(is_error_object_left());
}

}  // namespace
}  // namespace orvo
