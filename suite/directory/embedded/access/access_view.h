#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/embedded/access/access_rules.h"

namespace orvo::directory::embedded {

// What somebody may see of the entries that a search finds: the rules' answers for one who asks and
// for certain attributes, worked out once for entries that the rules do not tell apart. For an
// entry in the same container as the one before it costs a comparison of texts. Used by one thread.
class AccessView {
public:
    struct Rights {
        bool may_see = false;        // the entry at all
        std::vector<bool> may_read;  // in the order of the attributes
    };

    // `rules` and `who` must live as long.
    AccessView(const AccessRules& rules, const Identity& who,
               const std::vector<std::string>& attributes);

    // For an entry by its name as the directory writes it. Entries with equal rights have the same
    // object, which lives as long as this one.
    const Rights& of(std::string_view entry);

private:
    struct Known {
        std::vector<bool> rules;  // that cover the entry
        bool is_own;
        Rights rights;
    };

    const Rights& rights(const DistinguishedName& entry);
    Rights worked_out(const std::vector<bool>& covering, bool is_own) const;
    bool is_named_below(const DistinguishedName& container) const;

    const AccessRules& rules_;
    const Identity& who_;
    const std::vector<RuleRights> rule_rights_;
    std::vector<std::string> keys_;  // of "entry", then of the attributes
    std::vector<bool> hashes_;       // which of the attributes hold some
    std::deque<Known> known_;
    std::string container_;                 // of the entry before
    const Rights* in_container_ = nullptr;  // of all in it but the own one; null: they differ
};

}  // namespace orvo::directory::embedded
