#include "tests/component/server/module_test.h"

#include "component/server/class_list.h"

namespace orvo {
namespace {

struct Named {
    const char16_t* progid;
    abi::CLSID clsid;
};

// Each of PublicClasses.
const Named classes[] = {
    {u"OrvoMembership.ServerInfo", class_of<ServerInfo>.clsid},
    {u"OrvoMembership.PMMCreator", class_of<PMMCreator>.clsid},
    {u"OrvoMembership.Account", class_of<Account>.clsid},
    {u"OrvoMembership.PMMAccessor", class_of<PMMAccessor>.clsid},
    {u"OrvoMembership.Initialize", class_of<Initialize>.clsid},
    {u"OrvoMembership.LdapAccess", class_of<LdapAccess>.clsid},
    {u"OrvoMembership.Profile", class_of<Profile>.clsid},
    {u"OrvoMembership.User", class_of<User>.clsid},
    {u"OrvoMembership.Members", class_of<Members>.clsid},
    {u"OrvoMembership.Profiles", class_of<Profiles>.clsid},
    {u"OrvoMembership.Validator", class_of<Validator>.clsid},
};

static_assert(std::size(classes) == std::tuple_size_v<PublicClasses>);

class Module : public ModuleTest {
protected:
    abi::IUnknown* factory_of(const abi::CLSID& clsid) {
        void* factory = nullptr;
        EXPECT_EQ(get_class_object(clsid, abi::iid_class_factory, &factory), abi::s_ok);
        return static_cast<abi::IUnknown*>(factory);
    }
    static abi::HRESULT create(abi::IUnknown* factory, abi::IUnknown* outer, const abi::IID& iid,
                               void** out) {
        return abi::call_slot<abi::HRESULT, abi::IUnknown*, const abi::IID*, void**>(
            factory, abi::slot_factory_create_instance, outer, &iid, out);
    }
    static void lock(abi::IUnknown* factory, bool locked) {
        abi::call_slot<abi::HRESULT, std::int32_t>(factory, abi::slot_factory_lock_server, locked);
    }
};

TEST_FRESH(Module, OffersEveryPublicClassByItsIdentifier) {
    for (const Named& row : classes) {
        SCOPED_TRACE(to_utf8(row.progid));
        abi::IUnknown* factory = factory_of(row.clsid);
        ASSERT_NE(factory, nullptr);
        Object made;
        EXPECT_EQ(create(factory, nullptr, abi::iid_dispatch, reinterpret_cast<void**>(made.put())),
                  abi::s_ok);
        EXPECT_TRUE(made);
        abi::release(factory);
    }
}

TEST_FRESH(Module, AnswersClassNotAvailableForAnythingElse) {
    void* out = this;
    EXPECT_EQ(get_class_object(guid("7e57ab1e-0000-4000-8000-0000000000ff"), abi::iid_class_factory,
                               &out),
              abi::result(0x80040111));
    EXPECT_EQ(out, nullptr);
}

TEST_FRESH(Module, RefusesANullPointerAndAnInterfaceThatAClassObjectLacks) {
    EXPECT_EQ(get_class_object(classes[0].clsid, abi::iid_class_factory, nullptr), abi::e_pointer);
    void* out = this;
    EXPECT_EQ(get_class_object(classes[0].clsid, abi::iid_dispatch, &out), abi::e_nointerface);
    EXPECT_EQ(out, nullptr);
}

TEST_FRESH(Module, RefusesAggregation) {
    abi::IUnknown* factory = factory_of(classes[0].clsid);
    void* out = this;
    EXPECT_EQ(create(factory, factory, abi::iid_unknown, &out), abi::result(0x80040110));
    EXPECT_EQ(out, nullptr);
}

TEST_FRESH(Module, CanBeUnloadedWhenNoObjectAndNoLockIsLeft) {
    EXPECT_EQ(can_unload(), abi::s_ok);
    {
        const Object info = create_object(u"OrvoMembership.ServerInfo");
        EXPECT_EQ(can_unload(), abi::s_false);
        const Object entry = create_object(u"OrvoMembership.LdapAccess");
    }
    EXPECT_EQ(can_unload(), abi::s_ok);
    abi::IUnknown* factory = factory_of(classes[0].clsid);
    EXPECT_EQ(can_unload(), abi::s_ok) << "a class object alone keeps nothing";
    lock(factory, true);
    EXPECT_EQ(can_unload(), abi::s_false);
    lock(factory, false);
    EXPECT_EQ(can_unload(), abi::s_ok);
}

TEST_FRESH(Module, StaysLoadedAsLongAsTheProviderOfACreatorLives) {
    const Object entry = bound_entry();
    EXPECT_EQ(can_unload(), abi::s_false);
    EXPECT_EQ(directory_.entries, 1);
}

TEST_FRESH(Module, EveryClassIsCreatedByItsProgIDWithAndWithoutVersion) {
    for (const Named& row : classes) {
        SCOPED_TRACE(to_utf8(row.progid));
        EXPECT_TRUE(create_object(row.progid));
        EXPECT_TRUE(create_object(row.progid + Text(u".1")));
    }
}

TEST_FRESH(Module, AfterUnregistrationItsClassesAreUnknown) {
    EXPECT_EQ(exported<abi::HRESULT()>("DllUnregisterServer")(), abi::s_ok);
    const Failure failure = raised_by([] { create_object(u"OrvoMembership.ServerInfo"); });
    EXPECT_EQ(failure.number, 429);
    EXPECT_EQ(to_utf8(failure.description), cannot_create(u"OrvoMembership.ServerInfo"));
}

TEST_FRESH(Module, ObjectsOfOneThreadShareItsSettings) {
    const Object validator = create_object(u"OrvoMembership.Validator");
    late::call(validator, u"setServerInfo", {u"site.ini"});
    const Object account = create_object(u"OrvoMembership.Account");
    journal_.clear();
    late::call(account, u"Init", {2});
    EXPECT_EQ(journal_.take().back(),
              "Bind(dir01:389, ou=Accounts,o=Shop, an=2, cn=script,o=Shop, script-code, [])");
}

TEST_FRESH(Module, AnotherThreadHasSettingsOfItsOwn) {
    const Object validator = create_object(u"OrvoMembership.Validator");
    late::call(validator, u"setServerInfo", {u"site.ini"});
    in_fresh_thread([] {
        const Object account = create_object(u"OrvoMembership.Account");
        EXPECT_EQ(raised_by([&] { late::call(account, u"Init", {2}); }).number, 91);
    });
}

TEST_FRESH(Module, WhatActivationRaisesSurfacesFromCreation) {
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { create_object(u"OrvoMembership.LdapAccess"); }), 53, u"Its.Own",
                   "site.ini: not there");
    EXPECT_EQ(can_unload(), abi::s_ok) << "nothing is left behind";
}

TEST_FRESH(Module, AConfigurationThatIsMissingSurfacesFromCreationWithItsBlock) {
    configuration_.remove();
    expect_failure(
        raised_by([] { create_object(u"OrvoMembership.LdapAccess"); }), 429, u"OrvoMembership",
        block("1AD", "Lib_General.Gen_GetComponent", cannot_create(u"Quendra.Configuration"),
              "CreateObject(Quendra.Configuration) failed"));
}

}  // namespace
}  // namespace orvo
