#include <gtest/gtest.h>

#include <thread>

#include "counted.h"
#include "platform/system/automation.h"

namespace {

using namespace orvo::abi;

template <class... A>
HRESULT call(IUnknown* object, std::size_t slot, A... arguments) {
    return call_slot<HRESULT, A...>(object, slot, arguments...);
}

IUnknown* interface_of(IUnknown* object, const IID& iid) {
    void* out = nullptr;
    EXPECT_EQ(query_interface(object, iid, &out), s_ok);
    return static_cast<IUnknown*>(out);
}

IUnknown* error_with(const char16_t* description) {
    IUnknown* create = nullptr;
    EXPECT_EQ(CreateErrorInfo(&create), s_ok);
    call<const char16_t*>(create, slot_error_set_description, description);
    IUnknown* error = interface_of(create, iid_error_info);
    release(create);
    return error;
}

std::u16string description_of(IUnknown* error) {
    BSTR text = nullptr;
    EXPECT_EQ(call<BSTR*>(error, slot_error_get_description, &text), s_ok);
    std::u16string result(text, SysStringLen(text));
    SysFreeString(text);
    return result;
}

TEST(ErrorObject, GivesBackWhatWasPutIntoIt) {
    IUnknown* create = nullptr;
    ASSERT_EQ(CreateErrorInfo(&create), s_ok);
    IUnknown* writer = interface_of(create, iid_create_error_info);
    call<const GUID*>(writer, slot_error_set_guid, &iid_dispatch);
    call<const char16_t*>(writer, slot_error_set_source, u"Project.Class");
    call<const char16_t*>(writer, slot_error_set_description, u"first");
    call<const char16_t*>(writer, slot_error_set_description, u"It broke.");
    call<const char16_t*>(writer, slot_error_set_help_file, u"help.chm");
    call<std::uint32_t>(writer, slot_error_set_help_context, 17u);
    IUnknown* reader = interface_of(writer, iid_error_info);
    release(writer);
    release(create);

    GUID guid{};
    BSTR source = nullptr, help_file = nullptr;
    std::uint32_t context = 0;
    EXPECT_EQ(call<GUID*>(reader, slot_error_get_guid, &guid), s_ok);
    EXPECT_EQ(guid, iid_dispatch);
    EXPECT_EQ(call<BSTR*>(reader, slot_error_get_source, &source), s_ok);
    EXPECT_EQ(std::u16string(source), u"Project.Class");
    EXPECT_EQ(description_of(reader), u"It broke.");
    EXPECT_EQ(call<BSTR*>(reader, slot_error_get_help_file, &help_file), s_ok);
    EXPECT_EQ(std::u16string(help_file), u"help.chm");
    EXPECT_EQ(call<std::uint32_t*>(reader, slot_error_get_help_context, &context), s_ok);
    EXPECT_EQ(context, 17u);
    SysFreeString(source);
    SysFreeString(help_file);
    EXPECT_EQ(release(reader), 0u);
}

TEST(ErrorObject, IsOneObjectWithTwoInterfacesAndNoOther) {
    IUnknown* create = nullptr;
    CreateErrorInfo(&create);
    IUnknown* reader = interface_of(create, iid_error_info);
    IUnknown* a = interface_of(create, iid_unknown);
    IUnknown* b = interface_of(reader, iid_unknown);
    EXPECT_EQ(a, b);
    void* none = &none;
    EXPECT_EQ(query_interface(reader, iid_support_error_info, &none), e_nointerface);
    EXPECT_EQ(none, nullptr);
    for (IUnknown* one : {reader, a, b}) release(one);
    EXPECT_EQ(release(create), 0u);
}

TEST(ErrorOfTheThread, IsGivenOnce) {
    IUnknown* error = error_with(u"once");
    EXPECT_EQ(SetErrorInfo(0, error), s_ok);
    release(error);
    IUnknown* got = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &got), s_ok);
    EXPECT_EQ(description_of(got), u"once");
    EXPECT_EQ(release(got), 0u);
    EXPECT_EQ(GetErrorInfo(0, &got), s_false);
    EXPECT_EQ(got, nullptr);
}

TEST(ErrorOfTheThread, IsReplacedAndTakenAway) {
    orvo::testing::Counted first, second;
    SetErrorInfo(0, &first);
    EXPECT_EQ(first.references, 2);
    SetErrorInfo(0, &second);
    EXPECT_EQ(first.references, 1);
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(second.references, 1);
    IUnknown* got = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &got), s_false);
}

TEST(ErrorOfTheThread, BelongsToThatThreadAlone) {
    IUnknown* error = error_with(u"mine");
    SetErrorInfo(0, error);
    release(error);
    std::thread([] {
        IUnknown* got = nullptr;
        EXPECT_EQ(GetErrorInfo(0, &got), s_false);
        IUnknown* other = error_with(u"other");
        SetErrorInfo(0, other);
        release(other);
    }).join();
    IUnknown* got = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &got), s_ok);
    EXPECT_EQ(description_of(got), u"mine");
    release(got);
}

TEST(ErrorOfTheThread, IsReleasedAtTheThreadsEnd) {
    orvo::testing::Counted error;
    std::thread([&] { SetErrorInfo(0, &error); }).join();
    EXPECT_EQ(error.references, 1);
}

TEST(ErrorOfTheThread, HasNoReservedArgument) {
    IUnknown* got = nullptr;
    EXPECT_EQ(SetErrorInfo(1, nullptr), e_invalidarg);
    EXPECT_EQ(GetErrorInfo(1, &got), e_invalidarg);
    EXPECT_EQ(GetErrorInfo(0, nullptr), e_invalidarg);
}

}  // namespace
