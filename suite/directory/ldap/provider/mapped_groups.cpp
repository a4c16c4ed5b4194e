#include "suite/directory/ldap/provider/mapped_groups.h"

#include <algorithm>
#include <utility>

#include "suite/directory/entries/entry_order.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

constexpr const char* chain_rule = "1.2.840.113556.1.4.1941";
constexpr const char* member_of_attribute = "memberOf";
constexpr const char* user_id = "uid";
// Of one entry; who is in more is in some of them.
constexpr std::size_t most_groups = 1000;
// A filter that names more is longer than some servers read.
constexpr std::size_t most_named_members = 200;

Filter equality(std::string attribute, std::string value, std::string rule = {}) {
    return {.kind = rule.empty() ? Filter::Kind::equality : Filter::Kind::extensible,
            .attribute = std::move(attribute),
            .value = std::move(value),
            .rule = std::move(rule)};
}

std::vector<std::string> values_in(const EntryData& entry, std::string_view name) {
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return {};
}

std::string comparable_name(std::string_view name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    return parsed ? parsed->key() : ascii::lower(name);
}

std::vector<std::string> found_among(const MappedAttribute& ours,
                                     const std::unordered_set<std::string>& groups) {
    std::vector<std::string> values;
    for (const MappedGroup& row : ours.groups)
        if (groups.contains(row.group.key.key()) &&
            std::ranges::find(values, row.ours) == values.end())
            values.push_back(row.ours);
    if (ours.single_value && values.size() > 1) values.resize(1);
    return values;
}

}  // namespace

// What each entry of theirs says itself.
bool MappedGroups::is_told_by_entries() const {
    const GroupRules& rules = directory_.map().groups;
    return rules.kind == GroupRules::Kind::member_of && rules.nesting == 0;
}

bool MappedGroups::has_chain_rule() const {
    const GroupRules& rules = directory_.map().groups;
    return rules.kind == GroupRules::Kind::member_of && rules.nesting > 0 &&
           directory_.facts().has_chain_rule;
}

// The entry as its groups name it.
std::string MappedGroups::member_of(const EntryData& theirs) const {
    if (directory_.map().groups.kind != GroupRules::Kind::posix) return theirs.name;
    const NamingPart naming = naming_part(theirs.name);
    if (ascii::equal_ignoring_case(naming.attribute, user_id)) return naming.value;
    const std::vector<std::string> ids = values_in(theirs, user_id);
    return ids.empty() ? std::string() : ids.front();
}

std::string MappedGroups::comparable(std::string_view member) const {
    if (directory_.map().groups.kind == GroupRules::Kind::posix) return ascii::lower(member);
    return comparable_name(member);
}

std::vector<std::string> MappedGroups::groups_with(const std::vector<std::string>& members,
                                                   const std::string& rule, Known known) {
    const GroupRules& rules = directory_.map().groups;
    Filter any{.kind = Filter::Kind::any_of};
    for (const std::string& member : members)
        any.parts.push_back(equality(rules.member_attribute(), member, rule));
    Filter filter{.kind = Filter::Kind::all_of, .parts = {std::move(any)}};
    if (const char* name = rules.object_class())
        filter.parts.insert(filter.parts.begin(), equality("objectClass", name));
    SearchRequest request;
    request.base = rules.container.name;
    request.scope = Scope::subtree;
    request.filter = filter.text();
    return directory_.names_found(std::move(request), most_groups, known);
}

// Level by level upwards; a group that was met is not walked again.
MappedGroups::Names MappedGroups::groups_of(const EntryData& theirs, std::size_t nesting,
                                            Known known) {
    Names groups;
    if (is_told_by_entries()) {
        for (const std::string& group : values_in(theirs, member_of_attribute))
            groups.insert(comparable_name(group));
        return groups;
    }
    const std::string rule = has_chain_rule() && nesting > 0 ? chain_rule : "";
    const bool is_walked = rule.empty() && directory_.map().groups.kind != GroupRules::Kind::posix;
    std::vector<std::string> members{member_of(theirs)};
    if (members.front().empty()) return groups;
    for (std::size_t level = 0; level <= (is_walked ? nesting : 0) && !members.empty(); ++level) {
        std::vector<std::string> next;
        for (std::string& group : groups_with(members, rule, known))
            if (groups.size() < most_groups && groups.insert(comparable_name(group)).second)
                next.push_back(std::move(group));
        members = std::move(next);
    }
    return groups;
}

std::vector<std::string> MappedGroups::asked(const std::string& entry) const {
    if (is_told_by_entries()) return {member_of_attribute};
    const bool is_named_by_id = ascii::equal_ignoring_case(naming_part(entry).attribute, user_id);
    if (directory_.map().groups.kind == GroupRules::Kind::posix && !is_named_by_id)
        return {user_id};
    return {};
}

std::vector<std::string> MappedGroups::values_of(const MappedAttribute& ours,
                                                 const EntryData& theirs, Known known) {
    return found_among(ours, groups_of(theirs, directory_.map().groups.nesting, known));
}

std::vector<std::string> MappedGroups::listed_members(const std::string& group) {
    const char* attribute = directory_.map().groups.member_attribute();
    SearchRequest request;
    request.base = group;
    request.attributes = {attribute};
    try {
        for (const EntryData& entry : directory_.entries_found(request))
            return values_in(entry, attribute);
    } catch (const Failure& failure) {  // nobody is a member of a group that is not there
        if (failure.number != number_of_code(result_code::no_such_object)) throw;
    }
    return {};
}

void MappedGroups::load(const MappedAttribute& ours) {
    if (is_told_by_entries()) return;
    const GroupRules& rules = directory_.map().groups;
    for (const MappedGroup& row : ours.groups) {
        const auto [place, is_new] = loaded_.try_emplace(row.group.key.key());
        if (!is_new) continue;
        Loaded& loaded = place->second;
        const auto add = [&](std::string member) {
            const bool is_first = loaded.members.insert(comparable(member)).second;
            if (is_first) loaded.written.push_back(std::move(member));
            return is_first;
        };
        if (has_chain_rule()) {
            SearchRequest request;
            request.base = directory_.map().user_container.name;
            request.scope = Scope::subtree;
            request.filter = equality(member_of_attribute, row.group.name, chain_rule).text();
            request.attributes = {"1.1"};
            for (EntryData& entry : directory_.entries_found(request)) add(std::move(entry.name));
            continue;
        }
        // Level by level downwards, into those members that are groups.
        Names groups;
        if (rules.nesting > 0 && rules.kind != GroupRules::Kind::posix) {
            SearchRequest request;
            request.base = rules.container.name;
            request.scope = Scope::subtree;
            request.attributes = {"1.1"};
            Filter with_members{.kind = Filter::Kind::presence,
                                .attribute = rules.member_attribute()};
            request.filter = with_members.text();
            for (const EntryData& entry : directory_.entries_found(request))
                groups.insert(comparable_name(entry.name));
        }
        std::vector<std::string> level{row.group.name};
        for (std::size_t depth = 0; depth <= rules.nesting && !level.empty(); ++depth) {
            std::vector<std::string> next;
            for (const std::string& group : level)
                for (std::string& member : listed_members(group))
                    if (add(member) && groups.contains(comparable(member)))
                        next.push_back(std::move(member));
            level = std::move(next);
        }
    }
}

std::vector<std::string> MappedGroups::loaded_values(const MappedAttribute& ours,
                                                     const EntryData& theirs) const {
    Names groups;
    if (is_told_by_entries()) {
        for (const std::string& group : values_in(theirs, member_of_attribute))
            groups.insert(comparable_name(group));
    } else {
        const std::string member = comparable(member_of(theirs));
        for (const auto& [group, loaded] : loaded_)
            if (!member.empty() && loaded.members.contains(member)) groups.insert(group);
    }
    return found_among(ours, groups);
}

std::optional<MappedFilter> MappedGroups::condition(const MappedGroup& group) const {
    if (is_told_by_entries()) return MappedFilter{equality(member_of_attribute, group.group.name)};
    if (has_chain_rule())
        return MappedFilter{equality(member_of_attribute, group.group.name, chain_rule)};
    const auto loaded = loaded_.find(group.group.key.key());
    if (loaded == loaded_.end() || loaded->second.written.size() > most_named_members)
        return std::nullopt;
    MappedFilter condition{{.kind = Filter::Kind::any_of}, false};
    for (const std::string& member : loaded->second.written) {
        if (directory_.map().groups.kind == GroupRules::Kind::posix) {
            condition.sent.parts.push_back(equality(user_id, member));
            continue;
        }
        const auto parts = try_name_parts(member);
        if (!parts || parts->empty()) continue;  // nobody's name
        const NamePart& naming = parts->front().front();
        condition.sent.parts.push_back(equality(naming.attribute, naming.value));
    }
    return condition;
}

void MappedGroups::assign(const MappedAttribute& ours, const EntryData& theirs,
                          const std::vector<std::string>& values, WriteMarks& writes,
                          ServerLogin& by) {
    const GroupRules& rules = directory_.map().groups;
    std::vector<const MappedGroup*> wanted;
    // Who has the defaults is in no group.
    const bool is_otherwise = values == ours.otherwise;
    for (const std::string& value : values) {
        const auto row = std::ranges::find(ours.groups, value, &MappedGroup::ours);
        if (row != ours.groups.end())
            wanted.push_back(&*row);
        else if (!value.empty() && value != "0" && !is_otherwise)
            raise_code(result_code::constraint_violation, "The directory's map has no group for " +
                                                              quoted_name(value) + " of " +
                                                              ours.name + ".");
    }
    const Names direct = groups_of(theirs, 0, Known::not_used);
    const Names held = groups_of(theirs, rules.nesting, Known::not_used);
    std::vector<std::pair<const MappedGroup*, Change>> changes;
    for (const MappedGroup& row : ours.groups) {
        const bool is_wanted = std::ranges::any_of(
            wanted, [&](const MappedGroup* one) { return one->group == row.group; });
        const std::string& key = row.group.key.key();
        if (is_wanted == held.contains(key)) continue;
        if (!is_wanted && !direct.contains(key))
            raise_code(result_code::unwilling_to_perform,
                       ours.name + " " + row.ours + " comes from a group in the group " +
                           quoted_name(row.group.name) + " and is changed there alone.");
        changes.emplace_back(&row, is_wanted ? Change::add : Change::remove);
    }
    if (changes.empty()) return;
    if (rules.is_read_only)
        raise_code(result_code::unwilling_to_perform,
                   ours.name +
                       " comes from groups, which are read-only here "
                       "([DIRECTORY.MAP.GROUPS] ReadOnly).");
    const std::string member = member_of(theirs);
    for (const auto& [row, change] : changes) {
        const std::string& group = row->group.name;
        const Replacement replacement{rules.member_attribute(), {member}, change};
        const NotedWrite noted(writes, EntryKey(group));
        const Result result = by.write(group, [&](Session& session) {
            return session.modify(group, {&replacement, 1});
        });
        const bool is_so_already = result.code == result_code::value_exists ||
                                   result.code == result_code::no_such_attribute;
        if (result.ok() || is_so_already) continue;
        Failure failure = directory_failure(result.code, {}, result.message, result.nearest_entry);
        failure.description += u" " + from_utf8(ours.name) + u" " + from_utf8(row->ours) +
                               u" comes from the group " + from_utf8(quoted_name(group)) +
                               u", which was not changed";
        failure.description +=
            row == changes.front().first ? u"." : u"; groups before it in the map have been.";
        throw failure;
    }
}

}  // namespace orvo::directory::ldap
