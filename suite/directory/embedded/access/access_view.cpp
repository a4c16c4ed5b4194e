#include "suite/directory/embedded/access/access_view.h"

#include <algorithm>

#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"

namespace orvo::directory::embedded {
namespace {

DistinguishedName parsed(std::string_view name) {
    auto read = DistinguishedName::try_parse(from_utf8(name));
    if (!read) raise_code(result_code::invalid_name, "invalid DN");
    return *std::move(read);
}

// The name behind the first comma that is no part of a value.
std::string_view container_of(std::string_view name) {
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == '\\')
            ++at;
        else if (name[at] == ',')
            return name.substr(at + 1);
    }
    return {};
}

}  // namespace

AccessView::AccessView(const AccessRules& rules, const Identity& who,
                       const std::vector<std::string>& attributes)
    : rules_(rules), who_(who), rule_rights_(rules.rights_of(who)) {
    keys_.push_back(rules.key(the_entry));
    for (const std::string& attribute : attributes) {
        keys_.push_back(rules.key(attribute));
        hashes_.push_back(holds_hashes(attribute));
    }
}

const AccessView::Rights& AccessView::of(std::string_view entry) {
    const std::string_view container = container_of(entry);
    const bool is_own = who_.is_user() && entry == who_.entry().name;
    if (!is_own && in_container_ && container == container_) return *in_container_;
    const Rights& rights = this->rights(parsed(entry));
    if (!is_own) {
        container_ = container;
        in_container_ = is_named_below(parsed(container)) ? nullptr : &rights;
    }
    return rights;
}

// Whether a rule names an entry directly below the container, which then differs from the others.
bool AccessView::is_named_below(const DistinguishedName& container) const {
    return std::ranges::any_of(rules_.rules(), [&](const AccessRule& rule) {
        return rule.entries && rule.entries->name.depth() == container.depth() + 1 &&
               rule.entries->name.is_below(container);
    });
}

const AccessView::Rights& AccessView::rights(const DistinguishedName& entry) {
    std::vector<bool> covering;
    for (const AccessRule& rule : rules_.rules()) covering.push_back(rule.covers(entry));
    const bool is_own = who_.is_user() && who_.name() == entry;
    for (const Known& known : known_)
        if (known.is_own == is_own && known.rules == covering) return known.rights;
    Rights rights = worked_out(covering, is_own);
    return known_.emplace_back(Known{std::move(covering), is_own, std::move(rights)}).rights;
}

AccessView::Rights AccessView::worked_out(const std::vector<bool>& covering, bool is_own) const {
    const auto may_read = [&](std::size_t key) {
        if (who_.is_manager()) return true;
        for (std::size_t at = 0; at < covering.size(); ++at) {
            if (!covering[at] || !rules_.rules()[at].covers(keys_[key])) continue;
            const RuleRights& rights = rule_rights_[at];
            return (is_own ? rights.of_own : rights.of_others) >= Right::read;
        }
        return false;
    };
    Rights rights;
    rights.may_see = may_read(0);
    for (std::size_t at = 0; at < hashes_.size(); ++at)
        rights.may_read.push_back(!hashes_[at] && may_read(at + 1));
    return rights;
}

}  // namespace orvo::directory::embedded
