#include "tests/support/recording/recording_directory.h"

#include <memory>
#include <utility>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary_contract.h"
#include "tests/support/clear_text.h"

namespace orvo {
namespace {

constexpr abi::CLSID directory_clsid = guid("7e57ab1e-0000-4000-8000-000000000003");

// Several directories are classes of their own.
abi::CLSID clsid_of(const Text& progid) {
    abi::CLSID clsid = directory_clsid;
    clsid.Data1 += static_cast<std::uint32_t>(std::hash<Text>()(progid));
    return clsid;
}

// "name=value" for each, in their order.
Values contents_of(const Object& dictionary) {
    const auto attributes = Ref<Dictionary>::from(dictionary);
    Values contents(0, 0);
    for (Variant& key : call<&Dictionary::Keys>(attributes).to<Values>())
        contents.push_back(key.to<Text>() + u"=" +
                           from_utf8(shown(call<&Dictionary::Item>(attributes, key))));
    return contents;
}

}  // namespace

// There as long as the module is.
using ModuleToken = std::shared_ptr<const bool>;

// That an object of a module is in use.
class InUse {
public:
    InUse(int& count, int& orphans, const ModuleToken& module)
        : count_(count), orphans_(orphans), module_(module) {
        ++count_;
    }
    ~InUse() {
        --count_;
        if (module_.expired()) ++orphans_;
    }
    InUse(const InUse&) = delete;

private:
    int& count_;
    int& orphans_;
    std::weak_ptr<const bool> module_;
};

class EntryRecorder final : public DirectoryEntry {
public:
    EntryRecorder(RecordingDirectory& owner, const ModuleToken& module)
        : owner_(owner), in_use_(owner.entries, owner.orphans, module) {}

    void Bind(Text& server, Text& container, Text& common_name, Text& user, Secret& password,
              Variant& attributes) override {
        owner_.passwords.push_back(clear_text(password));
        journal().call("Bind",
                       {server, container, common_name, user, clear_text(password), attributes});
        name_ = common_name.empty() ? container : common_name + u"," + container;
        owner_.change(server, container, common_name, user, password, attributes);
    }
    Variant GetValues(Text& name) override {
        journal().call("GetValues", {name});
        Variant values = owner_.values_of(name_, name);
        owner_.change(name);
        return values;
    }
    void SetValues(Text& name, Variant& value) override {
        if (name == u"userPassword") owner_.passwords.push_back(element(value, 0).to<Text>());
        journal().call("SetValues", {name, value});
        owner_.written = value;
        owner_.change(name, value);
    }
    void ClearValues(Text& name) override {
        journal().call("ClearValues", {name});
        owner_.change(name);
    }
    void CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) override {
        const auto given = Ref<Dictionary>::from(attributes);
        Variant key = u"userPassword";
        if (call<&Dictionary::Exists>(given, key))
            owner_.passwords.push_back(call<&Dictionary::Item>(given, key).to<Text>());
        journal().call("CreateChild", {classes, naming_attribute, contents_of(attributes)});
        owner_.change(classes, naming_attribute);
    }
    void DeleteChild(Text& class_name, Text& entry_name) override {
        journal().call("DeleteChild", {class_name, entry_name});
        owner_.change(class_name, entry_name);
    }
    Boolean InitializeConnectionPool(Variant& names, Variant& values) override {
        journal().call("InitializeConnectionPool", {names, values});
        owner_.change(names, values);
        return owner_.is_ready;
    }
    Boolean InitializeCache(Variant& names, Variant& values) override {
        journal().call("InitializeCache", {names, values});
        owner_.change(names, values);
        return owner_.is_ready;
    }

private:
    Journal& journal() { return owner_.journal(); }

    RecordingDirectory& owner_;
    const InUse in_use_;
    Text name_;
};

class SearchRecorder final : public DirectorySearch {
public:
    SearchRecorder(RecordingDirectory& owner, const ModuleToken& module)
        : owner_(owner), in_use_(owner.searches, owner.orphans, module) {}

    void Connect(Text& server, Text& container, Text& user, Secret& password) override {
        owner_.passwords.push_back(clear_text(password));
        owner_.journal().call("Connect", {server, container, user, clear_text(password)});
        owner_.change(server, container, user, password);
    }
    Object Execute(Text& filter, Variant& attributes, std::int32_t maximum) override {
        owner_.journal().call("Execute", {filter, attributes, maximum});
        owner_.change(filter, attributes);
        if (owner_.finds.empty()) return owner_.found;
        Object found = std::move(owner_.finds.front());
        owner_.finds.pop_front();
        return found;
    }

private:
    RecordingDirectory& owner_;
    const InUse in_use_;
};

class ValidatorRecorder final : public DirectoryValidator {
public:
    ValidatorRecorder(RecordingDirectory& owner, const ModuleToken& module)
        : owner_(owner), in_use_(owner.validators, owner.orphans, module) {}

    void Open(Text& server, Text& user_container) override {
        owner_.journal().call("Open", {server, user_container});
        owner_.change(server, user_container);
    }
    std::int32_t Validate(Variant& path, Variant& password) override {
        owner_.passwords.push_back(password.to<Text>());
        owner_.journal().call("Validate", {path, password});
        owner_.change(path, password);
        return owner_.verdict;
    }

private:
    RecordingDirectory& owner_;
    const InUse in_use_;
};

class SchemaRecorder final : public DirectorySchema {};

class ModuleRecorder final : public DirectoryModule {
public:
    explicit ModuleRecorder(RecordingDirectory& owner) : owner_(owner) { ++owner_.modules; }
    ~ModuleRecorder() { --owner_.modules; }

    Ref<DirectorySchema> CreateSchema() override;
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override;
    Ref<DirectorySearch> CreateSearch() override;

private:
    RecordingDirectory& owner_;
    const ModuleToken token_ = std::make_shared<const bool>(true);
};

template <>
inline constexpr auto class_of<EntryRecorder> =
    describe_class<DirectoryEntry>("Test.Directory.Entry");
template <>
inline constexpr auto class_of<SearchRecorder> =
    describe_class<DirectorySearch>("Test.Directory.Search");
template <>
inline constexpr auto class_of<ValidatorRecorder> =
    describe_class<DirectoryValidator>("Test.Directory.Validator");
template <>
inline constexpr auto class_of<SchemaRecorder> =
    describe_class<DirectorySchema>("Test.Directory.Schema");
template <>
inline constexpr auto class_of<ModuleRecorder> = describe_class<DirectoryModule>("Test.Directory");

Ref<DirectorySchema> ModuleRecorder::CreateSchema() {
    owner_.journal().call("CreateSchema");
    return make<SchemaRecorder>();
}
Ref<DirectoryEntry> ModuleRecorder::CreateEntry() {
    owner_.journal().call("CreateEntry");
    return make<EntryRecorder>(owner_, token_);
}
Ref<DirectoryValidator> ModuleRecorder::CreateValidator() {
    owner_.journal().call("CreateValidator");
    return make<ValidatorRecorder>(owner_, token_);
}
Ref<DirectorySearch> ModuleRecorder::CreateSearch() {
    owner_.journal().call("CreateSearch");
    return make<SearchRecorder>(owner_, token_);
}

RecordingDirectory::RecordingDirectory(Journal& journal, const Text& progid) : journal_(journal) {
    class_.emplace(progid, clsid_of(progid), [this, name = "new " + to_utf8(progid)] {
        journal_.call(name);
        return make<ModuleRecorder>(*this).object();
    });
}

void RecordingDirectory::answer(const Text& attribute, const Variant& values) {
    answer_of({}, attribute, values);
}

void RecordingDirectory::answer_of(const Text& entry, const Text& attribute,
                                   const Variant& values) {
    answers_.insert_or_assign({lower(entry), lower(attribute)}, values);
}

Variant RecordingDirectory::values_of(const Text& entry, const Text& attribute) const {
    for (const Text& place : {lower(entry), Text()}) {
        const auto answer = answers_.find({place, lower(attribute)});
        if (answer != answers_.end()) return answer->second;
    }
    return Values{Variant()};
}

}  // namespace orvo
