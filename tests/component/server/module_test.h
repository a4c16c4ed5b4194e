#pragma once

#include <dlfcn.h>

#include "platform/interfaces/create.h"
#include "tests/component/component_test.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// The component's own module, registered for this test alone, among recording neighbours.
class ModuleTest : public ComponentTest {
protected:
    ModuleTest() {
        module_ = dlopen(ORVO_MODULE, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(module_, nullptr) << dlerror();
        EXPECT_EQ(exported<abi::HRESULT()>("DllRegisterServer")(), abi::s_ok);
    }
    ~ModuleTest() override { dlclose(module_); }

    template <class Function>
    Function* exported(const char* name) {
        auto* function = reinterpret_cast<Function*>(dlsym(module_, name));
        EXPECT_NE(function, nullptr) << name;
        return function;
    }
    abi::HRESULT can_unload() { return exported<abi::HRESULT()>("DllCanUnloadNow")(); }
    abi::HRESULT get_class_object(const abi::CLSID& clsid, const abi::IID& iid, void** out) {
        return exported<abi::HRESULT(const abi::CLSID&, const abi::IID&, void**)>(
            "DllGetClassObject")(clsid, iid, out);
    }

    // An LdapAccess that is bound to an entry.
    static Object bound_entry() {
        const Object entry = create_object(u"OrvoMembership.LdapAccess");
        late::call(entry, u"BindAs", {u"cn=jsmith", u"", u"", u"dir01", u"o=Shop"});
        return entry;
    }
    // A ServerInfo with the shop's settings.
    static Object loaded_settings() {
        const Object info = create_object(u"OrvoMembership.ServerInfo");
        late::call(info, u"SetConfiguration", {u"site.ini"});
        return info;
    }

private:
    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    void* module_;
};

}  // namespace orvo
