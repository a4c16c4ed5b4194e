#pragma once

// A provider and a configuration that answer from memory, so that the component's own cost shows.

#include "component/config/configuration_contract.h"
#include "component/provider/directory_contract.h"
#include "platform/module/local_class.h"
#include "platform/values/values.h"

namespace orvo {

class MemoryEntry final : public DirectoryEntry {
public:
    void Bind(Text&, Text&, Text&, Text&, Secret&, Variant&) override {}
    Variant GetValues(Text& name) override {
        if (name == u"ProfileCN") return Values{Variant()};
        if (name == u"OrvoUserType") return Values{1};
        if (name == u"SpendLimit") return Values{u"1234.5"};
        return Values{u"john.smith@shop.example"};
    }
    void SetValues(Text&, Variant&) override {}
    void ClearValues(Text&) override {}
    void CreateChild(Variant&, Text&, Object&) override {}
    void DeleteChild(Text&, Text&) override {}
    Boolean InitializeConnectionPool(Variant&, Variant&) override { return false; }
    Boolean InitializeCache(Variant&, Variant&) override { return false; }
};

class MemoryValidator final : public DirectoryValidator {
public:
    void Open(Text&, Text&) override {}
    std::int32_t Validate(Variant&, Variant&) override { return 0; }
};

class MemoryDirectory final : public DirectoryModule {
public:
    Ref<DirectorySchema> CreateSchema() override { return nullptr; }
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override;
    Ref<DirectorySearch> CreateSearch() override { return nullptr; }
};

class MemoryConfiguration final : public Configuration {
public:
    Text GetFolder() override { return {}; }
    bool LoadSiteConfigurationFile(const Text&) override { return true; }
    void LoadConfigurationFile(const Text&) override {}
    Variant ReadConfigValue(Text&, Text& key) override {
        if (key == u"PlugableModuleImplementation") return u"Bench.Directory";
        if (key == u"UserMandatoryAttributes" || key == u"UserClass") return Variant();
        return key;
    }
    void Initialize(Variant&) override {}
    void LoadSiteConfig(bool) override {}
    std::int32_t GetValue2(Text&, Text&, Variant&) override { return 1; }
};

template <>
inline constexpr auto class_of<MemoryEntry> = describe_class<DirectoryEntry>("Bench.Entry");
template <>
inline constexpr auto class_of<MemoryValidator> =
    describe_class<DirectoryValidator>("Bench.Validator");
template <>
inline constexpr auto class_of<MemoryDirectory> =
    describe_class<DirectoryModule>("Bench.Directory", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e7b1");
template <>
inline constexpr auto class_of<MemoryConfiguration> =
    describe_class<Configuration>("Quendra.Configuration", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e7b2");

inline Ref<DirectoryEntry> MemoryDirectory::CreateEntry() { return make<MemoryEntry>(); }
inline Ref<DirectoryValidator> MemoryDirectory::CreateValidator() {
    return make<MemoryValidator>();
}

// The classes, for as long as a benchmark runs.
struct MemoryClasses {
    LocalClass directory = local_class<MemoryDirectory>();
    LocalClass configuration = local_class<MemoryConfiguration>();
};

}  // namespace orvo
