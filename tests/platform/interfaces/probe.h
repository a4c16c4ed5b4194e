#pragma once

// An interface with every kind of member and value, for the tests of the interface mechanism.

#include "platform/interfaces/hosted.h"
#include "platform/values/values.h"

namespace orvo {

class Probe {
public:
    std::int32_t Add(std::int32_t a, std::int16_t b) { return a + b; }
    Text Greet(Text& name) {
        name += u"!";
        return u"Hello, " + name;
    }
    void Swap(Variant& a, Variant& b) { std::swap(a, b); }
    Variant Echo(const Variant& value) { return value; }
    bool Not(bool value) { return !value; }
    double Half(double value) { return value / 2; }
    Currency Twice(Currency value) { return {value.units * 2}; }
    Date NextDay(Date day) { return {day.days + 1}; }
    Values Reverse(Values& values) {
        Values reversed;
        for (auto i = values.upper_bound(); i >= values.lower_bound(); --i)
            reversed.push_back(values[i]);
        values.push_back(u"seen");
        return reversed;
    }
    Text Join(const Text& first, Text& second, const Variant& third) {
        return first + u"|" + second + u"|" + (third.is_missing() ? u"missing" : third.to<Text>());
    }
    void Fail(std::int32_t number) {
        throw Failure(number, u"Probe.Source", u"It failed", u"help.chm", 17);
    }
    void FailBare() { throw Failure(1234, {}, {}); }
    void Crash() { throw std::runtime_error("out of cheese"); }
    Text Name() { return name_; }
    void SetName(const Text& name) { name_ = name; }
    Text Item(const Text& key) { return u"<" + key + u":" + name_ + u">"; }
    void SetItem(const Text& key, const Text& value) { name_ = key + u"=" + value; }
    Ref<Probe> Friend();
    Object Nothing() { return nullptr; }
    std::int32_t Counted() { return counted_++; }

private:
    Text name_ = u"probe";
    std::int32_t counted_ = 0;
};

// clang-format off
template <>
inline constexpr auto table_of<Probe> = describe<Probe>(
    "IProbe", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a01", method<&Probe::Add>("Add", "a", "b"),
    method<&Probe::Greet>("Greet", "name").help("Greets somebody."), reserved(3, 4), method<&Probe::Swap>("Swap", "a", "b"),
    method<&Probe::Echo>("Echo", "value"), method<&Probe::Not>("Not", "value"),
    method<&Probe::Half>("Half", "value"), method<&Probe::Twice>("Twice", "value"),
    method<&Probe::NextDay>("NextDay", "day"), method<&Probe::Reverse>("Reverse", "values"),
    method<&Probe::Join>("Join", "first", optional("second"), optional("third")),
    method<&Probe::Fail>("Fail", "number"), method<&Probe::FailBare>("FailBare"),
    method<&Probe::Crash>("Crash"), get<&Probe::Name>("Name"),
    put<&Probe::SetName>("Name", "value"), get<&Probe::Item>("Item", "key").as_default(),
    put<&Probe::SetItem>("Item", "key", "value").as_default(), get<&Probe::Friend>("Friend"),
    get<&Probe::Nothing>("Nothing"), get<&Probe::Counted>("Counted").hidden());
// clang-format on

// A second interface of the same object, called by slot only, with members that return their value
// themselves.
class Switch {
public:
    virtual void Turn(bool on) = 0;
    virtual bool IsOn() = 0;
    virtual void Reset() = 0;

protected:
    ~Switch() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Switch> = describe_unknown<Switch>(
    "ISwitch", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a02", method<&Switch::Turn>("Turn", "on"),
    bare<&Switch::IsOn>("IsOn"), bare<&Switch::Reset>("Reset"));
// clang-format on

class SwitchedProbe : public Probe, public Switch {
public:
    explicit SwitchedProbe(bool* destroyed = nullptr) : destroyed_(destroyed) {}
    ~SwitchedProbe() {
        if (destroyed_ != nullptr) *destroyed_ = true;
    }
    void Turn(bool on) override { on_ = on; }
    bool IsOn() override { return on_; }
    void Reset() override { on_ = false; }

private:
    bool* destroyed_;
    bool on_ = false;
};

template <>
inline constexpr auto class_of<SwitchedProbe> =
    describe_class<Probe, Switch>("Test.Probe", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a03");

// An object whose default property answers one of its own kind, without end.
class Ring {
public:
    Ref<Ring> Next();
};

// clang-format off
template <>
inline constexpr auto table_of<Ring> = describe<Ring>(
    "IRing", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a05",
    get<&Ring::Next>("Next").as_default());
// clang-format on

template <>
inline constexpr auto class_of<Ring> = describe_class<Ring>("Test.Ring");

inline Ref<Ring> Ring::Next() { return make<Ring>(); }

// An object without a default member.
class Valueless {
public:
    bool Take(const Object& object) { return static_cast<bool>(object); }
};
template <>
inline constexpr auto table_of<Valueless> =
    describe<Valueless>("IValueless", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a06",
                        method<&Valueless::Take>("Take", "object"));
template <>
inline constexpr auto class_of<Valueless> = describe_class<Valueless>("Test.Valueless");

class SharedProbe : public Probe {};
template <>
inline constexpr auto class_of<SharedProbe> =
    describe_class<Probe>("Test.SharedProbe", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a04").shared();

inline Ref<Probe> Probe::Friend() {
    auto made = make<SwitchedProbe>();
    return made;
}

}  // namespace orvo
