// One attribute read of a bound LdapAccess: by C++ call, by slot and late bound, over a provider
// that answers from memory, so that the component's own cost shows; and the provider alone.

#include <benchmark/benchmark.h>

#include "component/config/SharedServerInfo.h"
#include "component/entries/LdapAccess.h"
#include "platform/abi/call.h"
#include "platform/abi/late_call.h"
#include "platform/abi/module.h"
#include "platform/automation/values.h"

namespace orvo {
namespace {

class MemoryEntry final : public DirectoryEntry {
public:
    void Bind(Text&, Text&, Text&, Text&, Text&, Variant&) override {}
    Variant GetValues(Text&) override { return Values{u"john.smith@shop.example"}; }
    void SetValues(Text&, Variant&) override {}
    void ClearValues(Text&) override {}
    void CreateChild(Variant&, Text&, Object&) override {}
    void DeleteChild(Text&, Text&) override {}
    bool InitializeConnectionPool(Variant&, Variant&) override { return false; }
    bool InitializeCache(Variant&, Variant&) override { return false; }
};

class MemoryDirectory final : public DirectoryModule {
public:
    Ref<DirectorySchema> CreateSchema() override { return nullptr; }
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override { return nullptr; }
    Ref<DirectorySearch> CreateSearch() override { return nullptr; }
};

class MemoryConfiguration final : public Configuration {
public:
    Text GetFolder() override { return {}; }
    bool LoadSiteConfigurationFile(const Text&) override { return true; }
    void LoadConfigurationFile(const Text&) override {}
    Variant ReadConfigValue(Text&, Text& key) override {
        return key == u"PlugableModuleImplementation" ? Variant(u"Bench.Directory") : Variant();
    }
    void Initialize(Variant&) override {}
    void LoadSiteConfig(bool) override {}
    std::int32_t GetValue2(Text&, Text&, Variant&) override { return 1; }
};

}  // namespace

template <>
inline constexpr auto class_of<MemoryEntry> = describe_class<DirectoryEntry>("Bench.Entry");
template <>
inline constexpr auto class_of<MemoryDirectory> =
    describe_class<DirectoryModule>("Bench.Directory", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e7b1");
template <>
inline constexpr auto class_of<MemoryConfiguration> =
    describe_class<Configuration>("Quendra.Configuration", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e7b2");

namespace {

Ref<DirectoryEntry> MemoryDirectory::CreateEntry() { return make<MemoryEntry>(); }

struct Classes {
    LocalClass directory = local_class<MemoryDirectory>();
    LocalClass configuration = local_class<MemoryConfiguration>();
};

template <class Entry, class BindAs>
void bind(Entry& entry, BindAs bind_as) {
    Text name = u"cn=jsmith", user, password, server, container;
    bind_as(entry, name, user, password, server, container);
}

void by_cpp_call(benchmark::State& state) {
    const Classes classes;
    LdapAccess entry;
    bind(entry, [](LdapAccess& bound, auto&... texts) { bound.BindAs(texts...); });
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(entry.GetAttribValue(name));
}
BENCHMARK(by_cpp_call)->Name("GetAttribValue, C++ call");

void by_slot(benchmark::State& state) {
    const Classes classes;
    const auto entry = make<LdapAccess>();
    bind(entry, [](auto& bound, auto&... texts) { call<&LdapAccess::BindAs>(bound, texts...); });
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(call<&LdapAccess::GetAttribValue>(entry, name));
}
BENCHMARK(by_slot)->Name("GetAttribValue, by slot");

void late_bound(benchmark::State& state) {
    const Classes classes;
    const auto entry = make<LdapAccess>();
    bind(entry, [](auto& bound, auto&... texts) { call<&LdapAccess::BindAs>(bound, texts...); });
    for (auto _ : state)
        benchmark::DoNotOptimize(late::call(entry.object(), u"GetAttribValue", {u"mail"}));
}
BENCHMARK(late_bound)->Name("GetAttribValue, late bound");

void provider_alone(benchmark::State& state) {
    const auto entry = make<MemoryEntry>();
    Text name = u"mail";
    for (auto _ : state) benchmark::DoNotOptimize(call<&DirectoryEntry::GetValues>(entry, name));
}
BENCHMARK(provider_alone)->Name("the provider's GetValues alone, by slot");

}  // namespace
}  // namespace orvo
