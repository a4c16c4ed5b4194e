#pragma once

// The words behind the script's name.

#include <optional>
#include <vector>

#include "platform/interfaces/hosted.h"
#include "platform/values/text.h"
#include "platform/values/variant.h"

namespace orvo {

// Words that begin with "/" and a name, with a value behind ":" or without one: "/role:24",
// "/verbose". A path of several parts ("/etc/hosts") is none.
class NamedArguments {
public:
    explicit NamedArguments(const std::vector<Text>& words);
    // By name, without regard to case; empty for a name without a value and for one that is not
    // there.
    Variant Item(const Text& name);
    bool Exists(const Text& name);
    std::int32_t Count() { return static_cast<std::int32_t>(all_.size()); }
    std::int32_t Length() { return Count(); }
    // Over the names.
    Object NewEnum();

private:
    struct Named {
        Text name;
        Variant value;
    };
    const Named* find(const Text& name) const;

    std::vector<Named> all_;
};

// clang-format off
template <>
inline constexpr auto table_of<NamedArguments> = describe<NamedArguments>(
    "INamedArguments", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a44",
    get<&NamedArguments::Item>("Item", "name").as_default(),
    method<&NamedArguments::Exists>("Exists", "name"),
    method<&NamedArguments::Count>("Count"),
    get<&NamedArguments::Length>("length"),
    get<&NamedArguments::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM));
// clang-format on

template <>
inline constexpr auto class_of<NamedArguments> = describe_class<NamedArguments>("WScript.Named");

class ScriptArguments {
public:
    explicit ScriptArguments(std::vector<Text> words) : words_(std::move(words)) {}
    // Counts from 0. Raises 9.
    Text Item(std::int32_t index);
    std::int32_t Count() { return static_cast<std::int32_t>(words_.size()); }
    std::int32_t Length() { return Count(); }
    Object NewEnum();
    Ref<NamedArguments> Named();
    Ref<ScriptArguments> Unnamed();
    // Raises 445: it is for scripts in files (.wsf) that say what their arguments mean.
    void ShowUsage();

private:
    std::vector<Text> words_;
};

// clang-format off
template <>
inline constexpr auto table_of<ScriptArguments> = describe<ScriptArguments>(
    "IScriptArguments", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a42",
    get<&ScriptArguments::Item>("Item", "index").as_default(),
    method<&ScriptArguments::Count>("Count"),
    get<&ScriptArguments::Length>("length"),
    get<&ScriptArguments::Named>("Named"),
    get<&ScriptArguments::Unnamed>("Unnamed"),
    get<&ScriptArguments::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    method<&ScriptArguments::ShowUsage>("ShowUsage"));
// clang-format on

template <>
inline constexpr auto class_of<ScriptArguments> =
    describe_class<ScriptArguments>("WScript.Arguments");

}  // namespace orvo
