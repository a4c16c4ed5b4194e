#include "host/admin/common/component_failure.h"

#include <orvo/text.h>

#include <algorithm>
#include <string_view>

namespace orvo::admin {
namespace {

constexpr std::int32_t number(std::uint32_t bits) { return static_cast<std::int32_t>(bits); }

constexpr std::int32_t refused_account = number(0x8007052E);
constexpr std::int32_t unreachable = number(0x8007203A);

struct Advice {
    std::int32_t number;
    std::string_view sentence;  // what it means to an administrator, and what to do
};

constexpr Advice advice[] = {
    {number(0x80040154), "the component's modules are not known here: orvo-register MODULE.so"},
    {refused_account,
     "the directory refuses the service account: see MemScriptUser and MemScriptCode in the site's "
     "settings"},
    {unreachable,
     "the directory cannot be reached: see whether it runs, and LDAPServer in the site's settings"},
    {number(0x80072098),
     "the service account has not the right to do that: see the directory's access rules"},
    {number(0x8007200E), "the directory is busy: try again"},
};

// The component's descriptions are blocks around the cause, one for each of its methods:
// "\r\nERROR 0x…\r\n METHOD: …\r\n DESC: cause.\r\n INFO: ….\r\n".
std::string_view cause_in(std::string_view description) {
    constexpr std::string_view begin = " DESC: ";
    const std::size_t at = description.rfind(begin);
    if (at == std::string_view::npos) return description;
    description.remove_prefix(at + begin.size());
    return description.substr(0, description.find(".\r\n"));
}

bool has_number(const std::exception& failure, std::int32_t number) {
    const auto* error = dynamic_cast<const Error*>(&failure);
    return error && error->number() == number;
}

}  // namespace

std::optional<std::string> try_told_by_component(const std::exception& failure) {
    const auto* error = dynamic_cast<const Error*>(&failure);
    if (!error) return std::nullopt;
    std::string cause(cause_in(error->description()));
    // Some servers end their messages with a line's end.
    while (cause.ends_with('.') || cause.ends_with('\n')) cause.pop_back();
    const auto known = std::ranges::find(advice, error->number(), &Advice::number);
    if (known == std::end(advice)) return cause.empty() ? error->what() : cause;
    return std::string(known->sentence) + (cause.empty() ? "" : " (" + cause + ")");
}

bool is_of_whole_directory(const std::exception& failure) {
    return has_number(failure, unreachable) || has_number(failure, refused_account);
}

bool is_missing_entry(const std::exception& failure) {
    return has_number(failure, number(0x80072030));
}
bool is_existing_entry(const std::exception& failure) {
    return has_number(failure, number(0x8004044F));
}
bool is_unknown_attribute(const std::exception& failure) {
    return has_number(failure, number(0x8007200C));
}

}  // namespace orvo::admin
