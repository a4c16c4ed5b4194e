#include <dlfcn.h>

#include "component_folders.h"

namespace {

using namespace orvo::abi;
using orvo::testing::sample_class;
using orvo::testing::sample_class_text;
using orvo::testing::unknown_class;
using orvo::testing::unknown_class_text;

class ModuleOfClass : public orvo::testing::ComponentFolders {
protected:
    void use(const std::string& module) const {
        write(folder("front") / "sample.manifest",
              manifest(std::string("class = ") + sample_class_text +
                           " Sample.Class\nclass = " + unknown_class_text + " Sample.Other\n",
                       module));
    }
    static HRESULT create(void** object, const CLSID& clsid = sample_class,
                          IUnknown* outer = nullptr) {
        return CoCreateInstance(clsid, outer, CLSCTX_INPROC_SERVER, iid_unknown, object);
    }
    static bool is_loaded() {
        void* handle = dlopen(SAMPLE_MODULE, RTLD_NOW | RTLD_NOLOAD);
        if (handle) dlclose(handle);
        return handle;
    }
};

TEST_F(ModuleOfClass, IsLoadedWhenAnObjectIsMadeAndUnloadedWhenNoneIsLeft) {
    use(SAMPLE_MODULE);
    ASSERT_FALSE(is_loaded());
    for (int round = 0; round < 2; ++round) {
        void* object = nullptr;
        ASSERT_EQ(create(&object), s_ok);
        EXPECT_TRUE(is_loaded());
        CoFreeUnusedLibraries();
        EXPECT_TRUE(is_loaded()) << "an object is left";
        EXPECT_EQ(release(static_cast<IUnknown*>(object)), 0u);
        EXPECT_TRUE(is_loaded()) << "until somebody asks";
        CoFreeUnusedLibraries();
        EXPECT_FALSE(is_loaded());
    }
}

TEST_F(ModuleOfClass, StaysWhileItsServerIsLocked) {
    use(SAMPLE_MODULE);
    void* factory = nullptr;
    ASSERT_EQ(
        CoGetClassObject(sample_class, CLSCTX_INPROC_SERVER, nullptr, iid_class_factory, &factory),
        s_ok);
    auto lock = [&](std::int32_t on) {
        call_slot<HRESULT, std::int32_t>(static_cast<IUnknown*>(factory), slot_factory_lock_server,
                                         on);
    };
    lock(1);
    CoFreeUnusedLibraries();
    EXPECT_TRUE(is_loaded());
    lock(0);
    CoFreeUnusedLibraries();
    EXPECT_FALSE(is_loaded());
}

TEST_F(ModuleOfClass, MayBeNamedRelativeToItsManifest) {
    std::filesystem::create_symlink(SAMPLE_MODULE, folder("second") / "relative.so");
    use("../second/relative.so");
    void* object = nullptr;
    ASSERT_EQ(create(&object), s_ok);
    release(static_cast<IUnknown*>(object));
}

TEST_F(ModuleOfClass, ThatCannotBeLoadedIsToldWithTheSystemsReason) {
    use("missing.so");
    void* object = &object;
    EXPECT_EQ(create(&object), co_e_dllnotfound);
    EXPECT_EQ(object, nullptr);
    std::string file = (folder("front") / "missing.so").string();
    EXPECT_EQ(error_text(), "The module " + file + " cannot be loaded: " + file +
                                ": cannot open shared object file: No such file or directory");
}

TEST_F(ModuleOfClass, WithoutClassesIsNoComponent) {
    use(CLASSLESS_MODULE);
    void* object = nullptr;
    EXPECT_EQ(create(&object), co_e_errorindll);
    EXPECT_EQ(error_text(), std::string("The module ") + CLASSLESS_MODULE +
                                " does not export DllGetClassObject.");
    EXPECT_EQ(dlopen(CLASSLESS_MODULE, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it does not stay";
}

TEST_F(ModuleOfClass, IsLookedForAgainWhenItHasMoved) {
    use("missing.so");
    void* object = nullptr;
    EXPECT_EQ(create(&object), co_e_dllnotfound);
    use(SAMPLE_MODULE);
    ASSERT_EQ(create(&object), s_ok);
    release(static_cast<IUnknown*>(object));
}

TEST_F(ModuleOfClass, AnswersForItself) {
    use(SAMPLE_MODULE);
    void* object = nullptr;
    EXPECT_EQ(create(&object, unknown_class), class_e_classnotavailable);
    IUnknown outer{};
    EXPECT_EQ(create(&object, sample_class, &outer), class_e_noaggregation);
    EXPECT_EQ(CoCreateInstance(sample_class, nullptr, CLSCTX_INPROC_SERVER, iid_dispatch, &object),
              e_nointerface);
    EXPECT_EQ(CoCreateInstance(sample_class, nullptr, 4, iid_unknown, &object), regdb_e_classnotreg)
        << "no server in another process";
    CoFreeUnusedLibraries();
    EXPECT_FALSE(is_loaded()) << "the failures have left no object";
}

}  // namespace
