#pragma once

// An Automation object with every kind of member, for scripts to call.

#include <functional>
#include <map>

#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/hosted.h"
#include "platform/values/values.h"

namespace orvo {

class Shelf {
public:
    explicit Shelf(int* alive = nullptr) : alive_(alive) {
        if (alive_ != nullptr) ++*alive_;
    }
    ~Shelf() {
        if (alive_ != nullptr) --*alive_;
    }
    Shelf(const Shelf&) = delete;
    Shelf& operator=(const Shelf&) = delete;

    Variant Item(const Text& key) {
        const auto found = items_.find(lower(key));
        return found == items_.end() ? Variant() : found->second;
    }
    void SetItem(const Text& key, const Variant& value) { items_[lower(key)] = value; }
    Text Label() { return label_; }
    void SetLabel(const Text& label) { label_ = label; }
    std::int32_t Count() { return static_cast<std::int32_t>(items_.size()); }
    std::int32_t Add(std::int32_t a, std::int32_t b) { return a + b; }
    Variant Echo(const Variant& value) { return value; }
    std::int32_t KindOf(const Variant& value) {
        return static_cast<std::int32_t>(value.kind()) + (value.is_array() ? 0x2000 : 0);
    }
    std::int32_t Calls() { return calls_; }
    std::int32_t Touch() { return ++calls_; }
    Text Change(Text& text) { return text += u"!"; }
    void Fail(std::int32_t number) { throw Failure(number, u"Shelf.Fail", u"It failed: \u0416"); }
    Text Volume(const Variant& part) {
        return part.is_missing() ? u"whole" : u"part " + part.to<Text>();
    }
    Ref<Shelf> Other();
    Object Nothing() { return {}; }
    void Run() {
        if (run) run();
    }
    Object NewEnum() {
        std::vector<Variant> keys;
        for (const auto& [key, value] : items_) keys.emplace_back(key);
        return make_enumerator(std::move(keys));
    }

    static inline thread_local std::function<void()> run;

private:
    std::map<Text, Variant> items_;
    Text label_ = u"shelf";
    std::int32_t calls_ = 0;
    int* alive_;
};

// clang-format off
template <>
inline constexpr auto table_of<Shelf> = describe<Shelf>(
    "IShelf", "5e1c2f60-7d3a-4a5b-8f0e-2d6b9a7c1e01",
    get<&Shelf::Item>("Item", "key").as_default(),
    put<&Shelf::SetItem>("Item", "key", "value").as_default(),
    get<&Shelf::Label>("Label"),
    put<&Shelf::SetLabel>("Label", "value"),
    get<&Shelf::Count>("Count"),
    method<&Shelf::Add>("Add", "a", "b"),
    method<&Shelf::Echo>("Echo", "value"),
    method<&Shelf::KindOf>("KindOf", "value"),
    get<&Shelf::Calls>("Calls"),
    method<&Shelf::Touch>("Touch"),
    method<&Shelf::Change>("Change", "text"),
    method<&Shelf::Fail>("Fail", "number"),
    get<&Shelf::Volume>("Volume", optional("part")),
    get<&Shelf::Other>("Other"),
    get<&Shelf::Nothing>("Nothing"),
    method<&Shelf::Run>("Run"),
    get<&Shelf::NewEnum>("_NewEnum").id(-4));
// clang-format on

template <>
inline constexpr auto class_of<Shelf> = describe_class<Shelf>("Test.Shelf");

inline Ref<Shelf> Shelf::Other() { return make<Shelf>(alive_); }

// An object whose default member takes no arguments.
class Tag {
public:
    Text Value() { return u"tag"; }
};

// clang-format off
template <>
inline constexpr auto table_of<Tag> = describe<Tag>(
    "ITag", "5e1c2f60-7d3a-4a5b-8f0e-2d6b9a7c1e02",
    get<&Tag::Value>("Value").as_default());
// clang-format on

template <>
inline constexpr auto class_of<Tag> = describe_class<Tag>("Test.Tag");

// An object whose default property takes no arguments and answers an object, as that of a record
// set does.
class Box {
public:
    explicit Box(Object content) : content_(std::move(content)) {}
    Object Content() { return content_; }

private:
    Object content_;
};

// clang-format off
template <>
inline constexpr auto table_of<Box> = describe<Box>(
    "IBox", "5e1c2f60-7d3a-4a5b-8f0e-2d6b9a7c1e03",
    get<&Box::Content>("Content").as_default());
// clang-format on

template <>
inline constexpr auto class_of<Box> = describe_class<Box>("Test.Box");

}  // namespace orvo
