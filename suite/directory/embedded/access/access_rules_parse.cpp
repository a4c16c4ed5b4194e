#include <algorithm>
#include <utility>

#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/access/access_words.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

// A word cut off the front, and the blanks behind it.
std::string_view take_word(std::string_view& text) {
    constexpr std::string_view blanks = " \t";
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return word;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

}  // namespace

class AccessRulesParser {
public:
    explicit AccessRulesParser(std::shared_ptr<const Schema> schema) : rules_(std::move(schema)) {}

    AccessRules parse(std::string_view text) && {
        while (!text.empty()) {
            ++line_;
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            const std::string_view read = trimmed(line);
            if (!read.empty() && read.front() != '#') read_line(read);
        }
        end_group();
        return std::move(rules_);
    }

private:
    void read_line(std::string_view rest) {
        const std::string_view word = take_word(rest);
        if (word == "group" || word == "rule") {
            end_group();
            begin(word, rest);
        } else if (word == "entries") {
            read_entries(rest);
        } else if (word == "filter") {
            read_filter(rest);
        } else if (word == "attributes") {
            read_attributes(rest);
        } else if (const auto* row = find_word(right_words, word)) {
            read_grant(row->value, rest);
        } else {
            refuse(quoted_name(word) + " is no word that a line begins with.");
        }
    }

    void begin(std::string_view word, std::string_view rest) {
        if (word == "rule") {
            if (!rest.empty()) refuse("Nothing stands behind \"rule\".");
            rules_.rules_.emplace_back();
            return;
        }
        const std::string_view name = take_word(rest);
        if (name.empty() || !rest.empty()) refuse("A group has one word as its name.");
        if (is_group(name)) refuse("There is a group " + quoted_name(name) + " already.");
        group_.emplace();
        group_->name = name;
    }

    void end_group() {
        if (!group_) return;
        if (group_->entries.written.empty() || !group_->matcher)
            refuse("The group " + quoted_name(group_->name) + " above lacks entries or a filter.");
        rules_.groups_.push_back(*std::move(group_));
        group_.reset();
    }

    void read_entries(std::string_view rest) {
        const std::string_view word = take_word(rest);
        const auto* row = find_word(scope_words, word);
        if (!row) refuse("\"entries\" are base, one or subtree, not " + quoted_name(word) + ".");
        Place place{row->value, std::string(rest), name_in(rest)};
        if (group_ ? !group_->entries.written.empty() : rule().entries.has_value())
            refuse("\"entries\" stands here a second time.");
        (group_ ? group_->entries : rule().entries.emplace()) = std::move(place);
    }

    void read_filter(std::string_view rest) {
        if (!group_) refuse("A filter belongs to a group.");
        if (group_->matcher) refuse("\"filter\" stands here a second time.");
        try {
            group_->filter = Filter::parse(from_utf8(rest));
        } catch (const Failure& failure) {
            refuse(to_utf8(failure.description));
        }
        group_->matcher = std::make_shared<const FilterMatcher>(
            group_->filter, [schema = rules_.schema_](std::string_view attribute) {
                return matching_of(attribute, schema->types, Bounds::of_rules);
            });
    }

    void read_attributes(std::string_view rest) {
        AccessRule& rule = this->rule();
        if (rest.empty()) refuse("\"attributes\" has no names.");
        while (!rest.empty()) {
            const std::string_view name = take_word(rest);
            if (name != the_entry && name != its_children && !rules_.schema_->types.find(name))
                refuse("The schema has no attribute " + quoted_name(name) + ".");
            rule.attributes.emplace_back(name);
            rule.keys.push_back(rules_.key(name));
        }
    }

    void read_grant(Right right, std::string_view rest) {
        AccessRule& rule = this->rule();
        const std::string_view word = take_word(rest);
        const auto* row = find_word(whom_words, word);
        if (!row)
            refuse("A right is that of name, self, group, users, anonymous or everyone, not of " +
                   quoted_name(word) + ".");
        AccessGrant grant{right, row->value, std::string(rest)};
        if (grant.to == AccessGrant::To::name)
            grant.name = name_in(rest);
        else if (grant.to == AccessGrant::To::group && !is_group(rest))
            refuse("There is no group " + quoted_name(rest) + " above.");
        else if (grant.to != AccessGrant::To::group && !rest.empty())
            refuse("Nothing stands behind " + quoted_name(word) + ".");
        rule.grants.push_back(std::move(grant));
    }

    AccessRule& rule() {
        if (group_ || rules_.rules_.empty()) refuse("The line belongs to a rule.");
        return rules_.rules_.back();
    }

    bool is_group(std::string_view name) const {
        return std::ranges::find(rules_.groups_, name, &AccessGroup::name) != rules_.groups_.end();
    }

    DistinguishedName name_in(std::string_view text) const {
        auto name = DistinguishedName::try_parse(from_utf8(text));
        if (!name || name->depth() == 0) refuse(quoted_name(text) + " is no distinguished name.");
        return *std::move(name);
    }

    [[noreturn]] void refuse(const std::string& reason) const {
        raise_code(result_code::parameter_error,
                   "Access rules, line " + std::to_string(line_) + ": " + reason);
    }

    AccessRules rules_;
    std::optional<AccessGroup> group_;  // whose lines are read
    int line_ = 0;
};

AccessRules AccessRules::parse(std::string_view text, std::shared_ptr<const Schema> schema) {
    return AccessRulesParser(std::move(schema)).parse(text);
}

}  // namespace orvo::directory::embedded
