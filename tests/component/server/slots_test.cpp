#include "component/server/class_list.h"
#include "tests/component/server/module_test.h"

namespace orvo {
namespace {

using abi::BSTR;
using abi::call_slot;
using abi::HRESULT;

// The text and the interface of the thread's error object, which is cleared.
struct Reported {
    std::string description;
    abi::GUID iid;
};

Reported take_report() {
    Object info;
    if (abi::GetErrorInfo(0, info.put()) != abi::s_ok) return {};
    Reported report{};
    BSTR text = nullptr;
    call_slot<HRESULT, BSTR*>(info.get(), abi::slot_error_get_description, &text);
    report.description = to_utf8(crossing<Text>::take(text));
    call_slot<HRESULT, abi::GUID*>(info.get(), abi::slot_error_get_guid, &report.iid);
    return report;
}

class Slots : public ModuleTest {
protected:
    template <class C>
    static Ref<C> created() {
        return Ref<C>::from(create_object(from_utf8(class_of<C>.progid)));
    }
};

TEST_FRESH(Slots, AnObjectHasItsOwnInterfaceAndReportsItsFailuresThere) {
    const auto entry = created<LdapAccess>();
    Object support;
    ASSERT_EQ(abi::query_interface(entry.get(), abi::iid_support_error_info,
                                   reinterpret_cast<void**>(support.put())),
              abi::s_ok);
    const auto supports = [&](const abi::IID& iid) {
        return call_slot<HRESULT, const abi::IID*>(support.get(),
                                                   abi::slot_interface_supports_error_info, &iid);
    };
    EXPECT_EQ(supports(table_of<LdapAccess>.iid), abi::s_ok);
    EXPECT_EQ(supports(table_of<ObjectControl>.iid), abi::s_ok);
    EXPECT_EQ(supports(table_of<ServerInfo>.iid), abi::s_false);
}

TEST_FRESH(Slots, TheTransactionServerActivatesEntriesAndNotTheOtherClasses) {
    EXPECT_TRUE(Ref<ObjectControl>::from(created<LdapAccess>().object()));
    for (const char16_t* progid :
         {u"OrvoMembership.ServerInfo", u"OrvoMembership.PMMCreator", u"OrvoMembership.Account"})
        EXPECT_EQ(raised_by([&] { Ref<ObjectControl>::from(create_object(progid)); }).number, 13);
}

TEST_FRESH(Slots, CarryValuesAndInOutTextsBothWays) {
    const auto info = Ref<ServerInfo>::from(loaded_settings());
    EXPECT_EQ(call<&ServerInfo::GetServerName>(info), Variant(u"dir01:389"));
    EXPECT_EQ(shown(call<&ServerInfo::GetUserClass>(info)), "[top, person]");
    Text host = u"LDAP://dir01/", container = u"o=Shop/ou=Users", object = u"jsmith";
    EXPECT_EQ(call<&ServerInfo::makeLDAPString>(info, host, container, object),
              u"LDAP://dir01/un=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(host, u"dir01");
    EXPECT_EQ(container, u"o=Shop/ou=Users");
    EXPECT_EQ(object, u"un=jsmith");
}

TEST_FRESH(Slots, AFailureLeavesAnErrorObjectForTheInterface) {
    const auto entry = created<LdapAccess>();
    BSTR name = abi::SysAllocString(u"sn");
    abi::VARIANT value{};
    EXPECT_EQ((call_slot<HRESULT, BSTR*, abi::VARIANT*>(
                  entry.get(), slot_of<&LdapAccess::GetAttribValue>, &name, &value)),
              abi::result(0x800A005B));
    abi::SysFreeString(name);
    const Reported report = take_report();
    EXPECT_EQ(report.description, block("5B", "OrvoMembership.LDAPAccess.GetAttribValue",
                                        "Object variable or With block variable not set"));
    EXPECT_EQ(report.iid, table_of<LdapAccess>.iid);
}

TEST_FRESH(Slots, ANullPointerForAnInOutArgumentAnswersEPointerAndNamesTheArgument) {
    const auto entry = created<LdapAccess>();
    abi::VARIANT value{};
    value.vt = abi::VT_I4;
    EXPECT_EQ((call_slot<HRESULT, BSTR*, abi::VARIANT*>(
                  entry.get(), slot_of<&LdapAccess::GetAttribValue>, nullptr, &value)),
              abi::e_pointer);
    EXPECT_EQ(value.vt, abi::VT_EMPTY) << "the place of the result is cleared";
    EXPECT_EQ(take_report().description, "The argument iAttribName is a null pointer");

    BSTR text = abi::SysAllocString(u"x");
    EXPECT_EQ((call_slot<HRESULT, BSTR*, abi::VARIANT*>(
                  entry.get(), slot_of<&LdapAccess::SetAttribValue>, &text, nullptr)),
              abi::e_pointer);
    EXPECT_EQ(take_report().description, "The argument iAttribValue is a null pointer");
    EXPECT_EQ((call_slot<HRESULT, BSTR*, BSTR*, BSTR*, BSTR*, BSTR*>(
                  entry.get(), slot_of<&LdapAccess::BindAs>, &text, &text, &text, &text, nullptr)),
              abi::e_pointer);
    EXPECT_EQ(take_report().description, "The argument i_sContainer is a null pointer");
    abi::SysFreeString(text);
}

TEST_FRESH(Slots, ANullPointerForTheResultAnswersEPointer) {
    const auto info = created<ServerInfo>();
    EXPECT_EQ((call_slot<HRESULT, abi::VARIANT*>(info.get(), slot_of<&ServerInfo::GetServerName>,
                                                 nullptr)),
              abi::e_pointer);
}

TEST_FRESH(Slots, ANullPointerForTheOptionalObjectCountsAsTheEmptyText) {
    const auto info = Ref<ServerInfo>::from(loaded_settings());
    BSTR host = abi::SysAllocString(u"dir01/");
    BSTR container = abi::SysAllocString(u"o=Shop");
    BSTR path = nullptr;
    EXPECT_EQ(
        (call_slot<HRESULT, BSTR*, BSTR*, BSTR*, BSTR*>(
            info.get(), slot_of<&ServerInfo::makeLDAPString>, &host, &container, nullptr, &path)),
        abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(path), u"LDAP://dir01/o=Shop");
    EXPECT_EQ(crossing<Text>::take(host), u"dir01");
    EXPECT_EQ(crossing<Text>::take(container), u"o=Shop");
}

TEST_FRESH(Slots, ANullTextIsTheEmptyText) {
    const auto info = Ref<ServerInfo>::from(loaded_settings());
    BSTR user = nullptr, path = nullptr;
    EXPECT_EQ((call_slot<HRESULT, BSTR*, BSTR*>(info.get(), slot_of<&ServerInfo::FullUserPath>,
                                                &user, &path)),
              abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(path), u"ou=Users,o=Shop");
    EXPECT_EQ(user, nullptr);
}

TEST_FRESH(Slots, AnotherThreadsCallIsAnsweredWrongThread) {
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    in_fresh_thread([&] {
        BSTR name = nullptr;
        abi::VARIANT value{};
        EXPECT_EQ((call_slot<HRESULT, BSTR*, abi::VARIANT*>(
                      entry.get(), slot_of<&LdapAccess::GetAttribValue>, &name, &value)),
                  abi::result(0x8001010E));
        EXPECT_EQ(call_slot<HRESULT>(entry.get(), slot_of<&LdapAccess::BindToConfig>),
                  abi::result(0x8001010E));
        EXPECT_EQ(raised_by([&] { late::call(entry, u"GetAttribValue", {u"sn"}); }).number,
                  error_number(0x8001010E));
    });
    EXPECT_TRUE(log_.take().empty()) << "the method never ran";
}

}  // namespace
}  // namespace orvo
