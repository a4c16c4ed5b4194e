// What many threads may do at once. Worth most under ThreadSanitizer.

#include <atomic>
#include <thread>
#include <vector>

#include "component_folders.h"
#include "counted.h"
#include "platform/system/registration.h"

namespace {

using namespace orvo::abi;
using orvo::runtime::ProcessRegistration;
using orvo::testing::Counted;
using orvo::testing::sample_class;
using orvo::testing::sample_class_text;
using orvo::testing::unknown_class;
using orvo::testing::unknown_class_text;

constexpr int rounds = 300;

class ManyThreads : public orvo::testing::ComponentFolders {
protected:
    void SetUp() override {
        ComponentFolders::SetUp();
        write(folder("front") / "sample.manifest", lines("Sample.Class"));
    }
    static std::string lines(const std::string& progid) {
        return manifest(std::string("class = ") + sample_class_text + " " + progid +
                        "\nclass = " + unknown_class_text + " Sample.Other\n");
    }
};

void run(std::vector<std::thread>& threads) {
    for (std::thread& thread : threads) thread.join();
}

TEST_F(ManyThreads, LookUpWhileManifestsChange) {
    std::atomic<int> found{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                CLSID clsid{};
                if (CLSIDFromProgID(u"Sample.Class", &clsid) == s_ok && clsid == sample_class)
                    ++found;
                CLSIDFromProgID(u"Sample.Missing", &clsid);
            }
        });
    for (int round = 0; round < 50; ++round)
        write(folder("second") / "more.manifest", lines("Sample.More" + std::to_string(round)));
    run(threads);
    EXPECT_EQ(found, 3 * rounds);
}

TEST_F(ManyThreads, CallIntoAModuleThatOthersUnload) {
    std::atomic<int> answered{0};
    std::atomic<bool> ended{false};
    std::thread unloader([&] {
        while (!ended) CoFreeUnusedLibraries();
    });
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                void* none = nullptr;
                if (CoCreateInstance(unknown_class, nullptr, CLSCTX_INPROC_SERVER, iid_unknown,
                                     &none) == class_e_classnotavailable)
                    ++answered;
            }
        });
    run(threads);
    ended = true;
    unloader.join();
    EXPECT_EQ(answered, 3 * rounds);
}

TEST_F(ManyThreads, MakeObjects) {
    std::atomic<int> made{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                void* object = nullptr;
                if (CoCreateInstance(sample_class, nullptr, CLSCTX_INPROC_SERVER, iid_unknown,
                                     &object) != s_ok)
                    continue;
                release(static_cast<IUnknown*>(object));
                ++made;
            }
        });
    run(threads);
    EXPECT_EQ(made, 4 * rounds);
}

TEST_F(ManyThreads, RegisterClassesOfTheProgram) {
    Counted factory;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                ProcessRegistration own(u"Sample.Own", unknown_class, &factory);
                CLSID clsid{};
                EXPECT_EQ(CLSIDFromProgID(u"Sample.Own", &clsid), s_ok);
                void* object = nullptr;
                EXPECT_EQ(CoGetClassObject(unknown_class, CLSCTX_INPROC_SERVER, nullptr,
                                           iid_unknown, &object),
                          s_ok);
                release(static_cast<IUnknown*>(object));
            }
        });
    run(threads);
    EXPECT_EQ(factory.references, 1);
}

TEST_F(ManyThreads, LockOneArray) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                std::int32_t index = 0, value = 0;
                EXPECT_EQ(SafeArrayGetElement(array, &index, &value), s_ok);
            }
        });
    run(threads);
    EXPECT_EQ(SafeArrayDestroy(array), s_ok) << "no lock is left";
}

}  // namespace
