#include "tests/support/recording/recording_configuration.h"

namespace orvo {
namespace {

constexpr abi::CLSID configuration_clsid = guid("7e57ab1e-0000-4000-8000-000000000002");

}  // namespace

class ConfigurationComponent final : public Configuration {
public:
    explicit ConfigurationComponent(RecordingConfiguration& owner) : owner_(owner) {
        ++owner_.alive;
    }
    ~ConfigurationComponent() { --owner_.alive; }

    Text GetFolder() override {
        journal().call("GetFolder");
        return owner_.folder;
    }
    bool LoadSiteConfigurationFile(const Text& path) override {
        journal().call("LoadSiteConfigurationFile", {path});
        load(path);
        return true;
    }
    void LoadConfigurationFile(const Text& path) override {
        journal().call("LoadConfigurationFile", {path});
        load(path);
    }
    Variant ReadConfigValue(Text& section, Text& key) override {
        journal().call("ReadConfigValue", {section, key});
        Variant value = value_of(section, key);
        if (owner_.changes_arguments) section = key = u"changed";
        return value;
    }
    void Initialize(Variant& output) override {
        journal().call("Initialize");
        output = 1;
    }
    void LoadSiteConfig(bool reload) override { journal().call("LoadSiteConfig", {reload}); }
    std::int32_t GetValue2(Text& section, Text& key, Variant& value) override {
        journal().call("GetValue2", {section, key, value});
        const Variant found = value_of(section, key);
        if (found.is_empty()) return 1;
        value = found;
        return 0;
    }

private:
    using Sections = std::map<Text, RecordingConfiguration::Section>;

    Journal& journal() { return owner_.journal(); }

    void load(const Text& path) {
        for (const auto& [section, values] : owner_.files[path])
            for (const auto& [key, value] : values) loaded_[section][key] = value;
    }

    static const Variant* find(const Sections& sections, const Text& section, const Text& key) {
        const auto values = sections.find(section);
        if (values == sections.end()) return nullptr;
        const auto value = values->second.find(key);
        return value == values->second.end() ? nullptr : &value->second;
    }
    Variant value_of(const Text& section, const Text& key) const {
        for (const Sections* place : {&loaded_, &static_cast<const Sections&>(owner_.sections)})
            if (const Variant* value = find(*place, section, key)) return *value;
        return {};
    }

    RecordingConfiguration& owner_;
    Sections loaded_;
};

template <>
inline constexpr auto class_of<ConfigurationComponent> =
    describe_class<Configuration>("Quendra.Configuration");

RecordingConfiguration::RecordingConfiguration(Journal& journal) : journal_(journal) {
    class_.emplace(u"Quendra.Configuration", configuration_clsid, [this] {
        journal_.call("new Quendra.Configuration");
        return make_one().object();
    });
}

Ref<Configuration> RecordingConfiguration::make_one() {
    return make<ConfigurationComponent>(*this);
}

}  // namespace orvo
