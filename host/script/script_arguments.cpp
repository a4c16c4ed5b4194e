#include "host/script/script_arguments.h"

#include <algorithm>

#include "platform/interfaces/enumerator.h"

namespace orvo {
namespace {

bool is_named(const Text& word) {
    const Text name = word.substr(0, word.find(u':'));
    return name.size() > 1 && name.front() == u'/' && name.find(u'/', 1) == Text::npos;
}

}  // namespace

NamedArguments::NamedArguments(const std::vector<Text>& words) {
    for (const Text& word : words) {
        if (!is_named(word)) continue;
        const std::size_t colon = word.find(u':');
        const Text name = word.substr(1, colon == Text::npos ? colon : colon - 1);
        if (find(name) != nullptr) continue;  // the first one counts
        all_.push_back({name, colon == Text::npos ? Variant() : Variant(word.substr(colon + 1))});
    }
}

const NamedArguments::Named* NamedArguments::find(const Text& name) const {
    const auto found = std::ranges::find_if(
        all_, [&](const Named& one) { return equal_ignoring_case(one.name, name); });
    return found == all_.end() ? nullptr : &*found;
}

Variant NamedArguments::Item(const Text& name) {
    const Named* found = find(name);
    return found != nullptr ? found->value : Variant();
}

bool NamedArguments::Exists(const Text& name) { return find(name) != nullptr; }

Object NamedArguments::NewEnum() {
    std::vector<Variant> names;
    for (const Named& one : all_) names.emplace_back(one.name);
    return make_enumerator(std::move(names));
}

Text ScriptArguments::Item(std::int32_t index) {
    if (index < 0 || index >= Count()) raise_runtime_error(runtime_error::subscript_out_of_range);
    return words_[static_cast<std::size_t>(index)];
}

Object ScriptArguments::NewEnum() { return make_enumerator({words_.begin(), words_.end()}); }

Ref<NamedArguments> ScriptArguments::Named() { return make<NamedArguments>(words_); }

Ref<ScriptArguments> ScriptArguments::Unnamed() {
    std::vector<Text> words = words_;
    std::erase_if(words, is_named);
    return make<ScriptArguments>(std::move(words));
}

void ScriptArguments::ShowUsage() {
    constexpr std::int32_t not_supported = 445;
    throw Failure(
        not_supported, u"WScript.Arguments",
        Text(runtime_error_text(not_supported)) +
            u": a script here does not say which arguments it takes; write its usage with "
            u"WScript.Echo");
}

}  // namespace orvo
